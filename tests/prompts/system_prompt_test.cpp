#include "prompts/system_prompt.h"

#include <gtest/gtest.h>

#include "fakes/fake_disk.h"
#include "text/strings.h"

namespace brindlet {
namespace system_prompt_tests {

std::vector<FilePath> paths(const std::vector<std::string>& names) {
    std::vector<FilePath> result;
    for (const std::string& name : names) result.push_back(FilePath("/w").child(name));
    return result;
}

class SystemPromptTest : public testing::Test {
  protected:
    std::string compose(std::string_view prompt, const std::vector<std::string>& names,
                        ModelPace pace = ModelPace::normal) {
        return composeSystemPrompt(prompt, pace, paths(names), {search, disk, installed});
    }
    // What stands between the first line and the end of the introduction.
    std::string selection(const std::vector<std::string>& names) {
        const std::string text = compose("zip", names);
        const std::size_t begin = text.find("window.\n") + 8;
        return text.substr(begin, text.find("</intro>") - begin);
    }
    static int examples(const std::string& text) { return static_cast<int>(split(text, "PROMPT: ").size()) - 1; }

    FakeDisk disk{"a.txt", "b.TXT", "say \"hi\".md", "dir/", "other/"};
    PromptIndex index;
    PromptSimilaritySearch search{index};
    std::vector<std::string> installed;
};

TEST_F(SystemPromptTest, TheSelection) {
    const std::string afterOne =
        "\nYour single command may be applied to other files in future, so keep it generic where possible.\n"
        "User's request may or may not relate to this file.\n";
    const std::string afterMore =
        "\nIn MOST cases your commands will be applied repeatedly to multiple files using filename variables, so keep "
        "them generic where possible.\n\nUser's request may or may not relate to these files.\n";
    std::vector<std::string> plain(11, "Makefile"), one(11, "a.TXT"), many(11, "x");
    std::vector<std::string> two = one, twelve;
    two.back() = "b.md";
    for (int count = 0; count < 12; ++count) twelve.push_back("f.t" + std::to_string(count));
    const struct {
        std::vector<std::string> names;
        std::string expected;
    } rows[] = {
        {{},
         "User is looking at a Finder window in a specific directory with no specific files selected (intentionally or "
         "not.)\n"},
        {{"dir"}, "User has ONE selected folder: \"dir/\"" + afterOne},
        {{"say \"hi\".md"}, "User has ONE selected file: \"say \\\"hi\\\".md\"" + afterOne},
        {{"missing"}, "User has ONE selected file: \"missing\"" + afterOne},
        {{"a.txt", "b.TXT"}, "User has 2 files selected: \"a.txt\", \"b.TXT\"" + afterMore},
        {{"dir", "other"}, "User has 2 folders selected: \"dir/\", \"other/\"" + afterMore},
        {{"dir", "a.txt"}, "User has 1 file and 1 folder selected: \"dir/\", \"a.txt\"" + afterMore},
        {{"dir", "other", "a.txt", "b.TXT"},
         "User has 2 files and 2 folders selected: \"dir/\", \"other/\", \"a.txt\", \"b.TXT\"" + afterMore},
        {plain, "User has 11 files selected" + afterMore},
        {one, "User has 11 files selected with type: txt" + afterMore},
        {two, "User has 11 files selected with types: txt, md" + afterMore},
        {twelve, "User has 12 files selected with a variety of types including: t0, t1, t2, t3, t4" + afterMore},
    };
    for (const auto& row : rows) EXPECT_EQ(selection(row.names), row.expected);
}

TEST_F(SystemPromptTest, TheWholeText) {
    index.add("archive", "zip these up");
    installed = {"pandoc", "ffmpeg"};
    EXPECT_EQ(
        compose("zip", {"a.txt", "b.TXT"}),
        "<intro>\nYou are an efficient natural language to bash conversion machine, acting in the context of a Mac "
        "Finder window.\n"
        "User has 2 files selected: \"a.txt\", \"b.TXT\"\nIn MOST cases your commands will be applied repeatedly "
        "to multiple files using filename variables, so keep them generic where possible.\n\nUser's request may "
        "or may not relate to these files.\n"
        "</intro>\n\n<examples>\nPROMPT: <absolute nonsense>\nYOUR OUTPUT: echo \"Please can you clarify your "
        "request?\"\n\nPROMPT: What's the weather here?\nYOUR OUTPUT: echo \"What's your location?\"\n\n"
        "PROMPT: zip these up\nYOUR OUTPUT: zip -r archive.zip $SPACE_SEPARATED_FILE_NAMES\n</examples>\n\n"
        "<rules>\nNOTES ON ABOVE EXAMPLES:\n - zip: If possible, choose a good archive name based on user's "
        "selected filenames rather than \"archive.zip\"\n\nRules:\n - Prefer `mv` to trash over `rm`\n - User MAY "
        "make their request as a literal (pseudo-)bash command. Just pass it through!\n - ONLY use these tools: "
        "zip, unzip, ffmpeg, ffprobe, sips, textutil, ls, du, mv, cp, pandoc, built-in mac tools, or tools "
        "explicitly named by user\n - ONLY output a single line of bash\n - If you need clarification, or further "
        "information, ask your question in a pure echo command without variable expansion, in no more than 3-8 "
        "words, but only if really necessary\n - Don't use explicit filenames unless you absolutely have to.\n - "
        "Use the variables $FILE_NAME, $FILE_BASENAME, and $FILE_EXTENSION to run the command once per selected "
        "file. To process all selected files at once (e.g. for zip or wc), use the $SPACE_SEPARATED_FILE_NAMES "
        "variable.\n</rules>");
}

TEST_F(SystemPromptTest, ExamplesRulesAndTools) {
    index.add("archive", "zip these up");
    // One file: both rules on archives. None: the other example, and no rule on a selection.
    EXPECT_TRUE(contains(compose("zip", {"a.txt"}), "rather than $FILE_NAME for zip, in case"));
    EXPECT_TRUE(contains(compose("zip", {}), "YOUR OUTPUT: zip -r archive.zip *\n"));
    EXPECT_TRUE(
        contains(compose("zip", {}), "PROMPT: convert to mp4\nYOUR OUTPUT: echo \"Please select a video file\""));
    EXPECT_FALSE(contains(compose("zip", {}), "NOTES ON ABOVE EXAMPLES"));

    PromptIndex videos;
    PromptSimilaritySearch videoSearch(videos);
    videos.add("videoConvert", "convert to mp4");
    const std::string none = composeSystemPrompt("mp4", ModelPace::normal, {}, {videoSearch, disk, {"pandoc"}});
    EXPECT_TRUE(contains(none, "PROMPT: Create a new 'video files' folder\nYOUR OUTPUT: mkdir -p \"video files\"\n"));
    EXPECT_TRUE(contains(none, "ONLY use these tools: , built-in mac tools"));
}

TEST_F(SystemPromptTest, NoMoreExamplesThanTheModelsPaceAllows) {
    search.buildIndex();
    for (const char* request : {"make this 300px wide", "rotate", "convert to png"}) {
        EXPECT_LE(examples(compose(request, {"a.png"})), 2 + 6) << request;
        EXPECT_LE(examples(compose(request, {"a.png"}, ModelPace::fast)), 2 + 3) << request;
        EXPECT_GE(examples(compose(request, {"a.png"}, ModelPace::fast)), 2 + 1) << request;
    }
}

}  // namespace system_prompt_tests
}  // namespace brindlet
