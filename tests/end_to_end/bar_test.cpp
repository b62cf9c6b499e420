// The bar in a real terminal, driven by its keys through tmux(1).
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <nlohmann/json.hpp>

#include "end_to_end/program.h"
#include "support/asset_server.h"
#include "text/strings.h"

namespace brindlet {
namespace bar_tests {

using namespace std::chrono_literals;

std::string shellWord(const std::string& word) {
    return "'" + replacedAll(word, "'", "'\\''") + "'";
}

std::string outputOf(const std::string& line) {
    std::string text;
    FILE* pipe = ::popen(line.c_str(), "r");
    char bytes[4096];
    while (const std::size_t count = std::fread(bytes, 1, sizeof bytes, pipe)) text.append(bytes, count);
    ::pclose(pipe);
    return text;
}

bool hasTmux() {
    return std::system("command -v tmux >/dev/null 2>&1") == 0;
}

class Terminal {
  public:
    Terminal(const Program& program, const std::string& words, int columns, int rows,
             const std::string& variables = "LC_ALL=C.UTF-8 TERM=tmux-256color") {
        std::string line = "env -i";
        for (const auto& [name, value] : program.environment) line += " " + shellWord(name + "=" + value);
        line += " " + variables + " " + shellWord(BRINDLET_PROGRAM) + " " + words + "; echo END; sleep 60";
        tmux("new-session -d -x " + std::to_string(columns) + " -y " + std::to_string(rows) + " -c " +
             shellWord(program.disk.path().text()) + " " + shellWord(line));
    }
    ~Terminal() { tmux("kill-server"); }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    void type(const std::string& text) const { tmux("send-keys -l " + shellWord(text)); }
    void press(const std::string& keys) const { tmux("send-keys " + keys); }
    std::string screen() const { return tmux("capture-pane -p"); }
    // True once the screen shows it.
    bool shows(const std::string& text) const {
        for (int round = 0; round < 400; ++round, std::this_thread::sleep_for(25ms))
            if (contains(screen(), text)) return true;
        ADD_FAILURE() << "'" << text << "' never came:\n" << screen();
        return false;
    }

  private:
    std::string tmux(const std::string& words) const {
        return outputOf("tmux -L " + socket_ + " -f /dev/null " + words + " 2>&1");
    }

    std::string socket_ = "brindlet-test-" + std::to_string(::getpid());
};

Asset answering(const std::string& text) {
    return {.body = nlohmann::json({{"choices", {{{"message", {{"content", text}}}}}}}).dump()};
}

class Bar : public testing::Test {
  protected:
    void SetUp() override {
        if (!hasTmux()) GTEST_SKIP() << "tmux is not installed";
        program.disk.write("a.txt", "one\n");
        program.disk.write("b.txt", "two\n");
        ASSERT_EQ(program.run({"models", "add", "--name", "helper", "--url", server.url()}).exitCode, 0);
        program.run({"models", "select", "helper"});
        program.run({"settings", "set", "finalSummarizationModelName", "helper"});
    }
    void answer(const std::string& text) { server.lay("/v1/chat/completions", answering(text)); }

    Program program;
    AssetServer server{{}};
};

TEST_F(Bar, FollowsUpTwice) {
    const Terminal terminal(program, "a.txt", 60, 16);
    ASSERT_TRUE(terminal.shows("1 item: a.txt"));
    answer("rm \"$FILE_NAME\"");
    terminal.type("get rid of it for good");
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("Deletes a.txt"));
    EXPECT_TRUE(terminal.shows("$ rm \"${FILE_NAME}\""));
    terminal.press("C-r");
    ASSERT_TRUE(terminal.shows("Refine your request..."));
    answer("mv \"$FILE_NAME\" old.txt");
    terminal.type("rather give it another name");
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("Renames a.txt to old.txt"));
    terminal.press("C-r");
    ASSERT_TRUE(terminal.shows("Refine your request..."));
    answer("echo \"Which name?\"");
    terminal.type("a better one");
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("Which name?"));
    EXPECT_TRUE(contains(server.request(2), "PRIOR USER PROMPT: rather give it another name"));
    terminal.press("Escape");
    ASSERT_TRUE(terminal.shows("Enter query or command"));
    EXPECT_EQ(program.names(), "a.txt b.txt");
    terminal.press("C-c");
    EXPECT_TRUE(terminal.shows("END"));
}

TEST_F(Bar, CancelsARunAndGivesTheTerminalBack) {
    const Terminal terminal(program, "", 200, 30);
    ASSERT_TRUE(terminal.shows("This folder"));
    answer("touch begun && sleep 30 && touch ended");
    terminal.type("wait for a while");
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("Runs once:"));
    std::this_thread::sleep_for(400ms);  // a person reads before agreeing
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("Esc cancel"));
    for (int round = 0; round < 200 && !contains(program.names(), "begun"); ++round) std::this_thread::sleep_for(25ms);
    terminal.press("Escape");
    ASSERT_TRUE(terminal.shows("Enter query or command"));
    terminal.press("C-c");
    ASSERT_TRUE(terminal.shows("END"));
    EXPECT_FALSE(contains(terminal.screen(), "Brindlet"));  // what stood there before is back
    EXPECT_EQ(program.names(), "a.txt b.txt begun");
}

TEST_F(Bar, PicksEditsAndConfirms) {
    const Terminal terminal(program, "", 80, 24, "LC_ALL=C TERM=vt100 NO_COLOR=1");
    ASSERT_TRUE(terminal.shows("> Enter query or command"));
    terminal.press("Tab");
    ASSERT_TRUE(terminal.shows("[ ] a.txt"));
    terminal.press("Down Space");
    ASSERT_TRUE(terminal.shows("[x] b.txt"));
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("1 item: b.txt"));
    answer("rm \"$FILE_NAME\"");
    terminal.type("away with it");
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("Deletes b.txt"));
    terminal.press("C-u");
    terminal.type("mv \"${FILE_NAME}\" c.txt");
    ASSERT_TRUE(terminal.shows("Renames b.txt to c.txt"));  // a second later
    answer("moved it");
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("moved it"));
    EXPECT_EQ(program.names(), "a.txt c.txt");
    terminal.press("Enter");
    ASSERT_TRUE(terminal.shows("Enter query or command"));
    terminal.press("Up");
    EXPECT_TRUE(terminal.shows("away with it"));
}

}  // namespace bar_tests
}  // namespace brindlet
