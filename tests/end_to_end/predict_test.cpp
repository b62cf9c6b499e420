// What predict, parse and glob print, as people and as scripts read it.
#include <gtest/gtest.h>

#include "end_to_end/program.h"

namespace brindlet {
namespace predict_tests {

using Json = nlohmann::ordered_json;

std::vector<std::string> keysOf(const Json& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items()) keys.push_back(key);
    return keys;
}

TEST(Predict, ALoopOfRenames) {
    Program program;
    program.disk.write("a.txt", "");
    program.disk.write("b.txt", "");
    program.disk.write("c.jpg", "");
    const auto before = program.disk.snapshot();
    const std::string line = R"(for f in *.txt; do mv "$f" "${f%.txt}.md"; done)";

    const Json report = program.run({"predict", "--json", line}).json();
    EXPECT_EQ(keysOf(report),
              (std::vector<std::string>{"command", "rewrittenCommand", "runs", "exitCode", "output", "changes",
                                        "sideEffects", "commandErrors", "analysisError", "requiredPackages",
                                        "missingPackage", "effects", "risk", "reasons", "rows"}));
    EXPECT_EQ(report["command"], line);
    EXPECT_EQ(report["runs"], "once");
    EXPECT_EQ(report["exitCode"], 0);
    EXPECT_EQ(report["output"], (Json{{"known", ""}}));
    Json expected = Json::array();
    for (const std::string name : {"a", "b"})
        expected.push_back({{"type", "move"},
                            {"path", program.disk.path(name + ".md").text()},
                            {"source", program.disk.path(name + ".txt").text()},
                            {"isDirectory", false}});
    EXPECT_EQ(report["changes"], expected);
    EXPECT_EQ(report["reasons"], (Json{"Rename files"}));

    const Outcome human = program.run({"predict", line});
    EXPECT_EQ(human.exitCode, 0);
    EXPECT_NE(human.out.find("Brindlet predicts:"), std::string::npos);
    EXPECT_NE(human.out.find("Renames a.txt to a.md"), std::string::npos) << human.out;
    EXPECT_EQ(human.out.find('\x1b'), std::string::npos);  // colour is for terminals
    EXPECT_EQ(program.disk.snapshot(), before);
}

// `predict` succeeds also where the line does not: it was asked for and given.
TEST(Predict, WhatCannotBeAnalysedIsAnAnswer) {
    Program program;
    program.disk.write("a.txt", "");
    struct Case {
        std::vector<std::string> words;
        std::string_view error;
    };
    const Case cases[] = {
        {{""}, ""},
        {{"sudo ls"}, "bannedInBrindlet"},
        {{"echo \"a"}, "otherError"},
        {{"mv \"$FILE_NAME\" x"}, "noFilesSelected"},
        {{"mv \"$FILE_NAME\" x", "a.txt"}, ""},
    };
    for (const auto& [words, error] : cases) {
        SCOPED_TRACE(words[0]);
        std::vector<std::string> all = {"predict", "--json"};
        all.insert(all.end(), words.begin(), words.end());
        const Outcome outcome = program.run(all);
        EXPECT_EQ(outcome.exitCode, 0);
        const Json analysisError = outcome.json()["analysisError"];
        if (!error.empty()) {
            EXPECT_TRUE(analysisError.contains(error)) << outcome.out;
        }
    }
}

TEST(Predict, TheFolderAndTheFilesAreTheirOwn) {
    Program program;
    program.disk.write("a.txt", "");
    program.disk.write("sub/b.txt", "");
    // FILEs are taken against the current directory, the command against the open folder.
    const Json report =
        program.run({"predict", "--json", "--folder", "sub", R"(mv "$FILE_NAME" "${FILE_BASENAME}.md")", "a.txt"})
            .json();
    ASSERT_EQ(report["changes"].size(), 1U);
    EXPECT_EQ(report["changes"][0]["source"], program.disk.path("a.txt").text());
    EXPECT_EQ(report["changes"][0]["path"], program.disk.path("sub/a.md").text());
    EXPECT_EQ(report["runs"], "oncePerFile");
}

TEST(Batch, EachLineByItself) {
    const Program program;
    const std::string lines = "\"mkdir a\"\nnot JSON\n\n[1]\n\"rmdir a\"\n\"\\ud800\"\n\"a|b\"";
    for (const std::string name : {"predict", "parse"}) {
        SCOPED_TRACE(name);
        const Outcome outcome = program.run({name, "--json", "--batch"}, lines);
        EXPECT_EQ(outcome.exitCode, 0);
        std::istringstream answers(outcome.out);
        std::vector<Json> objects;
        for (std::string line; std::getline(answers, line);) objects.push_back(Json::parse(line));
        ASSERT_EQ(objects.size(), 7U);
        for (const std::size_t refused : {1, 2, 3, 5})
            EXPECT_EQ(objects[refused]["error"], "line " + std::to_string(refused + 1) + " is no JSON string");
        if (name == "parse") {
            EXPECT_EQ(objects[6]["printed"], "a | b");
        } else {
            EXPECT_EQ(objects[0]["changes"].size(), 1U);
            EXPECT_EQ(objects[4]["changes"].size(), 0U);  // the folder of the first line was never there
        }
    }
}

TEST(Parse, PrintsTheLineOrTheError) {
    const Program program;
    EXPECT_EQ(program.run({"parse", "a|b"}).out, "a | b\n");
    const Outcome good = program.run({"parse", "--json", "ls"});
    EXPECT_EQ(good.out,
              R"({"tree":{"statements":[{"parts":[{"pipeline":{"components":[{"command":{"command":{"elements":[)"
              R"({"text":{"value":"ls","raw":"ls"}}]},"arguments":[],"redirects":[]}}]}}],"runInBackground":false}]},)"
              R"("printed":"ls","unparsed":null})"
              "\n");
    const Outcome bad = program.run({"parse", "--json", "echo \"a"});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_EQ(keysOf(bad.json()), (std::vector<std::string>{"error", "description"}));
    const Outcome human = program.run({"parse", "echo \"a"});
    EXPECT_EQ(human.exitCode, 1);
    EXPECT_EQ(human.out, "");
    EXPECT_NE(human.err, "");
}

TEST(Glob, PrintsWhatMatches) {
    Program program;
    program.disk.write("b.txt", "");
    program.disk.write("a.txt", "");
    program.disk.write(".hidden.txt", "");
    EXPECT_EQ(program.run({"glob", "*.txt"}).out, "a.txt\nb.txt\n");
    EXPECT_EQ(program.run({"glob", "@(a|b)*", "b1", "c1", "a1"}).out, "b1\na1\n");
    EXPECT_EQ(program.run({"glob", "*.md"}).exitCode, 1);
    EXPECT_EQ(program.run({"glob", "--json", "a*", "a.txt"}).out,
              R"({"sections":[{"constant":"a"},{"componentWildcard":{}}],"matches":["a.txt"]})"
              "\n");
    const Outcome invalid = program.run({"glob", "--json", "[a"});
    EXPECT_EQ(invalid.exitCode, 1);
    EXPECT_EQ(invalid.out, "{\"error\":{\"rangeNotClosed\":{}}}\n");
    EXPECT_NE(program.run({"glob", "[a"}).err, "");
}

}  // namespace predict_tests
}  // namespace brindlet
