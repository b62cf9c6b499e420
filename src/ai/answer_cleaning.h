// From what a model answered to one line of bash.
//
//     cleanedAnswer("```bash\nmv \"$FILE_NAME\" x\n```")   // mv "${FILE_NAME}" x
#pragma once

#include <string>
#include <string_view>

namespace brindlet {

// The text without what models put around a command: the words "YOUR OUTPUT:", a code fence (the first pair counts;
// what stands outside is lost), blank space at the ends. File variables get braces.
std::string cleanedAnswer(std::string_view answer);

// "$FILE_NAME" and its like as "${FILE_NAME}", wherever they stand.
std::string withBracedFileVariables(std::string_view command);

}  // namespace brindlet
