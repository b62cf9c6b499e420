#include <gtest/gtest.h>

#include "end_to_end/program.h"

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

}  // namespace quick_tests
}  // namespace brindlet
