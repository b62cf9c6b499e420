// What the history shows and how it is emptied.
#include <gtest/gtest.h>

#include "end_to_end/program.h"

namespace brindlet {
namespace history_tests {

using Json = nlohmann::ordered_json;

// Brought over from the older form, as at the first start of a new version.
void fillHistory(const Program& program) {
    EXPECT_EQ(program.run({"settings", "set", "promptHistory", "oldest\n\nmiddle\x1b[31m\nnewest"}).exitCode, 0);
}

std::string storedPrompts(const Program& program) {
    std::string prompts;
    for (const Json& command : program.run({"history", "list", "--json"}).json())
        prompts += command["prompt"].get<std::string>() + "|";
    return prompts;
}

TEST(History, ListsShowsAndRemoves) {
    const Program program;
    fillHistory(program);
    EXPECT_EQ(program.run({"history", "list"}).out, "   3  oldest\n   2  middle\\x1b[31m\n   1  newest\n");
    EXPECT_EQ(program.run({"settings", "get", "promptHistory"}).out, "\n");
    EXPECT_EQ(program.run({"history", "show", "3"}).out, "Request: oldest\n");
    EXPECT_EQ(program.run({"history", "remove", "2"}).exitCode, 0);
    EXPECT_EQ(storedPrompts(program), "oldest|newest|");

    struct Case {
        std::vector<std::string> words;
        int exitCode;
        std::string_view says;
    };
    const Case cases[] = {
        {{"history", "show", "3"}, 1, "there is no entry 3: the history has 2"},
        {{"history", "remove", "99999999999999999999"}, 2, "is no number of an entry"},
        {{"history", "remove", "0"}, 2, "'0' is no number of an entry"},
        {{"history", "show", "newest"}, 2, "'newest' is no number of an entry"},
        {{"history", "show"}, 2, "N is missing"},
        {{"history"}, 2, "say what to do"},
        {{"history", "clear"}, 1, "--yes"},  // nobody can be asked
    };
    for (const auto& [words, exitCode, says] : cases) {
        const Outcome outcome = program.run(words);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
        EXPECT_NE(outcome.err.find(says), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(storedPrompts(program), "oldest|newest|");
}

TEST(History, IsClearedOnceSomebodySaysYes) {
    const Program program;
    fillHistory(program);
    const auto clearAndType = [&](std::string_view keys) {
        return program.runAtTerminal({"history", "clear"}, "This action cannot be undone.", keys).exitCode;
    };
    EXPECT_EQ(clearAndType("n"), 130);
    EXPECT_NE(storedPrompts(program), "");
    EXPECT_EQ(clearAndType("y"), 0);
    EXPECT_EQ(storedPrompts(program), "");
    EXPECT_EQ(program.run({"history", "list"}).out, "Nothing in history\n");
    EXPECT_EQ(program.run({"history", "clear", "--yes"}).exitCode, 0);
}

}  // namespace history_tests
}  // namespace brindlet
