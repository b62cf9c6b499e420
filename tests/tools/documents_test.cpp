// The tool for written documents; pandoc, unzip and wc say what came out.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tools/tool_checks.h"

namespace brindlet {
namespace documents_tests {

// Eighteen words, with the number of the list and that of the note.
constexpr std::string_view report =
    "# Report\n\nA *short* text with ünicode.\n\n- one\n- two\n    1. three\n\n"
    "| a | b |\n|---|---|\n| c | d |\n\nNoted[^1].\n\n[^1]: the note\n";
constexpr std::string_view reportText =
    "Report\nA short text with ünicode.\none\ntwo\n\t1. three\na \tb\nc \td\nNoted1.\n1. the note\n";

void makeDocuments(const ToolBench& bench) {
    bench.write("report.md", report);
    bench.write("titled.md", "---\ntitle: The Title\nauthor: Ann\n---\n\nBody.\n");
    bench.write("note.txt", "one two three\n\nfour <five> & six\n");
    bench.write("latin.txt", "caf\xe9 \x93q\x94\n");
    const ToolRun made = bench.run(
        "pandoc report.md -o 'my report.docx' && pandoc report.md -s -o report.html && "
        "pandoc report.md -o report.odt && pandoc titled.md -o titled.docx");
    ASSERT_EQ(made.status, 0) << made.output;
}

TEST(Textutil, GivesTheWords) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"pandoc"})) GTEST_SKIP() << *missing;
    makeDocuments(bench);
    struct Case {
        std::string_view line;
        std::string_view output;
    };
    const Case cases[] = {
        {R"(FILE_NAME='my report.docx'; textutil -convert txt "$FILE_NAME" -stdout)", reportText},
        {"textutil -convert txt -stdout 'my report.docx' | wc -w", "18\n"},
        {"textutil -convert txt -stdout note.txt | wc -w", "7\n"},
        {"textutil -convert txt report.html -stdout", reportText},
        // What a Word document has as its title is part of its text.
        {"textutil -convert txt titled.docx -stdout", "The Title\nAnn\nBody.\n"},
        // As a prediction of it does, where no file can be written.
        {"trap '' XFSZ; ulimit -f 0; textutil -convert txt titled.docx -stdout", "The Title\nAnn\nBody.\n"},
        // Under the endings of others.
        {"cp titled.docx old.doc; textutil -convert txt old.doc -stdout", "The Title\nAnn\nBody.\n"},
        {"cp report.odt new.docx; textutil -info new.docx | sed -n 2p", "  Type:  OpenDocument text format\n"},
        {"printf '{\\\\rtf1 a}' >b.docx; textutil -info b.docx | sed -n 2p", "  Type:  rich text (RTF)\n"},
        {"textutil -convert txt latin.txt -stdout", "café “q”\n"},
        {"textutil -convert txt -inputencoding ISO-8859-5 latin.txt -stdout | head -c 5", "cafщ"},
        {"textutil -cat txt note.txt titled.docx -stdout",
         "one two three\n\nfour <five> & six\nThe Title\nAnn\nBody.\n"},
        {"textutil -format html -convert txt note.txt -stdout", "one two three four & six\n"},
        {"textutil -info note.txt | tail -3", "  Type:  plain text\n  Size:  33 bytes\n  Length:  33 characters\n"},
    };
    for (const auto& [line, output] : cases) EXPECT_EQ(bench.run(line).output, output) << line;
}

TEST(Textutil, WritesDocuments) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"pandoc", "unzip"})) GTEST_SKIP() << *missing;
    makeDocuments(bench);
    struct Case {
        std::string_view line;
        std::string_view output;  // of what the judge says, behind the tool's own
    };
    const Case cases[] = {
        {"textutil -convert docx note.txt; pandoc note.docx -t plain", "one two three\n\nfour <five> & six\n"},
        {R"(FILE_BASENAME=note; textutil -convert rtf note.txt -output "${FILE_BASENAME}.rtf"; head -c 6 note.rtf)",
         "{\\rtf1"},
        {"textutil -convert odt 'my report.docx' && unzip -p 'my report.odt' content.xml | grep -c ünicode", "1\n"},
        {"textutil -convert html latin.txt && pandoc -f html -t plain latin.html", "café “q”\n"},
        {"textutil -convert docx note.txt latin.txt -output c.docx && ls c*", "c.docx\nc_2.docx\n"},
        {"textutil -cat html note.txt latin.txt && pandoc -f html -t plain out.html",
         "one two three\n\nfour <five> & six\n\ncafé “q”\n"},
        {"textutil -cat odt note.txt titled.docx -output all.odt && pandoc all.odt -t plain",
         "one two three\n\nfour <five> & six\n\nThe Title\n\nAnn\n\nBody.\n"},
        {"textutil -convert txt -extension .text titled.docx && cat titled.text", "The Title\nAnn\nBody.\n"},
        {"cp note.txt ./-note.txt && textutil -convert html -- -note.txt && ls ./-note.html", "./-note.html\n"},
        {"cp note.txt $'a\\xff\\n.txt' && textutil -convert html $'a\\xff\\n.txt' && [ -e $'a\\xff\\n.html' ]", ""},
    };
    for (const auto& [line, output] : cases) EXPECT_EQ(bench.run(line).output, output) << line;
}

// A page or a document must not bring in what lies on the disk, nor tell anybody that it is read.
TEST(Textutil, TakesPicturesFromTheDocumentOnly) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"pandoc", "unzip", "convert"})) GTEST_SKIP() << *missing;
    bench.run("convert -size 8x8 xc:red secret.png; echo '![alt](secret.png)' | pandoc -o own.docx");
    bench.write("page.html", "<p>hi <img src='" + bench.path("secret.png") +
                                 "'><img src='secret.png'><iframe src='secret.png'></iframe>" +
                                 "<img src='data:image/png;base64,AAAA'> you</p>");
    EXPECT_EQ(bench.run("textutil -convert docx page.html; unzip -l page.docx | grep -c media/").output, "1\n");
    EXPECT_EQ(bench.run("textutil -convert odt own.docx; unzip -p own.odt 'Pictures/*' | cmp - secret.png").output, "");
    // The same document, with its picture's name in it pointing to the disk.
    const ToolRun linked = bench.run(
        "mkdir x && cd x && unzip -q ../own.odt && sed -i 's,href=\"Pictures/[^\"]*\",href=\"../secret.png\",' "
        "content.xml && zip -qr ../linked.odt . && cd .. && textutil -convert docx linked.odt && "
        "unzip -l linked.docx | grep -c media/");
    EXPECT_EQ(linked.output, "0\n");
}

TEST(Textutil, Refuses) {
    ToolBench bench;
    bench.set("TOOLS", BRINDLET_BINARIES);
    for (const char* name : {"a.txt", "a.pdf", "a.webarchive", "b.rtf"}) bench.write(name, "text");
    bench.write("bad.docx", "no document");
    struct Case {
        std::string_view words;
        int status;
        std::string_view says;
    };
    const Case cases[] = {
        {"a.txt", 64, "no action"},
        {"-convert pdf a.txt", 64, "PDF files are not"},
        {"-convert rtfd a.txt", 64, "rtf is"},
        {"-convert txt", 64, "no input files"},
        {"-convert", 64, "needs a value"},
        {"-font Times -convert rtf a.txt", 64, "'-font' is not known"},
        {"-convert txt a.pdf", 64, "pdftotext"},
        {"-convert txt a.webarchive", 64, "web archives"},
        {"-convert txt gone.docx", 1, "'gone.docx': No such file"},
        {"-convert html -inputencoding klingon a.txt", 1, "no encoding 'klingon'"},
        {"-convert html a.txt -output gone/a.html", 1, "can't be written"},
        {"-convert docx a.txt", 69, "the Debian package pandoc"},
        {"-convert txt b.rtf", 69, "the Debian package libreoffice-writer-nogui"},
    };
    const auto before = contents(bench);
    for (const auto& [words, status, says] : cases) {
        SCOPED_TRACE(words);
        const ToolRun outcome = bench.run("PATH=$TOOLS; textutil " + std::string(words));
        EXPECT_EQ(outcome.status, status);
        EXPECT_NE(outcome.output.find(says), std::string::npos) << outcome.output;
        EXPECT_EQ(std::ranges::count(outcome.output, '\n'), 1) << outcome.output;
    }
    if (bench.has("pandoc")) {
        EXPECT_EQ(bench.run("textutil -convert txt bad.docx").status, 1);
    }
    EXPECT_EQ(contents(bench), before);
}

// Debian's pandoc loses the letter.
TEST(Textutil, ReadsRichTextAndOldWord) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"pandoc", "soffice"})) GTEST_SKIP() << *missing;
    bench.write("a.rtf", "{\\rtf1\\ansi\\ansicpg1252 Gr\\'fc\\'dfe {\\b hier}\\par}");
    EXPECT_EQ(bench.run("textutil -convert doc a.rtf && textutil -convert txt a.doc -stdout").output, "Grüße hier\n");
}

}  // namespace documents_tests
}  // namespace brindlet
