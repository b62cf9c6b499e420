#include "ui/terminal/batch.h"

#include <iostream>

#include <fmt/format.h>

namespace brindlet {

void answerBatch(StandardOutput& output, const std::function<Json(const std::string& command)>& answer) {
    std::ios::sync_with_stdio(false);
    std::string line;
    for (std::size_t number = 1; std::getline(std::cin, line); ++number) {
        const Json question = Json::parse(line, nullptr, false);
        const Json reply = question.is_string() ? answer(question.get_ref<const std::string&>())
                                                : Json{{"error", fmt::format("line {} is no JSON string", number)}};
        output.write(jsonText(reply) + "\n");
        output.flush();
    }
}

}  // namespace brindlet
