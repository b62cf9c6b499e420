#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "model_rows.h"

namespace brindlet {
namespace archives_tests {

const std::initializer_list<std::string_view> disk = {"a.tar", "a.tgz", "a.zip", "a",        "b",   "dir/x",   "out/",
                                                      "a.txt", "b.gz",  "back",  "back.zip", "c:d", "only.zip"};

const ToolOutcome listing{.exitCode = 0, .output = "new/\nnew/sub/f\na\n\n"};
const Texts listingChanges = {"create new/", "create new/sub/", "create new/sub/f"};

Texts with(Texts texts, const Texts& more) {
    texts.insert(texts.begin(), more.begin(), more.end());
    return texts;
}

std::string unread(const std::string& tool, const std::string& word) {
    return "partialSupport: '" + tool + "' also goes by '" + word + "', which isn't shown here";
}

TEST(Archives, TarExtract) {
    const Texts unknownFiles = {"unknownFileChanges: Will untar unknown files"};
    const Texts extracted = with(listingChanges, {"modify a"});
    expectRows(
        disk,
        {
            {"tar -xf a.tar", listing, {"tar|-t|-f|a.tar"}, extracted},
            {"tar -xzvf a.tgz -C out",
             {.exitCode = 0, .output = "n/f\n"},
             {"tar|-z|-t|-f|a.tgz"},
             {"create out/n/", "create out/n/f"}},
            {"tar -xjf a.tgz -C no",
             {.exitCode = 0, .output = "f\n"},
             {"tar|-j|-t|-f|a.tgz"},
             {"create no/", "create no/f"}},
            {"tar --extract -f a.tar dir", listing, {"tar|-t|-f|a.tar"}, extracted},  // members narrow nothing
            {"tar -xf a.tar --strip-components 1", listing, {"tar|-t|-f|a.tar"}, extracted},
            {.line = "tar -xf no.tar",
             .errors = {"Tar archive doesn't exist / tar: no.tar: Cannot open: No such file or directory"}},
            {.line = "tar -czf n.tgz dir && tar -xzf n.tgz",
             .changes = {"create n.tgz"},
             .sideEffects = unknownFiles,
             .outcome = "0 unknown"},
            // A listing that fails is the result; what it came to before would be unpacked.
            {"tar -xf a.tar",
             {.exitCode = 2, .output = "tar: This does not look like a tar archive\n"},
             {"tar|-t|-f|a.tar"},
             {},
             {},
             {},
             "2 'tar: This does not look like a tar archive\n'"},
            {"tar -xf a.tar",
             {.exitCode = 2, .output = "a\ntar: Unexpected EOF in archive\n"},
             {"tar|-t|-f|a.tar"},
             {},
             {},
             unknownFiles,
             "2 'a\ntar: Unexpected EOF in archive\n'"},
            {"tar -xf a.tar", {}, {"tar|-t|-f|a.tar"}, {}, {}, unknownFiles, "? unknown"},
            {"tar -xf a.tar", {.exitCode = 0, .output = "\xff\n"}, {"tar|-t|-f|a.tar"}, {}, {}, unknownFiles},
            // The tool's own words and its quoting are no part of a name.
            {"tar -xf a.tar",
             {.exitCode = 0, .output = "tar: Removing leading `/' from member names\n/tmp/\\303\\251\\\\\\n\n"},
             {"tar|-t|-f|a.tar"},
             {"create tmp/", "create tmp/é\\\n"}},
            {"tar -xf a.tar",
             {.exitCode = 0, .output = "../a\n"},
             {"tar|-t|-f|a.tar"},
             {"create /a"},
             {},
             {"unknownFileChanges: The archive holds names with '..', whose files may land elsewhere than shown here"}},
        });
}

TEST(Archives, TarOtherModes) {
    const std::string written = "Tar command incorrectly written / tar: ";
    const std::string noMode = written + "must specify exactly one of -c, -x or -t";
    expectRows(
        disk, {
                  {.line = "tar -cf n.tar a dir", .changes = {"create n.tar"}},
                  {.line = "tar -czvf a.tar a", .changes = {"create a.tar", "overwrite a.tar"}},
                  {.line = "tar -c n.tar a", .changes = {"create n.tar"}},
                  {.line = "tar -cf a.tar missing",
                   .errors = {"Tar: missing doesn't exist / tar: missing: Cannot stat: No such file or directory"}},
                  {.line = "tar -rf a.tar a", .changes = {"modify a.tar"}},
                  {.line = "tar -rf no.tar no",
                   .errors = {"Tar archive doesn't exist / tar: no.tar: Cannot open: No such file or directory"}},
                  {.line = "tar -r a.tar a", .errors = {written + "-r requires -f"}},
                  {.line = "tar -c", .errors = {written + "missing archive filename"}},
                  {.line = "tar -cxf a", .errors = {noMode}},
                  {.line = "tar -f a", .errors = {noMode}},
                  {.line = "tar xzf a.tgz", .errors = {noMode}},
                  {"tar -tf a.tar", {.exitCode = 0, .output = "a\\n\n"}, {"tar|-t|-f|a.tar"}, {}, {}, {}, "0 'a\\n\n'"},
                  {.line = "tar -cf n.tar a; tar -tf n.tar", .changes = {"create n.tar"}, .outcome = "0 unknown"},
              });
}

// Words that the model passes over and the tool does not: each is said, unless the user is asked anyway.
TEST(Archives, WhatTheModelsPassOver) {
    const auto tarOpens = [](const std::string& words, const std::string& word) {
        return ModelRow{"tar " + words,
                        {.exitCode = 0, .output = "n/x\n"},
                        {"tar|-t|-f|a.tar"},
                        {"create n/", "create n/x"},
                        {},
                        {unread("tar", word)}};
    };
    expectRows(
        disk,
        {
            tarOpens("-xf a.tar --to-command=sh", "--to-command=sh"),
            tarOpens("-xf a.tar -I sh", "-I"),
            tarOpens("-xf a.tar --use-compress-program sh", "--use-compress-program"),
            tarOpens("-x -f a.tar -T list", "-T"),
            tarOpens("-xf a.tar -C . -C .", "-C"),
            {"tar -xf a.tar --strip-components=1",
             {.exitCode = 0, .output = "n/b\n"},
             {"tar|-t|-f|a.tar"},
             {"create n/", "create n/b"},
             {},
             {unread("tar", "--strip-components")}},
            {"tar -xf a.tar --directory=dir",
             {.exitCode = 0, .output = "x\n"},
             {"tar|-t|-f|a.tar"},
             {"create x"},
             {},
             {unread("tar", "--directory")}},
            {"tar -xf a.tar --directory out", {.exitCode = 0, .output = "x\n"}, {"tar|-t|-f|a.tar"}, {"create x"}},
            {"tar -x a.tar", {.exitCode = 0, .output = "n\n"}, {"tar|-t|-f|a.tar"}, {"create n"}},
            {"echo n | tar -x a.tar",
             {.exitCode = 0, .output = "n\n"},
             {"tar|-t|-f|a.tar"},
             {"create n"},
             {},
             {"partialSupport: 'tar' without -f unpacks what it is sent, which isn't shown here"}},
            {"tar -tf a.tar --checkpoint=1 '--checkpoint-action=exec=touch y'",
             {.exitCode = 0, .output = ""},
             {"tar|-t|-f|a.tar"},
             {},
             {},
             {unread("tar", "--checkpoint=1"), unread("tar", "--checkpoint-action=exec=touch y")}},
            {.line = "tar -cf n.tar a --remove-files",
             .changes = {"create n.tar"},
             .sideEffects = {unread("tar", "--remove-files")}},
            {.line = "tar -xf c:d",  // another machine's, for the tool
             .sideEffects = {"unknownFileChanges: Will untar unknown files",
                             "partialSupport: 'tar' takes an archive with ':' in its name for one on "
                             "another machine"},
             .outcome = "0 unknown"},
            {.line = "zip -r n.zip dir -m", .changes = {"create n.zip"}, .sideEffects = {unread("zip", "-m")}},
            {.line = "zip -r n.zip dir -q9 '--exclude=*.o'", .changes = {"create n.zip"}},
            {.line = "zip -TT n.x a", .changes = {"create n.x"}, .sideEffects = {unread("zip", "-T")}},
            {.line = "zip -r back2 dir; zip -r back dir",
             .changes = {"create back", "overwrite back", "create back2"},
             .sideEffects = {"unknownFileChanges: 'zip' puts '.zip' behind 'back', and so changes the "
                             "archive that is there"}},
            {"unzip a.zip -d out -q", {.exitCode = 0, .output = "n\n"}, {"unzip|-Z|-1|a.zip"}, {"create out/n"}},
            {"unzip a.zip -dout",
             {.exitCode = 0, .output = "n\n"},
             {"unzip|-Z|-1|a.zip"},
             {"create n"},
             {},
             {unread("unzip", "-dout")}},
            {.line = "unzip only",
             .sideEffects = {"unknownFileChanges: Will unzip unknown files"},
             .outcome = "1 'unzip: file not found: /w/only'"},
            {.line = "gzip -rk dir", .changes = {"create dir.gz"}, .sideEffects = {unread("gzip", "-r")}},
            {.line = "gzip -k -S z a.txt", .changes = {"create a.txt.z"}, .sideEffects = {unread("gzip", "--suffix")}},
        });
    expectRows(
        disk, {{.line = "tar -cf n.tar a", .changes = {"create n.tar"}, .sideEffects = {unread("tar", "TAR_OPTIONS")}}},
        {{"TAR_OPTIONS", "--remove-files"}});
}

TEST(Archives, Zip) {
    const std::string written = "Zip command incorrectly written / zip: expected an output filename and input files";
    expectRows(disk,
               {
                   {.line = "zip -r out.zip dir", .changes = {"create out.zip"}},
                   {.line = "zip -r9 out.zip dir -x '*.o' '*.a' -i '*.c' -x no", .changes = {"create out.zip"}},
                   {.line = "zip -q -b /tmp out.zip a", .changes = {"create out.zip"}},
                   {.line = "zip -O out.zip a b", .changes = {"create out.zip"}},
                   {.line = "zip a --output-file out.zip", .changes = {"create out.zip"}},
                   {.line = "zip -m out.zip a b", .changes = {"delete a", "delete b", "create out.zip"}},
                   {.line = "zip --move out.zip dir", .changes = {"delete dir/", "create out.zip"}},
                   {.line = "zip -d a.zip entry", .changes = {"modify a.zip"}},
                   {.line = "zip --update a.zip no", .changes = {"modify a.zip"}},
                   {.line = "zip -d no.zip entry",
                    .errors = {"Zip: no.zip doesn't exist / zip: no.zip: No such file or directory"}},
                   {.line = "zip out.zip a dir/no b",
                    .errors = {"Zip: no doesn't exist / zip: dir/no: No such file or directory"}},
                   {.line = "zip out.zip", .errors = {written}},
                   {.line = "zip -r", .errors = {written}},
                   {.line = "zip out.zip -x a b", .errors = {written}},
                   {.line = "zip -m out.zip * -x '*.tmp'",
                    .ends = "highRisk: zip will move files into an archive and delete the originals, but the way those "
                            "files are found and specified is too complex to preview"},
               });
}

TEST(Archives, Unzip) {
    const ModelRow usual{"unzip a.zip", listing, {"unzip|-Z|-1|a.zip"}, with(listingChanges, {"modify a"})};
    const std::string missing = "1 'unzip: file not found: /w/no.zip'";
    expectRows(
        disk,
        {
            usual,
            {"unzip -qo -d out a.zip",
             {.exitCode = 0, .output = "n/f\n"},
             {"unzip|-Z|-1|a.zip"},
             {"create out/n/", "create out/n/f"}},
            {"unzip a.zip -d new",
             {.exitCode = 0, .output = "f\n"},
             {"unzip|-Z|-1|a.zip"},
             {"create new/", "create new/f"}},
            {"unzip -j a.zip", listing, {"unzip|-Z|-1|a.zip"}, {"modify a", "create f"}},
            {"unzip -l a.zip", {.exitCode = 0, .output = "x"}, {"unzip|-l|a.zip"}, {}, {}, {}, "0 'x'"},
            {"unzip -t no.zip", {}, {}, {}, {}, {}, "0 unknown"},
            {"unzip no.zip", {}, {}, {}, {}, {}, missing},
            {.line = "zip n.zip a; unzip n.zip",
             .changes = {"create n.zip"},
             .sideEffects = {"unknownFileChanges: Will unzip unknown files"},
             .outcome = "0 unknown"},
            {"unzip a.zip", {.exitCode = 9, .output = "no"}, {"unzip|-Z|-1|a.zip"}, {}, {}, {}, "9 'no'"},
            {"unzip a.zip",
             {.exitCode = 1, .output = "a\nwarning"},
             {"unzip|-Z|-1|a.zip"},
             {},
             {},
             {"unknownFileChanges: Will unzip unknown files"},
             "1 'a\nwarning'"},
            {"unzip -o a.zip",
             {.exitCode = 0, .output = "b^Jc\n"},
             {"unzip|-Z|-1|a.zip"},
             {"create b^Jc"},
             {},
             {"unknownFileChanges: The archive holds names that can't be read"}},
            {.line = "unzip -d out", .errors = {"Unzip command incorrectly written / unzip: missing archive filename"}},
            {.line = "unzip a.zip b.txt", .ends = "highRisk: unzip with specific file list is too complex to preview"},
            {.line = "unzip a.zip -x b.txt", .ends = "highRisk: unzip with -x exclude list is too complex to preview"},
            {.line = "unzip -Q a.zip", .ends = "simulationError: unzip: unsupported option(s): -Q"},
            {.line = "unzip -oQpQ", .ends = "simulationError: unzip: unsupported option(s): -Qp"},
        });
}

TEST(Archives, ZipInfo) {
    expectRows(
        disk,
        {
            {"zipinfo -1 a.zip -x b", {.exitCode = 0, .output = "x"}, {"zipinfo|-1|a.zip|-x|b"}, {}, {}, {}, "0 'x'"},
            {.line = "zipinfo no", .outcome = "1 'zipinfo:  cannot find or open no, no.zip or no.ZIP.'"},
            {.line = "zip n.zip a; zipinfo n.zip", .changes = {"create n.zip"}, .outcome = "0 unknown"},
            {.line = "zipinfo -hq a.zip",
             .errors = {"Zip info command incorrectly written / zipinfo: unsupported option -- q"}},
            {.line = "zipinfo -x a.zip",
             .errors = {"Zip info missing archive filename / zipinfo: missing archive filename"}},
            {.line = "zipinfo a.zip b", .ends = "highRisk: zipinfo with specific file list is too complex to preview"},
        });
}

TEST(Archives, Gzip) {
    const std::string missing = "Gzip: no doesn't exist / gzip: no: No such file or directory";
    expectRows(
        disk,
        {
            {.line = "gzip a.txt b",
             .changes = {"delete a.txt", "create a.txt.gz", "delete b", "create b.gz", "overwrite b.gz"}},
            {.line = "gzip -k a.txt", .changes = {"create a.txt.gz"}},
            {.line = "gzip --keep --suffix .z a.txt", .changes = {"create a.txt.z"}},
            {.line = "gzip -c a.txt", .outcome = "0 unknown"},
            {.line = "gunzip --help no", .outcome = "0 unknown"},
            {.line = "rm b; gunzip b.gz", .changes = {"create b", "overwrite b", "delete b.gz"}},
            {.line = "gzip -dk a.txt b.gz",
             .errors = {"Gunzip: not a .gz file / gunzip: a.txt: unknown suffix -- ignored"}},
            {.line = "gunzip a.txt", .errors = {"Gunzip: not a .gz file / gunzip: a.txt: unknown suffix -- ignored"}},
            {.line = "gzip -k a no b", .changes = {"create a.gz"}, .errors = {missing}},
            {.line = "gunzip no", .errors = {missing}},
            {.line = "gzip -k", .errors = {"Gzip missing input file / gzip: invalid usage – expected filename"}},
        });
}

// Archives made by an enemy: names by the thousand, too long, or in folders without number.
TEST(Archives, HostileListings) {
    const auto predictListing = [](std::string names) {
        FakeDisk files{"a.zip"};
        FakeLauncher launcher;
        launcher.answers = {{.exitCode = 0, .output = std::move(names)}};
        return predict("unzip a.zip", files, {.launcher = &launcher, .limits = {.textBytesInAll = 4 * 1024 * 1024}});
    };
    std::string manyNames, longName, deepNames;
    for (int at = 0; at < 10'000; ++at)
        manyNames += "folder" + std::to_string(at % 100) + "/" + std::to_string(at) + "\n";
    for (int at = 0; at < 3'000; ++at) longName += "a/";
    for (int at = 0; at < 20; ++at) deepNames += std::to_string(at) + "/" + longName.substr(0, 4'000) + "f\n";
    EXPECT_EQ(predictListing(manyNames).changes.size(), 10'100U);
    EXPECT_EQ(described(predictListing(longName + "\nb\n")), Texts{"create b"});
    EXPECT_EQ(described(predictListing(deepNames).analysisError),
              "simulationError: The archive holds too many folders to simulate");
}

// Real archives, and lines with which the real tools would write, run or call out.
TEST(Archives, RealTools) {
    inOrdinaryProcess([] {
        RealPrediction real;
        if (!real.canLaunch()) return;
        const std::string folder = real.scratch.path().text();
        const auto shell = [&](const std::string& line) {
            return std::system(("cd '" + folder + "' && { " + line + "; } >/dev/null 2>&1").c_str());
        };
        real.scratch.write("sub/é.txt", "1");
        real.scratch.write("sub/line\nend", "2");
        real.scratch.write("--checkpoint-action=exec=touch hit", "");
        shell(
            "tar -czf a.tgz sub; zip -qr a.zip sub; printf %s '--checkpoint-action=exec=touch hit' > list; rm -rf "
            "sub/l*");
        const auto before = real.scratch.snapshot();

        EXPECT_EQ(real.changes("tar -xzf a.tgz -C ."),
                  (Texts{"create sub/", "overwrite sub/", "create sub/line\nend", "modify sub/é.txt"}));
        EXPECT_EQ(real.changes("unzip -j a.zip"), (Texts{"create line^Jend", "create é.txt"}));
        for (const char* line :
             {"tar -tf a.tgz --checkpoint=1 --checkpoint-action=exec='touch hit'", "tar -xf a.tgz -T list",
              "tar -tf host:a.tgz", "tar -xf a.tgz -I 'touch hit; cat'", "tar -xf a.tgz --to-command='touch hit'",
              "TAR_OPTIONS='--to-command=touch' ; tar -xf a.tgz", "tar -cf n.tar a.tgz --remove-files",
              "zip -T -TT 'touch hit' n.zip a.zip", "zip -rq n.zip sub -m", "unzip a", "unzip '*.zip'",
              "cat a.tgz | tar -x -- '--checkpoint-action=exec=touch hit' list"}) {
            SCOPED_TRACE(line);
            EXPECT_TRUE(isAskedAbout(real.predict(line), real.scratch.path()));
        }
        EXPECT_EQ(real.scratch.snapshot(), before);
    });
}

}  // namespace archives_tests
}  // namespace brindlet
