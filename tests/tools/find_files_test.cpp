// Searching for files (mdfind) and telling what is known of them (mdls).
#include <gtest/gtest.h>

#include "text/strings.h"
#include "tools/tool_bench.h"

namespace brindlet {

namespace find_files_tests {

std::string pdfOf(std::string_view text) {
    return "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
           "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 200]/Contents 4 0 R"
           "/Resources<</Font<</F1 5 0 R>>>>>>endobj\n4 0 obj<</Length " +
           std::to_string(text.size() + 29) + ">>stream\nBT /F1 12 Tf 20 99 Td (" + std::string(text) +
           ") Tj ET\nendstream endobj\n5 0 obj<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>endobj\n"
           "trailer<</Root 1 0 R>>\n";
}

// "a b" for the lines "WORK/a" and "WORK/b".
std::string namesIn(const ToolBench& bench, const std::string& output) {
    return std::string(trimmed(replacedAll(replacedAll(output, bench.path(""), ""), "\n", " ")));
}

class Documents : public ToolBench {
  public:
    Documents() {
        write("Apple.txt", "One orange\na day");
        write("caf\xC3\xA9.md", "Pine\xC3\x84PFEL and\n  applesauce");
        write("sub/report final.txt", "an apple &amp; more");
        write("sub/page.html", "<p>ap<b>ple</b>&amp;pear</p>");
        write("sub/photo.JPG", std::string(2000, '\0') + "apple");
        write(".secret/apple.txt", "apple");
        write("old.txt", "old");
        run("touch -d '2001-02-03 04:05:06' old.txt");
        scratch().link("work/link.txt", "Apple.txt");
    }
};

TEST(FindFiles, Queries) {
    struct Case {
        std::string_view query;
        std::string_view names;
    };
    const Documents bench;
    const Case cases[] = {
        {"kMDItemFSName == *.txt", "Apple.txt link.txt old.txt sub/report final.txt"},
        {"kMDItemFSName==\"apple*\"c", "Apple.txt"},
        {"kMDItemFSName == 'apple.txt'", ""},
        {"kMDItemDisplayName == \"CAFE\"cd", "caf\xC3\xA9.md"},
        {"kMDItemDisplayName ==[cd] \"CAFE\"", "caf\xC3\xA9.md"},
        {"kMDItemFSName == *o*t* && !(kMDItemFSName == *.txt)", "sub/photo.JPG"},
        {"kMDItemFSName != *.txt kind:text", "caf\xC3\xA9.md sub/page.html"},
        {"kind:image || kMDItemContentType == \"net.daringfireball.markdown\"", "caf\xC3\xA9.md sub/photo.JPG"},
        {"kind:folder", "sub"},
        // A star at an end of the pattern lets the word go on; what is binary holds no text.
        {"kMDItemTextContent == \"apple\"", "sub/page.html sub/report final.txt"},
        {"kMDItemTextContent == \"apple*\"", "caf\xC3\xA9.md sub/page.html sub/report final.txt"},
        {"kMDItemTextContent == \"*sauce*\" && kMDItemFSName == *.md", "caf\xC3\xA9.md"},
        {"kMDItemTextContent == \"*pine\xC3\xA4pfel and apple*\"c", "caf\xC3\xA9.md"},
        {"apple", "Apple.txt caf\xC3\xA9.md sub/page.html sub/report final.txt"},
        {"cafe", "caf\xC3\xA9.md"},
        {"apple -sauce final", "sub/report final.txt"},
        {"\"orange a day\"", "Apple.txt"},
        {"kMDItemFSSize >= 2000 kMDItemFSSize < 3000", "sub/photo.JPG"},
        {"InRange(kMDItemFSSize, 3, 15)", "link.txt old.txt"},
        {"kMDItemFSContentChangeDate < $time.iso(2001-02-03T04:05:07Z)", "old.txt"},
        {"kMDItemFSContentChangeDate > $time.today(-2) && kMDItemFSName == *.html", "sub/page.html"},
        {"kMDItemFSName == *.txt date:today && kMDItemTextContent == \"*orange*\"", "Apple.txt"},
        {"date:2001-02-03", "old.txt"},
        {"date:yesterday OR kMDItemFSName == *.md", "caf\xC3\xA9.md"},
    };
    for (const auto& [query, names] : cases) {
        const ToolRun run = bench.run("mdfind -onlyin . " + ("'" + replacedAll(query, "'", "'\\''") + "'"));
        EXPECT_EQ(run.status, 0) << query;
        EXPECT_EQ(namesIn(bench, run.output), names) << query;
    }
}

TEST(FindFiles, OptionsAndRefusals) {
    struct Case {
        std::string_view line;
        ToolRun run;
    };
    Documents bench;
    bench.set("HOME", bench.scratch().path("work").text());  // what is searched without -onlyin
    const Case cases[] = {
        {"mdfind -name REPORT | sed 's|.*/||'", {0, "report final.txt\n"}},
        {"mdfind -count -onlyin sub kMDItemFSName == '*.txt'", {0, "1\n"}},
        {"mdfind -0 -onlyin sub -name p kind:image | tr '\\0' '|' | sed 's|.*/||'", {0, "photo.JPG|"}},
        {"mdfind -onlyin .secret apple | sed 's|.*/||'", {0, "apple.txt\n"}},  // asked for by name
        {"mdfind -onlyin sub -onlyin . -name report | sed 's|.*/||'", {0, "report final.txt\n"}},
        {"mdfind 'kMDItemFSName like \"a\"'",
         {64, "mdfind: 'kMDItemFSName like \"a\"' in the query can't be understood\n"}},
        {"mdfind -onlyin nowhere apple", {1, "mdfind: 'nowhere' is no folder\n"}},
        {"mdfind", {64, "mdfind: what is to be found? (mdfind [-onlyin FOLDER] [-name NAME] QUERY)\n"}},
        {"mdfind -live apple", {64, "mdfind: the option '-live' is not known here\n"}},
        {"mdfind '(a'", {64, "mdfind: a ')' is missing in the query\n"}},
        {"mdfind 'a ) b'", {64, "mdfind: ') b' in the query can't be understood\n"}},
        {"mdfind 'a ||'", {64, "mdfind: the query ends too early\n"}},
        {"mdfind 'kMDItemFSName == \"a'", {64, "mdfind: a quote has no end in the query\n"}},
        {"mdfind 'kMDItemFSSize > big'", {64, "mdfind: 'big' is no value for kMDItemFSSize\n"}},
        {"mdfind 'kMDItemFNumber > 2' 2>&1 | cut -c1-48", {0, "mdfind: 'kMDItemFNumber' can't be searched for h\n"}},
        {"mdfind \"$(printf '(%.0s' {1..5000})\"", {64, "mdfind: the query is nested too deeply\n"}},
    };
    for (const auto& [line, run] : cases) EXPECT_EQ(bench.run(line), run) << line;
}

TEST(FindFiles, WordsInsideDocuments) {
    const ToolBench bench;
    for (const std::string program : {"pdftotext", "zip", "unzip"})
        if (!bench.has(program)) GTEST_SKIP() << program << " is missing";
    bench.write("pie.pdf", pdfOf("One apple pie"));
    bench.write("tea.pdf", pdfOf("A cup of tea"));
    bench.write("word/document.xml", "<w:t>An app</w:t></w:r><w:r><w:t>le</w:t></w:p><w:p><w:t>tart</w:t>");
    bench.run("zip -q '[1] letter.docx' word/document.xml; rm -r word; touch empty.docx; echo no >broken.pdf");
    // The catalogue's own lines.
    const ToolRun pdfs = bench.run(R"(mdfind -onlyin . 'kMDItemFSName == *.pdf && kMDItemTextContent == "*apple*"')");
    EXPECT_EQ(pdfs, (ToolRun{0, bench.path("pie.pdf\n")}));
    EXPECT_EQ(namesIn(bench, bench.run("mdfind -onlyin . 'kMDItemTextContent == \"apple\"'").output),
              "[1] letter.docx pie.pdf");
    // A missing engine is told once the rest was found.
    bench.write("apple.txt", "");
    EXPECT_EQ(bench.run("PATH=\"$PWD\":" BRINDLET_BINARIES " mdfind -onlyin . apple"),
              (ToolRun{69, bench.path("apple.txt\n") + "mdfind: unzip is missing; the Debian package unzip has it\n"}));
}

TEST(FileMetadata, AgreesWithTheSystem) {
    struct Case {
        std::string_view line, judge;
    };
    const ToolBench bench;
    bench.write("-a \"b\".txt", "12345");
    const Case cases[] = {
        {"mdls -raw -name kMDItemFSSize ./-*", "stat -c %s -- -a* | tr -d '\\n'"},
        {"mdls -name kMDItemFSContentChangeDate -- -a*",
         "date -u -r ./-a* '+kMDItemFSContentChangeDate = %F %T +0000'"},
        {"mdls -name kMDItemFSName -name kMDItemNothing ./-a*",
         R"(printf '%s\n' 'kMDItemFSName  = "-a \"b\".txt"' 'kMDItemNothing = (null)')"},
        {"mdls -raw -nullMarker none -name kMDItemNothing -name kMDItemContentType ./-a*",
         R"(printf 'none\0public.plain-text')"},
        {"mdls ./-a* | grep -c '^kMDItem.* = '", "echo 18"},
        {"mdls ./-a* | grep -A 1 Tree",
         R"(printf '%s = (\n    "public.plain-text",\n' kMDItemContentTypeTree'        ')"},
        {"mdls gone; echo $?", "echo 'mdls: could not find gone.'; echo 1"},
        {"mdls -x; echo $?", "echo \"mdls: the option '-x' is not known here\"; echo 64"},
    };
    for (const auto& [line, judge] : cases) EXPECT_EQ(bench.run(line).output, bench.run(judge).output) << line;
}

TEST(FileMetadata, WhatFilesSayOfThemselves) {
    const ToolBench bench;
    for (const std::string program : {"exiftool", "convert", "setfattr"})
        if (!bench.has(program)) GTEST_SKIP() << program << " is missing";
    ASSERT_EQ(bench.run("convert -size 64x48 xc:red p.jpg && exiftool -q -overwrite_original -Artist=Me -Keywords=a "
                        "-Keywords='b, c' -DateTimeOriginal='2020:05:06 07:08:09' -FNumber=2.8 p.jpg && cp p.jpg p"),
              (ToolRun{0, ""}));
    EXPECT_EQ(bench.run("mdls -name kMDItemPixelWidth -name kMDItemPixelHeight -name kMDItemFNumber -name "
                        "kMDItemContentCreationDate -name kMDItemKeywords p.jpg"),
              (ToolRun{0,
                       "kMDItemPixelWidth          = 64\nkMDItemPixelHeight         = 48\n"
                       "kMDItemFNumber             = 2.8\n"
                       "kMDItemContentCreationDate = 2020-05-06 07:08:09 +0000\n"
                       "kMDItemKeywords            = (\n    \"a\",\n    \"b, c\"\n)\n"}));
    EXPECT_EQ(bench.run("cd /; mdls -raw -name kMDItemPixelWidth \"$OLDPWD/p\"").output, "64");  // no ending
    EXPECT_EQ(
        bench.run("ln -s /usr/bin/timeout .; PATH=\"$PWD\":" BRINDLET_BINARIES " mdls -raw -name kMDItemFNumber p.jpg"),
        (ToolRun{69, "(null)mdls: exiftool is missing; the Debian package libimage-exiftool-perl has it\n"}));
    if (bench.run("setfattr -n user.xdg.origin.url -v http://a/b p.jpg").status == 0) {
        EXPECT_EQ(bench.run("mdls -raw -name kMDItemWhereFroms p.jpg").output, "(\n    http://a/b\n)");
    }
}

TEST(FileMetadata, Films) {
    const ToolBench bench;
    if (!bench.has("ffmpeg")) GTEST_SKIP() << "ffmpeg is missing";
    bench.run("ffmpeg -v error -f lavfi -i testsrc=duration=2:size=64x48:rate=5 clip.mp4");
    EXPECT_EQ(
        bench.run("mdls -name kMDItemDurationSeconds -name kMDItemPixelWidth clip.mp4 | tr -s ' ' | cut -c1-30").output,
        "kMDItemDurationSeconds = 2\nkMDItemPixelWidth = 64\n");
    if (bench.has("exiftool")) {
        EXPECT_EQ(bench.run("echo no >no.jpg; mdls -raw -name kMDItemPixelWidth no.jpg").output, "(null)");
    }
}

}  // namespace find_files_tests
}  // namespace brindlet
