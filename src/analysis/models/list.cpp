#include "analysis/models/file_commands.h"

namespace brindlet {

CommandResult listFiles(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.noteSeesOnlyRealFiles("ls");
    return analysis.runRealCommand("ls", SimString::known(""), input.args);
}

}  // namespace brindlet
