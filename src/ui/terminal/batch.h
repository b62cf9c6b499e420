// Many questions for one start of the program: a JSON string a line on standard input, a JSON object a line on standard
// output.
//
//     answerBatch(output, [](const std::string& command) { return parsed(command).json; });
#pragma once

#include <functional>
#include <string>

#include "ui/json.h"
#include "ui/terminal/console.h"

namespace brindlet {

// Each answer is flushed before the next line is read. A line that is no JSON string is answered by an object whose
// "error" says so, and the batch goes on.
void answerBatch(StandardOutput& output, const std::function<Json(const std::string& command)>& answer);

}  // namespace brindlet
