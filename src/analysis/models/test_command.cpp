#include "analysis/models/test_command.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view arithmeticOperators[] = {"-eq", "-ne", "-lt", "-le", "-gt", "-ge"};
constexpr std::string_view variableTests[] = {"-v", "-R"};

bool isNameCharacter(char character) {
    return character == '_' || (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z');
}

Words namesIn(std::string_view text) {
    Words names;
    auto at = text.begin();
    while ((at = std::find_if(at, text.end(), isNameCharacter)) != text.end()) {
        const auto end = std::find_if_not(at, text.end(), isNameCharacter);
        names.emplace_back(at, end);
        at = end;
    }
    return names;
}

// Arithmetic reads the value of each name that it meets as arithmetic in its turn.
bool wouldRunCommand(const BasherAnalysis& analysis, const std::string& arithmetic) {
    Words unread{arithmetic};
    std::set<std::string> seen;
    while (!unread.empty()) {
        const std::string text = std::move(unread.back());
        unread.pop_back();
        if (contains(text, "$(") || contains(text, "`")) return true;
        for (auto& name : namesIn(text))
            if (seen.insert(name).second)
                if (auto value = analysis.variable(name)) unread.push_back(std::move(*value));
    }
    return false;
}

void refuseIfRun(const BasherAnalysis& analysis, std::string_view command, const std::string& operand) {
    if (!wouldRunCommand(analysis, operand)) return;
    throw BasherAnalysisError{
        BasherAnalysisError::Kind::highRisk,
        fmt::format("'{}' evaluates '{}', and would run the command inside it, which isn't simulated", command,
                    operand)};
}

// Only `[[` compares by arithmetic; all three look a variable's subscript up by it.
void refuseHiddenCommands(const BasherAnalysis& analysis, std::string_view command, const Words& words) {
    const bool comparesByArithmetic = command == "[[";
    for (std::size_t at = 0; at < words.size(); ++at) {
        const bool hasNext = at + 1 < words.size();
        if (comparesByArithmetic && isAmong(words[at], arithmeticOperators)) {
            if (at > 0) refuseIfRun(analysis, command, words[at - 1]);
            if (hasNext) refuseIfRun(analysis, command, words[at + 1]);
        }
        if (isAmong(words[at], variableTests) && hasNext && contains(words[at + 1], "["))
            refuseIfRun(analysis, command, words[at + 1]);
    }
}

CommandResult runTest(BasherAnalysis& analysis, std::string_view command, const Words& words) {
    refuseHiddenCommands(analysis, command, words);
    analysis.noteSeesOnlyRealFiles("test");
    return analysis.runRealCommand("test", SimString::known(""), words);
}

// The words without the closing bracket; none if that isn't the last word.
std::optional<Words> withoutClosing(Words words, std::string_view bracket) {
    if (words.empty() || words.back() != bracket) return std::nullopt;
    words.pop_back();
    return words;
}

}  // namespace

CommandResult testInBrackets(BasherAnalysis& analysis, const ModelInput& input) {
    const auto words = withoutClosing(input.args, "]");
    if (!words) return failureInWords("[: missing ']'");
    return runTest(analysis, input.name, *words);
}

CommandResult testInDoubleBrackets(BasherAnalysis& analysis, const ModelInput& input) {
    const auto words = withoutClosing(input.args, "]]");
    if (!words) return failureInWords("[[: missing ']]'");
    refuseHiddenCommands(analysis, input.name, *words);
    analysis.noteSeesOnlyRealFiles("bash");
    return analysis.runRealCommand("bash", SimString::known(""), {"-c", "[[ " + joined(*words, " ") + " ]]"});
}

CommandResult testCondition(BasherAnalysis& analysis, const ModelInput& input) {
    return runTest(analysis, input.name, input.args);
}

}  // namespace brindlet
