#include <gtest/gtest.h>

#include <chrono>

#include "platform/file_system.h"
#include "support/ordinary_user.h"
#include "support/predict.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace documents_tests {

using Texts = std::vector<std::string>;

struct Row {
    std::string_view line;
    Texts changes = {};
    Texts sideEffects = {};
    std::string outcome = "0 unknown";
    Texts errors = {};
};

// Words that make the real tool (Ghostscript 10.0, qpdf 11.3, pandoc 2.17, poppler 22.12) write a file or run a program
// that no predicted change shows: the one side effect that says so.
struct Blind {
    std::string_view line;
    std::string sideEffect;
};

AnalysisResult predictOnDisk(std::string_view line, FakeLauncher* launcher = nullptr) {
    FakeDisk disk{"in.pdf", "b.pdf", "in.md", "c.md", "old.pdf", "old.txt", "a.txt", "b.txt", "sub/d.rtf", "f.lua"};
    return predict(line, disk, {.launcher = launcher});
}

void expectRows(const std::set<std::string>& packages, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        const AnalysisResult result = predictOnDisk(row.line);
        EXPECT_EQ(described(result.analysisError), "");
        EXPECT_EQ(described(result), row.changes);
        EXPECT_EQ(described(result.sideEffects), row.sideEffects);
        EXPECT_EQ(described(result.commandErrors), row.errors);
        EXPECT_EQ(outcome(result), row.outcome);
        EXPECT_EQ(result.requiredPackages, packages);
    }
}

void expectSaid(const std::vector<Blind>& rows) {
    for (const auto& [line, sideEffect] : rows) {
        SCOPED_TRACE(line);
        EXPECT_EQ(described(predictOnDisk(line).sideEffects), Texts{sideEffect});
    }
}

// A row whose one error is "friendly / technical".
Row refused(std::string_view line, const std::string& friendly, const std::string& technical, Texts sideEffects = {}) {
    return {line, {}, std::move(sideEffects), "1 '" + technical + "'", {friendly + " / " + technical}};
}
// A row that fails in the tool's own words.
Row fails(std::string_view line, const std::string& tool, const std::string& path, Texts sideEffects = {}) {
    return {line, {}, std::move(sideEffects), "1 '" + tool + ": " + path + ": No such file or directory'"};
}
std::string partly(const std::string& text) {
    return "partialSupport: " + text;
}
std::string writes(const std::string& text) {
    return "unknownFileChanges: " + text;
}
std::string mayWrite(const std::string& tool, const std::string& file) {
    return writes(tool + " may write '" + file + "', which isn't shown here");
}

TEST(Documents, Ghostscript) {
    const std::string unpredictable = partly("Ghostscript conversion: exact output file(s) not predictable");
    const std::string pages = partly("Ghostscript may create multiple files matching page-%d.png");
    expectRows({"Ghostscript"},
               {
                   {"gs -sDEVICE=pdfwrite -o out.pdf in.pdf", {"create out.pdf"}},
                   {"gs -q -SOUTPUTFILE=old.pdf in.pdf b.pdf", {"create old.pdf", "overwrite old.pdf"}},
                   {"gs -sOutputFile=page-%d.png -sDEVICE=png16m in.pdf", {}, {pages, unpredictable}},
                   {"gs -o page-%d.png -o page-%d.png -o a in.pdf", {"create a"}, {pages}},
                   {"gs -dNOPAUSE in.pdf", {}, {unpredictable}},
                   {"gs -o - -", {}, {unpredictable}},
                   {"gs -o -x in.pdf", {"create -x"}},  // the next word, whatever it is
                   {"gs -sOutputFile= in.pdf", {}, {unpredictable}},
                   {"gs -o a -sstdout=%stderr -dSAFER -P- in.pdf", {"create a"}},
                   refused("gs -o", "Ghostscript missing output file", "gs: -o expects a filename argument"),
                   fails("gs -o out.pdf no.pdf", "gs", "no.pdf"),
                   fails("gs -o page-%d.png no.pdf", "gs", "no.pdf"),
                   // The output is open before the inputs are looked for.
                   fails("gs -o old.pdf no.pdf", "gs", "no.pdf", {mayWrite("Ghostscript", "old.pdf")}),
                   fails("gs -o page-%d.png in.pdf no.pdf", "gs", "no.pdf", {pages}),
               });
    const auto runs = [](const std::string& word) { return partly("Ghostscript runs the program in '" + word + "'"); };
    const auto unlocks = [](const std::string& word) {
        return partly("Ghostscript lets documents change files and run programs with '" + word + "'");
    };
    expectSaid({
        {"gs -o '|cat >x' in.pdf", runs("|cat >x")},
        {"gs -o '|cat >x' no.pdf", runs("|cat >x")},
        {"gs '%pipe%touch x'", runs("%pipe%touch x")},
        {"gs -o a -sIjsServer=x in.pdf", runs("-sIjsServer=x")},
        {"gs -o a -oold.pdf in.pdf", mayWrite("Ghostscript", "old.pdf")},
        {"gs -o a -sOutputFile#b in.pdf", mayWrite("Ghostscript", "b")},
        {"gs -o a '-dOutputFile=(b)' in.pdf", mayWrite("Ghostscript", "b")},
        {"gs -o a -sstdout=b in.pdf", mayWrite("Ghostscript", "b")},
        {"gs -o a -dNOSAFER in.pdf", unlocks("-dNOSAFER")},
        {"gs -o a -sDELAYSAFER#1 in.pdf", unlocks("-sDELAYSAFER#1")},
        {"gs -o a --permit-file-all=/ in.pdf",
         partly("Ghostscript lets documents change other files with '--permit-file-all=/'")},
        {"gs -o a -c quit",
         partly("Ghostscript runs the PostScript code behind '-c', whose effects aren't shown here")},
        {"gs -o a @more", partly("Ghostscript reads more options from the file in '@more', which aren't shown here")},
    });
}

TEST(Documents, Qpdf) {
    expectRows({"QPDF"},
               {
                   {"qpdf in.pdf out.pdf", {"create out.pdf"}},
                   {"qpdf in.pdf in.pdf", {"create in.pdf", "overwrite in.pdf"}},
                   {"qpdf --split-pages in.pdf out-%d.pdf",
                    {},
                    {partly("qpdf may create multiple files matching out-%d.pdf")}},
                   {"qpdf --empty --pages in.pdf b.pdf -- out.pdf", {"create out.pdf"}},
                   {"qpdf in.pdf --pages . 1-r2 -- out.pdf", {"create out.pdf"}},
                   {"qpdf --password=x --decrypt in.pdf out.pdf", {"create out.pdf"}},
                   {"qpdf --check in.pdf"},
                   {"qpdf - -"},
                   fails("qpdf no.pdf old.pdf", "qpdf", "no.pdf"),
                   fails("qpdf --empty --pages no.pdf -- old.pdf", "qpdf", "no.pdf"),
                   fails("qpdf --encrypt u o 256 -- in.pdf old.pdf", "qpdf", "u", {mayWrite("qpdf", "old.pdf")}),
                   refused("qpdf --check", "qpdf missing input file", "qpdf: at least an input PDF must be specified"),
               });
    expectSaid({
        {"qpdf --replace-input in.pdf", mayWrite("qpdf", "in.pdf")},
        {"qpdf in.pdf -replace-input", mayWrite("qpdf", "in.pdf")},
        {"qpdf --empty old.pdf", mayWrite("qpdf", "old.pdf")},
        {"qpdf in.pdf old.pdf --pages . 1 --", mayWrite("qpdf", "old.pdf")},
        {"qpdf in.pdf --pages . -- old.pdf --qdf", mayWrite("qpdf", "old.pdf")},
        {"qpdf -split-pages=2 in.pdf a.pdf", partly("qpdf may write one file for each page, named after 'a.pdf'")},
        {"qpdf @words", partly("qpdf reads more options from the file in '@words', which aren't shown here")},
        {"qpdf in.pdf - --job-json-file=j",
         partly("qpdf reads what to do from the file in '--job-json-file=j', which isn't shown here")},
        {"qpdf in.pdf - --linearize-pass1=x",
         partly("qpdf writes one more file with '--linearize-pass1=x', which isn't shown here")},
    });
}

TEST(Documents, Pandoc) {
    const auto missing = [](std::string_view line, const std::string& path) {
        return refused(line, "Input file doesn't exist: " + path, "pandoc: " + path + ": No such file or directory");
    };
    expectRows({"Pandoc"},
               {
                   {"pandoc -o out.docx in.md", {"create out.docx"}},
                   {"pandoc in.md c.md -so old.txt --toc", {"create old.txt", "overwrite old.txt"}},
                   {"pandoc in.md --output=out.html --metadata=title=x", {"create out.html"}},
                   // The last one counts for pandoc.
                   {"pandoc -f markdown in.md -V x=y -o a --output=b", {"create a"}, {mayWrite("pandoc", "b")}},
                   {"pandoc in.md"},
                   {"pandoc in.md - -o -"},
                   {"pandoc in.md --output=- --pdf-engine=xelatex"},
                   missing("pandoc no.md -o x", "no.md"),
                   missing("pandoc in.md -- -o old.txt", "-o"),
                   missing("pandoc in.md --output new.txt", "new.txt"),
               });
    const auto runs = [](const std::string& words, const std::string& what = "program") {
        return partly("pandoc runs a " + what + " with '" + words + "', whose effects aren't shown here");
    };
    const auto writesMore = [](const std::string& words) {
        return partly("pandoc may write more files with '" + words + "', which aren't shown here");
    };
    const auto reads = [](const std::string& words) {
        return partly("pandoc reads more options from the file in '" + words + "', which aren't shown here");
    };
    expectSaid({
        {"pandoc in.md --output old.txt", mayWrite("pandoc", "old.txt")},
        {"pandoc in.md --out=old.txt", mayWrite("pandoc", "old.txt")},
        {"pandoc in.md -oold.pdf", mayWrite("pandoc", "old.pdf")},
        {"pandoc in.md -soold.pdf", mayWrite("pandoc", "old.pdf")},
        {"pandoc in.md -F ./x", runs("-F ./x")},
        {"pandoc in.md -sLf.lua", runs("-sLf.lua")},
        {"pandoc in.md --lua-f=f.lua", runs("--lua-f=f.lua")},
        {"pandoc in.md --filter f.lua", runs("--filter f.lua")},
        {"pandoc in.md --pdf-engine=./pdflatex", runs("--pdf-engine=./pdflatex")},
        {"pandoc in.md -t f.lua+smart", runs("-t f.lua+smart", "script")},
        {"pandoc in.md --from=f.lua", runs("--from=f.lua", "script")},
        {"pandoc in.md -d x", reads("-d x")},
        {"pandoc in.md --def=x", reads("--def=x")},
        {"pandoc in.md --extract-media=m", writesMore("--extract-media=m")},
        {"pandoc in.md --log old.txt", writesMore("--log old.txt")},
    });
}

TEST(Documents, Poppler) {
    const std::string noText = "PDF-to-text missing input file";
    expectRows({"Poppler"},
               {
                   {"pdftotext in.pdf"},
                   {"pdftotext -layout -f 1 -l 2 in.pdf out.txt", {"create out.txt"}},
                   {"pdftotext in.pdf -"},
                   {"pdftotext - -"},
                   {"pdftotext -bbox old.pdf"},  // makes old.html, not old.txt
                   refused("pdftotext -q", noText, "pdftotext: no input file specified"),
                   refused("pdftotext no.pdf", noText, "pdftotext: no.pdf: No such file or directory"),
                   {"pdfinfo -"},
                   {"cp in.pdf new.pdf; pdfinfo new.pdf", {"create new.pdf"}},
                   refused("pdfinfo -f 1", "PDF info missing input file", "pdfinfo: no input file specified"),
                   fails("pdfinfo no.pdf", "pdfinfo", "no.pdf"),
                   {"pdfimages in.pdf img", {}, {writes("pdfimages may create multiple files starting with img")}},
                   refused("pdfimages no.pdf", "PDF images command incorrectly written",
                           "pdfimages: require input PDF and image root"),
                   fails("pdfimages no.pdf img", "pdfimages", "no.pdf"),
                   {"pdftohtml in.pdf", {}, {partly("pdftohtml will create HTML and asset files alongside the PDF")}},
                   {"pdftohtml -zoom 2 in.pdf out.html", {"create out.html"}},
                   {"pdftohtml in.pdf out", {}, {partly("pdftohtml may create multiple files based on prefix out")}},
                   refused("pdftohtml", "PDF-to-HTML missing input file", "pdftohtml: no input file specified"),
                   fails("pdftohtml no.pdf", "pdftohtml", "no.pdf"),
               });
    expectSaid({
        {"pdftotext old.pdf", mayWrite("pdftotext", "old.txt")},  // the tool's own choice of a name
        {"touch old.html; pdftotext -bbox old.pdf", mayWrite("pdftotext", "old.html")},
        {"pdftotext in.pdf -odd", writes("pdftotext may write other files than are shown here")},
        {"pdftohtml -fmt png in.pdf", writes("pdftohtml may write other files than are shown here")},
        {"touch o_ind.html; pdftohtml in.pdf o.html", mayWrite("pdftohtml", "o_ind.html")},
    });
}

TEST(Documents, Textutil) {
    const auto wrong = [](std::string_view line, const std::string& technical) {
        return refused(line, "Text utility command incorrectly written", "textutil: " + technical);
    };
    const auto missing = [](std::string_view line) {
        return refused(line, "Text utility: no.txt doesn't exist", "textutil: x/no.txt: No such file or directory");
    };
    expectRows(
        {}, {
                {"textutil -convert docx a.txt b.txt", {"create a.docx", "create b.docx"}, {}, "0"},
                {"textutil a.txt -convert docx b.txt -output c.docx", {"create c.docx", "create c_2.docx"}, {}, "0"},
                {"textutil -convert txt a.txt -output x/e.rtf b.txt", {"create x/e.rtf", "create x/e_2.txt"}, {}, "0"},
                {"textutil -convert HTML sub/d.rtf -extension .htm -verbose", {"create sub/d.htm"}, {}, "0"},
                {"textutil -cat html a.txt b.txt", {"create out.html"}, {}, "0"},
                {"textutil -cat txt a.txt -output old.txt", {"create old.txt", "overwrite old.txt"}, {}, "0"},
                {"touch new; textutil -convert html new", {"create new"}, {}, "? unknown"},
                wrong("textutil a.txt", "no action (e.g. -info, -convert) specified"),
                wrong("textutil -stdout -convert txt a.txt", "unsupported or unrecognised action '-stdout'"),
                wrong("textutil -info", "file argument missing"),
                wrong("textutil a.txt -convert", "missing format for -convert"),
                wrong("textutil a.txt -cat", "missing format for -cat"),
                wrong("textutil -cat txt a.txt -output", "-output option requires an argument"),
                wrong("textutil -cat txt a.txt -extension", "-extension option requires an argument"),
                wrong("textutil -convert txt -stdout", "no input files specified"),
                refused("textutil -convert pdf no.txt", "Unsupported format", "textutil: unsupported format pdf"),
                missing("textutil -info a.txt x/no.txt"),
                missing("textutil -cat txt a.txt x/no.txt"),
            });
    expectSaid({
        {"cp b.txt a.txt; textutil -convert txt a.txt -output old.txt", mayWrite("textutil", "/w/old.txt")},
        {"touch a.xml; textutil -convert wordml a.txt", mayWrite("textutil", "/w/a.xml")},
        {"textutil -convert txt -stdout a.txt b.txt", partly("textutil may write files, which aren't shown here")},
    });
}

TEST(Documents, Print) {
    const auto prints = [](const std::string& text) { return "printsDocument: Prints " + text; };
    expectRows(
        {},
        {
            {"lp in.pdf", {}, {prints("in.pdf")}, "0"},
            {"lp -d office -n 2 ./in.pdf b.pdf", {}, {prints("2 files")}, "0"},
            {"lp", {}, {prints("from standard input")}, "0"},
            {"lp -o landscape -", {}, {prints("from standard input")}, "0"},
            {"lp -H hold in.pdf", {}, {partly("Brindlet can't predict the -H option of lp"), prints("in.pdf")}, "0"},
            refused("lp no.pdf", "Can't print: file doesn't exist", "lp: no.pdf: No such file or directory"),
        });
}

TEST(Documents, ToolsThatReadAreReallyAsked) {
    struct Case {
        std::string_view line;
        Texts launched;
    };
    const Case cases[] = {
        {"pdfinfo -f 2 in.pdf x", {"pdfinfo", "-f", "2", "in.pdf", "x"}},
        {"textutil -info in.pdf", {"textutil", "-info", "in.pdf"}},
        {"textutil --help", {"textutil", "--help"}},
        {"textutil -convert txt -stdout sub/d.rtf", {"textutil", "-convert", "txt", "-stdout", "sub/d.rtf"}},
        {"textutil -cat txt -stdout a.txt b.txt", {"textutil", "-cat", "txt", "-stdout", "a.txt", "b.txt"}},
    };
    for (const auto& [line, launched] : cases) {
        SCOPED_TRACE(line);
        FakeLauncher launcher;
        launcher.answers = {{.exitCode = 3, .output = "words\n"}};
        const AnalysisResult result = predictOnDisk(line, &launcher);
        EXPECT_EQ(outcome(result), "3 'words\n'");
        EXPECT_EQ(described(result), Texts{});
        ASSERT_EQ(launcher.launches.size(), 1u);
        EXPECT_EQ(launcher.launches.front().arguments, launched);
    }
}

AnalysisResult predictForReal(const ScratchFolder& scratch, std::string_view line) {
    const auto files = openFileSystem();
    const auto launcher = openReadOnlyLauncher({.wallClock = std::chrono::milliseconds{5'000}});
    const AnalysisServices services{*files, *launcher, builtInCommands(), [] { return std::string("/usr/bin:/bin"); },
                                    scratch.path()};
    BasherAnalysis analysis(Basher(std::string(line)), scratch.path(), {},
                            std::make_shared<BasherAnalysisState>(*files), services);
    return analysis.analyse();
}

// The real tools with words that might make them write, wait or connect.
TEST(Documents, RealToolsOnlyRead) {
    const ScratchFolder scratch;
    scratch.write("in.pdf",
                  "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>"
                  "endobj\n3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>endobj\ntrailer<</Root 1 0 R>>\n");
    scratch.write("bad.pdf", std::string("%PDF-9\n\xff\x00 obj <<", 15));
    scratch.write("a.rtf", "{\\rtf1 text}");
    ASSERT_EQ(::chmod(scratch.path().text().c_str(), 0777), 0);
    inOrdinaryProcess([&] {
        const auto before = scratch.snapshot();
        const std::string_view lines[] = {
            "pdfinfo in.pdf",
            "pdfinfo bad.pdf",
            "pdfinfo -js -struct-text -dests -url in.pdf http://127.0.0.1:1/x",
            "pdfinfo -f 1 -l 2000000000 -box in.pdf",
            "pdfinfo -upw -x in.pdf",
            "pdfinfo -listenc in.pdf",
            "textutil -info a.rtf -convert html",
            "textutil -convert txt -stdout a.rtf",
            "textutil -help -convert html a.rtf",
        };
        for (const auto line : lines) {
            SCOPED_TRACE(line);
            const AnalysisResult result = predictForReal(scratch, line);
            EXPECT_EQ(described(result.analysisError), "");
            EXPECT_EQ(described(result), Texts{});
            EXPECT_EQ(scratch.snapshot(), before);
        }
        if (::access("/usr/bin/pdfinfo", X_OK) == 0) {
            const AnalysisResult result = predictForReal(scratch, "pdfinfo in.pdf");
            EXPECT_EQ(result.exitCode, 0);
            EXPECT_NE(result.output.text().find("Pages:"), std::string::npos) << result.output.text();
        }
        // A tool that isn't installed is a failed command like any other.
        if (::access("/usr/bin/textutil", X_OK) != 0) {
            EXPECT_EQ(predictForReal(scratch, "textutil -info a.rtf").exitCode, 127);
        }
    });
}

}  // namespace documents_tests
}  // namespace brindlet
