// What people want to find, to select and to be shown.
#include "prompts/catalogue_rows.h"
#include "prompts/word_lists.h"

namespace brindlet {

using enum SingleMultiple;

CategoryRows selectionCategories() {
    return {
        {
            .id = "select_shallow",
            .prompts = {"<select> <all?> <format> files", "<select> <all?> <format>s",
                        "<select> <all?> files <with1> * in them", "<select> <all?> <format?> <that> <end> <with2?> *",
                        "<select> <all?> files <matching?> *", "<select> <everything?> <matching?> *"},
            .variants = {{"select", {"select", "select", "select", "highlight"}},
                         {"all", {"all", "all", "every", "all the"}},
                         {"format",
                          {"mp4", "pdf", "jpg", "png", "txt", "mp3", "image", "video", "document", "photo", "mov",
                           "docx", "zip"}},
                         {"with1", {"with", "with", "containing"}},
                         {"that", {"that", "which"}},
                         {"end", {"end", "start"}},
                         {"with2", {"with", "in"}},
                         {"matching", {"matching", "named", "called", "that match", "ending with"}},
                         {"everything", {"everything", "all"}}},
            .bias = 1.1F,
            .metadata = {{"tools", "echo finderSelect"}},
            .outputExamples = {{.prompt = "select all mp4 files",
                                .expectedCommand = "find . -maxdepth 1 -iname '*.mp4' | finderSelect",
                                .singleMultiple = singleMultipleOrNone}},
            .extraRules = {rules::finderSelectTool},
        },
        {
            .id = "find_deep",
            .prompts = {"<find> <all?> <format> files", "<find> <all?> files <matching?> *",
                        "<find> <all?> files <that have> * in them", "<find> <all?> <format?> <that> <end> <with?> *",
                        "<find> <all?> files <matching?> *", "<find> <all?> <format?> <that> <end> <with?> *"},
            .variants = {{"find", {"find", "search for", "look for"}},
                         {"all", {"all", "every", "any", "all the"}},
                         {"format", words::allFormats()},
                         {"that have", {"with", "that have"}},
                         {"that", {"that", "which"}},
                         {"end", {"end", "start"}},
                         {"with", {"with", "in"}},
                         {"matching", {"matching", "that match"}}},
            .bias = 1.1F,
            .metadata = {{"tools", "echo finderSelect"}},
            .outputExamples = {{.prompt = "find all mp4 files",
                                .expectedCommand = "mdfind -onlyin . 'kMDItemFSName == *.mp4' | finderSelect",
                                .singleMultiple = singleMultipleOrNone}},
            .extraRules = {rules::finderSelectTool, rules::deepOrShallow},
        },
        {
            .id = "selectSpecificFile",
            .prompts = {"<select> *"},
            .variants = {{"select",
                          {"select", "select", "highlight", "pick", "choose", "select file", "select the file",
                           "select the folder", "pick the file", "select my", "select the one called", "select report",
                           "select document", "select image"}}},
            .bias = 1.1F,
            .metadata = {{"tools", "echo finderSelect"}},
            .outputExamples = {{.prompt = "select bob",
                                .expectedCommand = "find . -maxdepth 1 -iname 'bob' | finderSelect",
                                .singleMultiple = singleMultipleOrNone}},
            .extraRules = {rules::finderSelectTool},
        },
        {
            .id = "mdfindSelect",
            .prompts = {"<select> <any> <files> <that contain> *"},
            .variants = {{"select", {"select", "select", "highlight"}},
                         {"any", {"any", "all"}},
                         {"files", {"files", "pdfs", "documents", "text files"}},
                         {"that contain", {"that contain", "that mention", "mentioning"}}},
            .bias = 1.1F,
            .metadata = {{"tools", "echo finderSelect"}},
            .outputExamples = {{.prompt = "select any pdfs that mention apple",
                                .expectedCommand =
                                    R"(mdfind -onlyin . 'kMDItemFSName == *.pdf && kMDItemTextContent == "*apple*"' | )"
                                    "finderSelect",
                                .singleMultiple = singleMultipleOrNone}},
            .extraRules = {rules::finderSelectTool},
        },
    };
}

CategoryRows searchCategories() {
    return {
        {
            .id = "findAll",
            .prompts = {"<find> <all> <of the?> <pdf><files> <stored?> <anywhere?> on <my> <whole?> <mac>",
                        "<search> <my?> <whole?> <mac> for <any?> <pdf><files>"},
            .variants = {{"find", words::searchVerbs()},
                         {"all", words::everyWords()},
                         {"pdf", words::joinedWords({{"pdf", "pdf"},
                                                     words::allFormats(),
                                                     {"image", "photo", "document", "screenshot", "spreadsheet", "song",
                                                      "zip", "large file", "archive"}})},
                         {"files", {"s", " files"}},
                         {"anywhere", {"anywhere", "everywhere"}},
                         {"my", {"my", "this"}},
                         {"mac", words::searchedPlaces()},
                         {"search", {"search", "scan"}},
                         {"any", {"any", "all", "every"}}},
            .metadata = {{"tools", "find mdfind presentFiles"}},
            .outputExamples =
                {{.prompt = "Find all pdf files on my mac from today with 'highland' in the title",
                  .expectedCommand =
                      R"(mdfind 'kMDItemFSName == *.pdf date:today && kMDItemTextContent == "*highland*"' | )"
                      "presentFiles",
                  .singleMultiple = singleMultipleOrNone}},
            .extraRules = {rules::mdfindPatterns, rules::presentFileNames},
        },
        {
            .id = "findAllWithContent",
            .prompts = {"<find> <all> <of the?> <text><files> <stored?> <anywhere?> on <my> <whole?> <mac> "
                        "<with * in their content>",
                        "<search> <my?> <whole?> <mac> for <any?> <text><files> <with * in their content>"},
            .variants = {{"find", words::searchVerbs()},
                         {"search", {"search", "scan"}},
                         {"all", words::everyWords()},
                         {"text", words::textutilFormats()},
                         {"files", {"s", " files"}},
                         {"my", {"my", "this"}},
                         {"mac", words::searchedPlaces()},
                         {"with * in their content",
                          {"with * in their content", "that contain *", "with * in them", "that mention *",
                           "mentioning *", "with the text *", "that contain the phrase *"}}},
            .metadata = {{"tools", "find mdfind presentFiles"}},
            .outputExamples =
                {{.prompt = "Find all pdf files from today on my mac that mention apple",
                  .expectedCommand =
                      R"(mdfind 'kMDItemFSName == *.pdf && kMDItemTextContent == "*apple*"' | presentFiles)",
                  .singleMultiple = singleMultipleOrNone}},
            .extraRules = {rules::mdfindPatterns, rules::presentFileNames},
        },
        {
            .id = "which",
            .prompts = {"<do I have> _ <installed>", "which _"},
            .variants = {{"do I have", {"do I have", "have I got"}},
                         {"installed",
                          {"installed", "downloaded", "on my mac", "on my computer", "on my laptop", "on my macbook",
                           "on my machine", "on my device", "on here"}}},
            .metadata = {{"tools", "which presentFiles"}},
            .outputExamples = {{.prompt = "Have I got ffmpeg installed?",
                                .expectedCommand = "which ffmpeg | presentFiles",
                                .singleMultiple = singleMultipleOrNone}},
            .extraRules = {rules::presentItem},
        },
    };
}

}  // namespace brindlet
