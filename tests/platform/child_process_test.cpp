#include "platform/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <thread>

#include "support/scratch_folder.h"

namespace brindlet {
namespace child_process_tests {

using std::chrono::milliseconds;

constexpr milliseconds longEnough{10'000};

ChildLaunch script(const std::string& text, const FilePath& folder = FilePath("/")) {
    return {.arguments = {"/bin/bash", "-c", text},
            .folder = folder,
            .environment = {{"PATH", "/usr/bin:/bin"}, {"GREETING", "hello"}},
            .joinsStandardError = true};
}

std::string readToEnd(ChildProcess& child) {
    std::string output;
    while (child.read(output, longEnough) == ReadState::bytes) {
    }
    return output;
}

TEST(ChildProcess, OutputAndStatus) {
    const ScratchFolder scratch;
    struct Case {
        std::string script, output;
        int status;
    };
    const Case cases[] = {
        {"echo out; echo err >&2; exit 3", "out\nerr\n", 3},
        {"pwd; echo $GREETING", scratch.path().text() + "\nhello\n", 0},
        {"cat; [ -t 0 ] || echo none", "none\n", 0},  // nothing to read
        {"kill -KILL $$", "", 128 + SIGKILL},
        {"yes | head -n 1", "y\n", 0},             // ended by a signal that this process ignores
        {"[ $(ps -o pgid= -p $$) = $$ ]", "", 0},  // a group of its own
        {"cd /proc/$$/fd; for n in [3-9]; do [ -e $n ] && echo $n; done; true", "", 0},
        {"head -c 3000000 /dev/zero | tr '\\0' x", std::string(3'000'000, 'x'), 0},
    };
    const auto before = ::signal(SIGPIPE, SIG_IGN);
    const int inheritable = ::open("/dev/null", O_RDONLY);
    for (const auto& [text, output, status] : cases) {
        SCOPED_TRACE(text);
        auto child = ChildProcess::start(script(text, scratch.path()));
        ASSERT_TRUE(child);
        EXPECT_TRUE(readToEnd(**child) == output);
        EXPECT_EQ((*child)->waitForExit(), status);
        EXPECT_EQ((*child)->exitStatus(), status);
        (*child)->terminateGroup(true);  // reaped by now, so nobody is meant
    }
    ::close(inheritable);
    ::signal(SIGPIPE, before);
}

TEST(ChildProcess, FailsToStartWithTheSystemsWords) {
    using namespace std::string_literals;
    const ScratchFolder scratch;
    const FilePath plain = scratch.write("plain", "");
    struct Case {
        ChildLaunch launch;
        std::string failure;
    };
    const Case cases[] = {
        {{.arguments = {"/no/such/tool"}, .folder = FilePath()}, "No such file or directory"},
        {{.arguments = {plain.text()}, .folder = FilePath()}, "Permission denied"},
        {script("true", scratch.path("none")), "No such file or directory"},
        {script("true", plain), "Not a directory"},
        {script("true\0"s), "Invalid argument"},
        {{.arguments = {}, .folder = FilePath()}, "Invalid argument"},
    };
    for (const auto& [launch, failure] : cases) {
        const auto child = ChildProcess::start(launch);
        ASSERT_FALSE(child);
        EXPECT_EQ(child.failure().description, failure);
    }
}

TEST(ChildProcess, EndsWithItsWholeGroup) {
    for (const bool gently : {true, false}) {
        auto child = ChildProcess::start(script("sleep 60 & echo ready; wait"));
        ASSERT_TRUE(child);
        std::string output;
        EXPECT_EQ((*child)->read(output, longEnough), ReadState::bytes);
        EXPECT_EQ((*child)->read(output, milliseconds{0}), ReadState::timedOut);
        EXPECT_EQ((*child)->exitStatus(), std::nullopt);
        std::thread([&] { (*child)->terminateGroup(gently); }).join();
        // The pipe ends only when the child in the background has gone as well.
        EXPECT_EQ((*child)->read(output, longEnough), ReadState::ended);
        EXPECT_EQ((*child)->waitForExit(), 128 + (gently ? SIGTERM : SIGKILL));
        EXPECT_EQ(output, "ready\n");
    }
}

TEST(ChildProcess, GroupCanBeEndedAfterItsLeader) {
    auto child = ChildProcess::start(script("sleep 60 & exit 5"));
    ASSERT_TRUE(child);
    while (!(*child)->exitStatus()) std::this_thread::yield();
    std::string output;
    EXPECT_EQ((*child)->read(output, milliseconds{0}), ReadState::timedOut);
    (*child)->terminateGroup(false);
    EXPECT_EQ((*child)->read(output, longEnough), ReadState::ended);
    EXPECT_EQ((*child)->waitForExit(), 5);
}

}  // namespace child_process_tests
}  // namespace brindlet
