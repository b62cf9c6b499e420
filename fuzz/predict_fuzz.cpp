// A prediction of anything ends in a result, over an empty folder and with tools that say nothing: no crash, no hang,
// and the same twice.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "../tests/fakes/fake_disk.h"
#include "../tests/fakes/fake_launcher.h"
#include "analysis/models/command_table.h"
#include "analysis/request_analysis.h"

using namespace brindlet;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string line(reinterpret_cast<const char*>(data), size);
    const auto predicted = [&] {
        FakeDisk disk;
        FakeLauncher launcher;
        AnalysisLimits limits;
        limits.commands = 500;
        limits.textBytes = 1 << 16;
        limits.textBytesInAll = 1 << 20;
        limits.words = 1 << 12;
        const AnalysisServices services{
            disk, launcher, builtInCommands(), [] { return std::string("/usr/bin"); }, FilePath("/home/me"), limits};
        return analyzeRequest(line, FilePath("/w"), {{{"FILE_NAME", "a b"}}}, services);
    };
    if (!(predicted() == predicted())) std::abort();
    return 0;
}
