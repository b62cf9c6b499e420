// What people want of written documents: another format, a summary, a count, a print.
#include "prompts/catalogue_rows.h"
#include "prompts/word_lists.h"

namespace brindlet {

using enum SingleMultiple;

CategoryRows documentCategories() {
    return {
        {
            .id = "simpleTextutilFormatConversion",
            .prompts = {"convert <this?> to <a?> <format>", "make <a?> <format>", "export as <a?> <format>",
                        "save as <a?> <format>", "turn <this?> <format?> into <a?> <format>",
                        "make <this?> <format?> into <a?> <format>", "convert <this?> <format?> to <a?> <format>",
                        "convert <this?> <format?> into <a?> <format>"},
            .variants = {{"this", words::thisDocument()},
                         {"a", {"a", "an"}},
                         {"format", words::joinedWords(
                                        {words::textutilFormats(),
                                         {"word", "plain text", "rich text", "text", "word document", "web page"}})}},
            .fileFormats = words::textutilFormats(),
            .metadata = {{"tools", "textutil"}},
            .outputExamples = {{.prompt = "rtf",
                                .expectedCommand =
                                    R"(textutil -convert rtf "$FILE_NAME" -output "${FILE_BASENAME}.rtf")",
                                .singleMultiple = singleOrMultiple}},
            .extraRules = {rules::textutilReadsNoPdf},
        },
        {
            .id = "summariseNeedsTextUtil",
            .prompts = {"<summarise> <this?>", "<summarise> <this?> <format>", "<summarise> <this?> <format> <here?>",
                        "<what's in> <this?> <format?>"},
            .variants = {{"summarise", words::summaryVerbs()},
                         {"this", words::joinedWords({words::pointingWords(), {"it"}})},
                         {"format",
                          words::joinedWords(
                              {words::textutilFormats(), words::documentWords(), {"word document", "web page"}})},
                         {"what's in", words::summaryQuestions()}},
            .fileFormats = words::textutilFormats(),
            .metadata = {{"tools", "textutil"}},
            .outputExamples = {{.prompt = "Summarise this",
                                .expectedCommand = R"(textutil -convert txt "$FILE_NAME" -stdout)",
                                .singleMultiple = singleOrMultiple}},
        },
        {
            .id = "summarisePlainText",
            .prompts = {"<summarise> <this?>", "<summarise> <this?> <format>", "<summarise> <this?> <format> <here?>",
                        "<what's in> <this?> <format?>"},
            .variants = {{"summarise", words::summaryVerbs()},
                         {"this", words::joinedWords({words::pointingWords(), {"it"}})},
                         {"format", words::joinedWords({words::plainTextFormats(),
                                                        {"text file", "file", "note", "notes", "log file", "readme",
                                                         "markdown file", "list", "document", "csv file"}})},
                         {"what's in", words::summaryQuestions()}},
            .fileFormats = words::plainTextFormats(),
            .metadata = {{"tools", "cat"}},
            .outputExamples = {{.prompt = "Summarize this",
                                .expectedCommand = R"(cat "$FILE_NAME")",
                                .singleMultiple = singleOrMultiple}},
        },
    };
}

CategoryRows countingCategories() {
    return {
        {
            .id = "wordCountInComplexFormat",
            .prompts = {"wc", "<word> count <in this?>", "how many <word>s <in this?>", "what's the <word> count?",
                        "wordcount?", "<word>s?", "how much have I written?"},
            .variants = {{"word", {"word", "word", "word", "character", "letter", "sentence", "paragraph", "line"}},
                         {"in this", words::joinedWords({words::countedPlaces(),
                                                         {"in this word doc", "in this pdf", "in this essay"}})}},
            .fileFormats = words::complexDocumentFiles(),
            .metadata = {{"tools", "wc textutil"}},
            .outputExamples = {{.prompt = "count words <non plain text, e.g. docx, pdf, need to convert first>",
                                .expectedCommand = "textutil -convert txt -stdout $FILE_NAME | wc -w",
                                .singleMultiple = singleOrMultiple}},
        },
        {
            .id = "wordCountPureText",
            .prompts = {"wc", "<word> count <in this?>", "how many <word>s <in this?>", "what's the <word> count?",
                        "wordcount?", "<word>s?", "how much have I written?", "how much text <in this?>"},
            .variants = {{"word", {"word", "word", "word", "character", "letter", "sentence", "paragraph", "line"}},
                         {"in this", words::joinedWords(
                                         {words::countedPlaces(),
                                          {"in this text", "in this folder", "in this text file", "in my notes"}})}},
            .fileFormats = words::plainTextFormats(),
            .metadata = {{"tools", "wc"}},
            .outputExamples = {{.prompt = "count words <plain text formats only>",
                                .expectedCommand = "wc -w $SPACE_SEPARATED_FILE_NAMES | awk '{print $1}' | tail -1",
                                .singleMultiple = singleOrMultiple},
                               {.prompt = "count words in this folder",
                                .expectedCommand = "wc -w *.(txt|md|csv|log|text|ink) | awk '{print $1}' | tail -1",
                                .singleMultiple = none}},
        },
        {
            .id = "codeLineCount",
            .prompts = {"wc", "line count <in this?>", "lines of <code>?", "lines?", "how many lines <in this?>",
                        "what's the line count?"},
            .variants = {{"in this",
                          {"in this", "in this file", "in here", "in these", "in these files", "in this project",
                           "in this folder", "of code", "of code in this", "of code are there", "of code are in this",
                           "are in this", "does this have"}},
                         {"code",
                          {"code", "code", "js code", "python", "python code", "swift code", "source code",
                           "code in this project", "code in this file", "code in this", "code are there"}}},
            .fileFormats = words::sourceCodeFiles(),
            .metadata = {{"tools", "wc find xargs cat"}},
            .outputExamples = {{.prompt = "how many lines?",
                                .expectedCommand = "wc -l $SPACE_SEPARATED_FILE_NAMES",
                                .singleMultiple = singleOrMultiple},
                               {.prompt = "lines of js code in project",
                                .expectedCommand = "find . -iname '*.js' -print0 | xargs -0 cat | wc -l",
                                .singleMultiple = singleMultipleOrNone}},
        },
    };
}

CategoryRows pandocCategories() {
    return {
        {
            .id = "pandoc_convert_document",
            .prompts = {"<format>", "<convert> <this?> <to> <format>",
                        "<make> <a?> <new?> <format?> <of?> <this?> <doc?>", "<remove> formatting <from?> <this?>"},
            .variants = {{"format", words::joinedWords(
                                        {words::pandocFormats(),
                                         {"word", "markdown", "latex", "plain text", "powerpoint", "ebook", "pptx"}})},
                         {"convert", {"convert", "change", "turn", "transform", "export", "save", "pandoc"}},
                         {"this", words::joinedWords(
                                      {words::thisDocument(), {"this markdown", "this markdown file", "my notes"}})},
                         {"to", {"to", "into", "as", "to a"}},
                         {"make", words::makeWords()},
                         {"a", {"a", "an"}},
                         {"of", {"of", "from", "out of"}},
                         {"doc", words::documentWords()},
                         {"remove", {"remove", "strip", "get rid of", "clear", "delete", "lose"}},
                         {"from", {"from", "in", "of"}}},
            .biasTerms = {{"pandoc", 1.2F}},
            .fileFormats = words::pandocInputFiles(),
            .metadata = {{"tools", "pandoc"}},
            .outputExamples = {{.prompt = "convert this to docx",
                                .expectedCommand = R"(pandoc "$FILE_NAME" -o "$FILE_BASENAME.docx")",
                                .singleMultiple = singleOrMultiple}},
        },
        {
            .id = "pandoc_merge_documents",
            .prompts = {"<merge> <these?> <docs?> <into> <one?> <format?>",
                        "<make> <a?> <doc> <out of> <all of?> these"},
            .variants = {{"merge", words::mergeWords()},
                         {"these", {"these", "these", "the", "all these", "my"}},
                         {"docs",
                          {"documents", "documents", "docs", "files", "markdown files", "word files", "text files",
                           "chapters", "notes"}},
                         {"into", {"into", "to", "as", "in"}},
                         {"one", {"one", "a single", "one big", "a", "1"}},
                         {"format",
                          words::joinedWords({words::pandocFormats(), {"file", "document", "doc", "word doc"}})},
                         {"make", {"make", "create", "build", "generate"}},
                         {"doc",
                          {"document", "doc", "file", "book", "report", "pdf", "ebook", "word doc", "single document"}},
                         {"out of", {"out of", "from", "using", "with"}},
                         {"all of", {"all of", "all"}}},
            .fileFormats = words::pandocInputFiles(),
            .metadata = {{"tools", "pandoc"}},
            .outputExamples = {{.prompt = "merge these markdown files into one pdf",
                                .expectedCommand = R"(pandoc ${SPACE_SEPARATED_FILE_NAMES} -o "merged.pdf")",
                                .singleMultiple = singleOrMultiple}},
        },
        {
            .id = "pandoc_extract_toc",
            .prompts = {"<extract> <toc?> <from> <this?> <doc?>"},
            .variants = {{"extract",
                          {"extract", "get", "show", "create", "make", "generate", "build", "pull out", "list", "add",
                           "add a"}},
                         {"toc",
                          {"toc", "table of contents", "a table of contents", "the table of contents", "contents",
                           "the toc", "contents page", "headings", "outline"}},
                         {"from", {"from", "of", "for", "to", "in"}},
                         {"this", words::pointingWords()},
                         {"doc",
                          words::joinedWords({words::documentWords(), {"markdown", "md", "markdown file", "book"}})}},
            .biasTerms = {{"toc", 1.3F}, {"table of contents", 1.3F}},
            .fileFormats = words::pandocInputFiles(),
            .metadata = {{"tools", "pandoc"}},
            .outputExamples = {{.prompt = "extract toc from this document",
                                .expectedCommand =
                                    R"(pandoc "${FILE_NAME}" --toc -o "${FILE_BASENAME}-with-toc.${FILE_EXTENSION}")",
                                .singleMultiple = singleOrMultiple}},
        },
    };
}

CategoryRows printingCategories() {
    return {
        {
            .id = "print_document_lp",
            .prompts = {"print <this?>", "<physically?> print <this?> <doc?> <out?>",
                        "<send> <to?> <the?> <printer?> <queue?>", "make <a?> hard copy <of this?>"},
            .variants = {{"this",
                          {"this", "these", "it", "them", "this document", "this file", "this page", "these documents",
                           "this photo", "the document", "this pdf", "2 copies of this"}},
                         {"physically", {"physically", "please", "actually", "can you"}},
                         {"doc", words::joinedWords({words::documentWords(), {"pdf", "photo", "picture"}})},
                         {"out", {"out", "on paper", "on the printer", "for me"}},
                         {"send", {"send", "send", "send this", "send it", "send these", "add this", "submit"}},
                         {"to", {"to", "off to"}},
                         {"the", {"the", "my", "a"}},
                         {"printer", {"printer", "printer", "print", "printing", "default printer", "laser printer"}},
                         {"queue", {"queue", "job", "tray"}},
                         {"a", {"a", "some", "me a"}},
                         {"of this", {"of this", "of it", "of these", "of this document", "of this page"}}},
            .fileFormats = words::printableFiles(),
            .metadata = {{"tools", "lp"}},
            .outputExamples = {{.prompt = "print this",
                                .expectedCommand = "lp ${FILE_NAME}",
                                .singleMultiple = singleOrMultiple}},
        },
    };
}

}  // namespace brindlet
