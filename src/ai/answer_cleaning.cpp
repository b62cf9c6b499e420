#include "ai/answer_cleaning.h"

#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view outputLabel = "YOUR OUTPUT:";
constexpr std::string_view codeFence = "```";
constexpr std::string_view shellTag = "bash\n";
// In this order: a longer name that begins with one of them is cut.
constexpr std::string_view fileVariableNames[] = {"FILE_NAME", "FILE_BASENAME", "FILE_EXTENSION",
                                                  "SPACE_SEPARATED_FILE_NAMES"};

std::string_view withoutCodeFence(std::string_view text) {
    const std::size_t open = text.find(codeFence);
    if (open == std::string_view::npos) return text;
    const std::size_t begin = open + codeFence.size();
    const std::size_t close = text.find(codeFence, begin);
    if (close == std::string_view::npos) return text;
    std::string_view inner = text.substr(begin, close - begin);
    if (inner.starts_with(shellTag)) inner.remove_prefix(shellTag.size());
    if (inner.starts_with('\n')) inner.remove_prefix(1);
    return trimmed(inner);
}

}  // namespace

std::string cleanedAnswer(std::string_view answer) {
    const std::string unlabelled = replacedAll(answer, outputLabel, "");
    return withBracedFileVariables(withoutCodeFence(trimmed(unlabelled)));
}

std::string withBracedFileVariables(std::string_view command) {
    std::string result(command);
    for (const std::string_view name : fileVariableNames)
        result = replacedAll(result, "$" + std::string(name), "${" + std::string(name) + "}");
    return result;
}

}  // namespace brindlet
