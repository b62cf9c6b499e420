#include <gtest/gtest.h>

#include "ai/ai_command_generator.h"
#include "ai/output_summary.h"
#include "fakes/fake_disk.h"
#include "fakes/fake_models.h"
#include "fakes/fake_secret_store.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace command_generation_tests {

class Generation : public testing::Test {
  protected:
    ScratchFolder scratch;
    FakeSecretStore secrets;
    CustomModelList customModels{FilePath(scratch.path()), secrets};
    FakeDisk disk{"a.txt"};
    PromptSimilaritySearch search;
    FakeModels models;
    AICommandGenerator generator{models, customModels, [this] { return PromptSources{search, disk, {}}; }};
    AIModel model = AIModelList::defaultCommandModel();
    std::vector<FilePath> files = {FilePath("/w/a.txt")};
};

std::vector<std::string> texts(const std::vector<AIMessage>& messages) {
    std::vector<std::string> texts;
    for (const AIMessage& message : messages)
        if (message.role != AIRole::system) texts.push_back(std::string(nameOf(message.role)) + ": " + message.text);
    return texts;
}

TEST_F(Generation, RequestIsSentWithAPrefixAndKeptWithout) {
    models.answers = {Result<std::string>("```bash\nwc -l \"$FILE_NAME\"\n```")};
    const auto command = generator.generateCommand("how many lines has this odd thing", files, model, {});
    ASSERT_TRUE(command);
    EXPECT_EQ(command->bashCommand, "wc -l \"${FILE_NAME}\"");
    EXPECT_EQ(models.asked[0].messages[0].role, AIRole::system);
    EXPECT_EQ(texts(models.asked[0].messages),
              std::vector<std::string>{"user: USER PROMPT: how many lines has this odd thing"});
    EXPECT_EQ(texts(command->messages), (std::vector<std::string>{"user: how many lines has this odd thing",
                                                                  "assistant: wc -l \"${FILE_NAME}\""}));
    EXPECT_EQ(command->messages.size(), 3U);
}

TEST_F(Generation, FollowUpsAddUp) {
    models.answers = {Result<std::string>("ls"), Result<std::string>("ls -l"), Result<std::string>("ls -la")};
    auto command = generator.generateCommand("show what is odd", files, model, {});
    command = generator.generateFollowUp("longer", files, model, *command, {});
    command = generator.generateFollowUp("all of it", files, model, *command, {});
    ASSERT_TRUE(command);
    EXPECT_EQ(command->prompt, "all of it");
    EXPECT_EQ(
        texts(models.asked[2].messages),
        (std::vector<std::string>{"user: PRIOR USER PROMPT: show what is odd",
                                  "assistant: YOUR PRIOR COMMAND OUTPUT: ls", "user: PRIOR USER PROMPT: longer",
                                  "assistant: YOUR PRIOR COMMAND OUTPUT: ls -l", "user: USER AMMENDMENT: all of it"}));
    EXPECT_EQ(texts(command->messages),
              (std::vector<std::string>{"user: show what is odd", "assistant: ls", "user: longer", "assistant: ls -l",
                                        "user: all of it", "assistant: ls -la"}));
    EXPECT_EQ(command->messages[0].role, AIRole::system);
    EXPECT_EQ(command->messages[0].text, models.asked[2].messages[0].text);
}

TEST_F(Generation, QuickRuleAsksNoModel) {
    models.problem = "no key";
    const auto command = generator.generateCommand("zip", files, model, {});
    ASSERT_TRUE(command);
    EXPECT_TRUE(models.asked.empty());
    EXPECT_EQ(command->messages.size(), 2U);
    EXPECT_EQ(command->messages[0], (AIMessage{AIRole::user, "zip"}));
    EXPECT_EQ(generator.generateCommand("something odd", files, model, {}).failure().description, "no key");
}

TEST_F(Generation, EmptyAnswersFail) {
    models.answers = {Result<std::string>("```bash\n\n```"), Failure{"gone", 502}};
    EXPECT_FALSE(generator.generateCommand("something odd", files, model, {}));
    EXPECT_EQ(generator.generateCommand("something odd", files, model, {}).failure().code, 502);
}

TEST_F(Generation, OwnModelsAreFastUnlessTheySayOtherwise) {
    CustomModel custom = CustomModel::fresh();
    custom.modelName = "mine";
    custom.baseURL = "http://localhost:1";
    customModels.add(custom);
    EXPECT_EQ(generator.paceOf(custom.aiModel()), ModelPace::fast);
    custom.fastMode = false;
    customModels.update(custom);
    EXPECT_EQ(generator.paceOf(custom.aiModel()), ModelPace::normal);
    EXPECT_EQ(generator.paceOf(model), ModelPace::normal);
    customModels.remove(custom.id);
    EXPECT_EQ(generator.paceOf(custom.aiModel()), ModelPace::normal);
}

TEST(Answers, LoseTheReasoningInFront) {
    const std::pair<const char*, const char*> thoughts[] = {{"<think>hmm\nhmm</think>\nls", "ls"},
                                                            {"ls <think>x</think>", "ls <think>x</think>"},
                                                            {" <think>a</think> <think>b</think>", "<think>b</think>"}};
    for (const auto& [text, rest] : thoughts) EXPECT_EQ(withoutReasoning(text), rest);
    EXPECT_EQ(elapsedText(std::chrono::milliseconds(499)), "499ms");
    EXPECT_EQ(elapsedText(std::chrono::milliseconds(500)), "0.50s");
    EXPECT_EQ(elapsedText(std::chrono::milliseconds(1239)), "1.24s");
}

TEST(Summaries, PromptHasTheShapeOfItsOutput) {
    const RunToSummarize plain{
        .prompt = "count", .command = "wc -l a", .files = {FilePath("/w/a")}, .output = "12 a", .allSuccess = true};
    EXPECT_EQ(summaryPrompt(plain),
              "USER HAD 1 FILE(S) SELECTED\nORIGINAL USER REQUEST: count\nAI-GENERATED COMMAND: wc -l a\n\nProvide a 1 "
              "line, 3-10 word summary with emoji that summarises or extracts the exact requested information from the "
              "output\nExtract the key information or identify if it's an error. Be specific with numbers, details and "
              "units - this summary is all the user will see.\n\nExamples:\n- 🤔 Please can you clarify your "
              "request?\n- 🎬 Converted 3 MP4 files\n- 🤷 No images found\n\nSTDOUT TO SUMMARIZE: 12 a\n");

    struct Case {
        const char* what;
        RunToSummarize run;
        std::vector<std::string> parts;
        std::vector<std::string> absent;
    };
    const std::string threeNineNine(399, 'x');
    const std::string fourHundred(400, 'x');
    std::string tooLong = std::string(5000, 'a') + "é" + std::string(5000, 'b');
    const Case cases[] = {
        {"empty",
         {.prompt = "p", .command = "touch x", .files = {}, .output = ""},
         {"USER SELECTED NO FILES AS INPUT\nORIGINAL", "x\n\nThe command ran and produced no console output."},
         {"STDOUT", "FAILED"}},
        {"failed and empty",
         {.prompt = "p", .command = "c", .files = {}, .output = "", .failures = {"one", "two"}, .allSuccess = false},
         {"COMMAND: c\nTHE COMMAND FAILED: one two\n\nThe command ran"},
         {}},
        {"echo", {.prompt = "p", .command = "echoes", .files = {}, .output = "o"}, {"If the command was an echo"}, {}},
        {"short", {.prompt = "p", .command = "c", .files = {}, .output = threeNineNine}, {"STDOUT TO SUMMARIZE"}, {}},
        {"long",
         {.prompt = "p", .command = "c", .files = {}, .output = fourHundred},
         {"x\n\n====\n\nTHE ABOVE IS THE OUTPUT OF THIS LLM-GENERATEDCOMMAND: c\nORIGINAL HUMAN REQUEST: p\nRETURN "
          "CODE "
          "WAS ZERO, INDICATING SUCCESS\n\n\nNO FILES WERE SELECTED\n\nPLEASE SUMMARIZE"},
         {"STDOUT"}},
        {"long and failed",
         {.prompt = "p",
          .command = "c",
          .files = {},
          .output = fourHundred,
          .failures = {std::string(600, 'f')},
          .allSuccess = false},
         {"p\nTHE COMMAND FAILED: " + std::string(500, 'f') + "\n\n\nNO FILES"},
         {}},
        {"cut",
         {.prompt = "p", .command = "c", .files = {}, .output = tooLong},
         {"a\n\n... <TRUNCATED 1 CHARACTERS> ...\n\nb"},
         {"é"}},
        {"cut, and little of it left",
         {.prompt = "p", .command = "c", .files = {}, .output = "a" + std::string(10000, ' ') + "b"},
         {"a\n\n... <TRUNCATED 2 CHARACTERS> ...\n\nb\n\n====\n\nTHE ABOVE IS"},
         {"STDOUT"}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        const std::string prompt = summaryPrompt(row.run);
        for (const std::string& part : row.parts) EXPECT_NE(prompt.find(part), std::string::npos) << prompt;
        for (const std::string& part : row.absent) EXPECT_EQ(prompt.find(part), std::string::npos);
    }
}

TEST(Summaries, QuickRuleComesFirst) {
    FakeModels models;
    models.answers = {Result<std::string>(" ✅ done \n")};
    RunToSummarize run{.prompt = "zip", .command = "zip", .files = {FilePath("/w/a.txt")}, .output = ""};
    const AIModel model = AIModelList::defaultSummarizationModel();
    const auto quick = summarizeOutput(models, model, run, {});
    ASSERT_TRUE(quick);
    EXPECT_TRUE(quick->isQuick);
    EXPECT_TRUE(models.asked.empty());
    run.allSuccess = false;
    const auto asked = summarizeOutput(models, model, run, {});
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->text, "✅ done");
    EXPECT_FALSE(asked->isQuick);
}

}  // namespace command_generation_tests
}  // namespace brindlet
