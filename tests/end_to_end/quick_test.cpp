#include <gtest/gtest.h>

#include "end_to_end/program.h"
#include "support/asset_server.h"
#include "text/strings.h"

namespace brindlet {
namespace quick_tests {

TEST(Quick, AnswersOrSaysThatNoRuleDoes) {
    const Program program;
    const Outcome answered = program.run({"quick", "convert to png", "photo.jpeg"});  // there is no such file
    EXPECT_EQ(answered.out, "sips -s format png \"$FILE_NAME\" --out \"${FILE_BASENAME}.png\"\n");
    EXPECT_EQ(answered.exitCode, 0);
    EXPECT_EQ(program.run({"quick", "--json", "zip"}).out, "{\"command\":\"zip -r archive.zip *\"}\n");

    const Outcome unanswered = program.run({"quick", "--json", "make it nicer", "photo.jpeg"});
    EXPECT_EQ(unanswered.out, "{\"command\":null}\n");
    EXPECT_EQ(unanswered.exitCode, 1);
    EXPECT_EQ(program.run({"quick", "make it nicer"}).out, "");
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{"quick"},
                                                  {"quick", " "},
                                                  {"quick", "zip", ""},
                                                  {"quick", "--folder", "none", "zip"}})
        EXPECT_EQ(program.run(wrong).exitCode, 2);
}

TEST(Prompt, ShowsWhatAModelWouldBeSent) {
    const Program program;
    const auto sent = program.run({"prompt", "--json", "make this 300px wide", "photo.jpg"}).json();
    EXPECT_EQ(sent["quickCommand"], nullptr);
    EXPECT_EQ(sent["categories"].size(), 6u);
    ASSERT_EQ(sent["messages"].size(), 2u);
    EXPECT_EQ(sent["messages"][1].dump(), R"({"user":"USER PROMPT: make this 300px wide"})");
    EXPECT_TRUE(sent["messages"][0]["system"].get<std::string>().starts_with("<intro>\nYou are"));

    EXPECT_EQ(program.run({"prompt", "--json", "zip"}).json()["messages"].size(), 0u);
    EXPECT_EQ(program.run({"prompt", "--json", "--model-anyway", "zip"}).json()["messages"].size(), 2u);
    EXPECT_EQ(program.run({"prompt", ""}).exitCode, 2);
}

TEST(Ask, TheWholeRoadWithoutAModel) {
    Program program;
    program.disk.write("a.txt", "one\ntwo\n");
    program.disk.write("b.txt", "");
    EXPECT_EQ(program.run({"ask", "gzip", "a.txt", "--yes"}).out, "✅ Compressed\n");
    EXPECT_EQ(program.run({"ask", "size", "b.txt"}).out, "📄 Size: 0B\n");

    const Outcome dry = program.run({"ask", "--dry-run", "--json", "gzip", "b.txt"});
    EXPECT_EQ(dry.exitCode, 0);
    EXPECT_EQ(dry.json()["state"], "awaitingConfirmation");
    EXPECT_EQ(dry.json()["ran"], false);
    EXPECT_EQ(dry.json()["command"], "gzip \"${FILE_NAME}\"");

    const Outcome refused = program.run({"ask", "gzip", "b.txt"});  // it asks, and nobody is here to answer
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.err.find("Delete"), std::string::npos);
    EXPECT_EQ(program.run({"ask", "gzip", "missing"}).exitCode, 2);

    EXPECT_EQ(program.run({"summarize", "--command", "wc -m a.txt", "--request", "length", "a.txt"}, "12 a.txt\n").out,
              "🔠 Character count: 12\n");
}

// What a model answers `action` with, and what comes of it.
TEST(Action, RunsOnceAndInstallsNothing) {
    struct Case {
        const char* line;
        int exitCode;
        const char* output;
        const char* state;
        const char* error;  // none: empty
    };
    const Case cases[] = {
        {"wc -c < $FILE_NAME", 0, "2\n", "complete", ""},  // the first file, no fan-out
        {"pwd; ls", 0, "DISK\na.txt\nb.txt\n", "complete", ""},
        {"magick a.txt b.png", 1, "", "presentingError",
         "Can't run this command because you need to install ImageMagick"},
    };
    Program program;
    program.disk.write("a.txt", "1\n");
    program.disk.write("b.txt", "");
    const bool hasMagick = program.run({"predict", "--json", cases[2].line}).json()["missingPackage"].is_null();
    for (const auto& [line, exitCode, output, state, error] : cases) {
        SCOPED_TRACE(line);
        if (hasMagick && *error != '\0') continue;
        const nlohmann::json part{{"type", "output_text"}, {"text", line}};
        const nlohmann::json message{{"type", "message"}, {"content", nlohmann::json::array({part})}};
        const nlohmann::json answer{{"output", nlohmann::json::array({message})}};
        AssetServer server({{"/v1/responses", {.body = answer.dump()}}});
        program.environment["BRINDLET_OPENAI_BASE_URL"] = server.url();
        program.environment["OPENAI_API_KEY"] = "sk-test";
        const Outcome outcome = program.run({"action", "--yes", "--json", "something odd", "a.txt", "b.txt"});
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
        EXPECT_EQ(outcome.json()["output"], replacedAll(output, "DISK", program.disk.path().text()));
        EXPECT_EQ(outcome.json()["state"], state);
        EXPECT_EQ(outcome.json()["error"], *error == '\0' ? nlohmann::json() : nlohmann::json(error));
    }
    EXPECT_EQ(program.run({"history", "list", "--json"}).json().size(), 0U);
}

}  // namespace quick_tests
}  // namespace brindlet
