#include <gtest/gtest.h>

#include "model_rows.h"

namespace brindlet {
namespace network_tests {

std::string mayWrite(const std::string& path) {
    return "unknownFileChanges: 'curl' may also write '" + path + "', which isn't shown here";
}

ModelRow request(std::string line, Texts changes, std::string url, Texts more = {}) {
    Texts effects{"networkAccess: " + url};
    effects.insert(effects.end(), more.begin(), more.end());
    return {.line = std::move(line),
            .changes = std::move(changes),
            .sideEffects = std::move(effects),
            .outcome = "0 unknown"};
}

const std::initializer_list<std::string_view> disk{"a", "old", "folder/"};

TEST(Curl, FilesAndRequests) {
    const Texts noName{"URL has no file name at the end / curl: (23) Failed writing received data to disk/application"};
    expectRows(disk, {
                         request("curl h.org/x", {}, "h.org/x"),
                         request("curl -sSL -o new https://h.org/x", {"create new"}, "https://h.org/x"),
                         request("curl -o - https://h.org/x", {}, "Requests - and 1 more"),
                         request("curl https://h.org/x --output old -D head",
                                 {"create head", "create old", "overwrite old"}, "https://h.org/x"),
                         request("curl -sLO https://h.org/d/a.zip", {"create a.zip"}, "https://h.org/d/a.zip"),
                         request("curl --remote-name 'h.org/a.zip?v=1/2#x'", {"create a.zip"}, "h.org/a.zip?v=1/2#x"),
                         request("curl u1 -H 'X: y' u2 --url u3", {}, "Requests u1 and 2 more"),
                         request("curl -T folder -T a ftp://h", {}, "ftp://h"),
                         request("curl", {}, "Makes network request"),
                         {.line = "curl -O", .errors = {"URL not specified / curl: (2) no URL specified"}},
                         {.line = "curl -O https://h.org/d/", .errors = noName},
                         {.line = "curl -O https://h.org", .errors = noName},
                         {.line = "curl -O 'https://h.org/a b'", .errors = noName},
                         {.line = "curl -O 'https://h.org/a[1-3].zip'", .errors = noName},
                         {.line = "curl -T sub/no --upload-file a https://h.org/",
                          .errors = {"Upload: no doesn't exist / curl: (26) Couldn't open file \"sub/no\""}},
                         {.line = "curl -T a --upload-file folder/no https://h.org/",
                          .errors = {"Upload: no doesn't exist / curl: (26) Couldn't open file \"folder/no\""}},
                     });
}

// Whatever the real tool writes is shown or said.
TEST(Curl, UnshownWrites) {
    const std::string names =
        "unknownFileChanges: 'curl' names files after what it downloads, and may write others than shown here";
    expectRows(
        disk,
        {
            request("curl -oaway u", {}, "Makes network request", {mayWrite("away")}),  // -y takes "u"
            request("curl -oaways u", {}, "u", {mayWrite("aways")}),
            request("curl -so old u", {"create old", "overwrite old"}, "u"),
            request("curl -o old u -o new v", {"create new"}, "Requests u and 1 more", {mayWrite("old")}),
            request("curl --output=old u", {}, "u", {mayWrite("old")}),
            request("curl -o -x u", {}, "Makes network request", {mayWrite("-x")}),
            request("curl -c old u --trace t --trace-ascii -", {}, "Requests u and 1 more",
                    {mayWrite("old"), mayWrite("t")}),
            request("curl --cookie-j old u", {}, "Requests old and 1 more", {mayWrite("old")}),
            request("curl --stderr old --hsts h u", {}, "Requests old and 2 more", {mayWrite("old"), mayWrite("h")}),
            request("curl --output-dir folder -o new u", {"create new"}, "u", {mayWrite("new")}),
            request("curl --create-dirs -o n/new u", {"create n/new"}, "u",
                    {"unknownFileChanges: 'curl' makes the missing folders of 'n/new', which isn't shown here"}),
            request("curl -o 'f_#1' 'h/{a,b}'", {"create f_#1"}, "h/{a,b}", {mayWrite("f_#1")}),
            request("curl -O h/x -O h/y", {"create x"}, "Requests h/x and 1 more", {names}),
            request("curl -OJ h/x", {"create x"}, "h/x", {names}),
            request("curl --remote-name-all h/x h/y", {}, "Requests h/x and 1 more", {names}),
            request("curl -O --output-dir folder h/x", {"create x"}, "h/x", {names}),
            request("curl -K c", {}, "Makes network request",
                    {"partialSupport: 'curl' takes further options from 'c', which isn't shown here"}),
            request("curl -T a FILE:///w/old", {}, "FILE:///w/old", {mayWrite("FILE:///w/old")}),
            request("curl -w '%output{old}x' u", {}, "u",
                    {"unknownFileChanges: 'curl -w' may write to other files, which isn't shown here"}),
            request("curl --expand-output old u", {}, "Requests old and 1 more",
                    {"partialSupport: 'curl' works out the value of '--expand-output', which isn't shown here"}),
            request("curl --unix-socket s h", {}, "h",
                    {"partialSupport: 'curl' talks to another program through 's', which isn't shown here"}),
            request("curl --cookie x --head --crlf u", {}, "u"),  // flags whose names others begin with
        });
}

TEST(Ping, EndsByItself) {
    struct Case {
        std::string_view line, runs;
        bool ends = true;
    };
    const Case cases[] = {
        {"ping host", "ping -c 5 host"},
        {"/bin/ping host > out", "/bin/ping -c 5 host > out"},
        {"ping -c3 host", "ping -c3 host"},
        {"ping host -t 5", "ping host -t 5"},
        {"for h in a b; do ping \"$h\"; done", "for h in a b; do ping -c 5 \"$h\"; done"},
        {"tool=ping; $tool host", "tool=ping; $tool -c 5 host"},
        {"caffeinate -i ping host", "caffeinate -i ping -c 5 host"},  // behind the name, wherever it stands
        {"caffeinate ping ping", "caffeinate ping ping", false},      // which of them is the name?
        {"p=ping; caffeinate $p host", "p=ping; caffeinate $p host", false},
    };
    for (const auto& [line, runs, ends] : cases) {
        SCOPED_TRACE(line);
        FakeDisk files{"/bin/ping"};
        const AnalysisResult result = predict(line, files);
        EXPECT_EQ(result.rewrittenCommand, runs);
        const auto effects = joined(described(result.sideEffects), "; ");
        EXPECT_EQ(contains(effects, "networkAccess: Makes network request; longRunning: "), ends) << effects;
        EXPECT_EQ(contains(effects, "indefinite: Won't work in Brindlet: it never finishes"), !ends) << effects;
    }
}

}  // namespace network_tests
}  // namespace brindlet
