// Attacks on the read-only sandbox. Each one really happens where the sandbox doesn't hold, so every test proves first
// that it does, runs as an ordinary user in a scratch folder, and leaves the clock, the machine's name, power and other
// people's processes alone.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/file_system.h"
#include "platform/linux/landlock.h"
#include "platform/read_only_launcher.h"
#include "support/ordinary_user.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace sandbox_tests {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Words = std::vector<std::string>;

constexpr LaunchLimits shortLimits{.wallClock = milliseconds{5'000}, .outputBytes = 32 * 1024 * 1024};

ToolLaunch launchOf(Words words, const FilePath& folder, std::string input = "") {
    return {.arguments = std::move(words),
            .standardInput = std::move(input),
            .folder = folder,
            .environment = {{"PATH", "/usr/bin:/bin"}, {"HOME", folder.text()}}};
}

bool isInstalled(const std::string& tool) {
    const auto files = openFileSystem();
    return files->isExecutableFile(FilePath("/usr/bin/" + tool)) || files->isExecutableFile(FilePath("/bin/" + tool));
}

void fill(const ScratchFolder& scratch) {
    scratch.write("a.txt", "beta\nalpha\n");
    scratch.write("b.txt", "other\n");
    scratch.write("folder/c.txt", "");
    scratch.makeFolder("empty");
    scratch.link("link", "a.txt");
}

// The weakest attack there is, tried before any other.
bool holds(ReadOnlyLauncher& launcher, const ScratchFolder& scratch) {
    const ToolOutcome status =
        launcher.run(launchOf({"grep", "-E", "Seccomp:|NoNewPrivs", "/proc/self/status"}, scratch.path()));
    const ToolOutcome attempt = launcher.run(launchOf({"mkdir", "proof"}, scratch.path()));
    return launcher.layers() != "none" && status.output == "NoNewPrivs:\t1\nSeccomp:\t2\n" && !attempt.exitCode &&
           !scratch.exists("proof");
}

// What an attack may come to besides leaving everything as it was.
enum class Seen {
    always,         // it is known that a change was tried
    unlessSilent,   // the tool keeps quiet about it, so that it is known only where attempts are reported
    notNecessarily  // what is refused is no change
};

struct Attack {
    Words words;
    Seen seen = Seen::always;
};

const Attack attacks[] = {
    // Tools that mostly read.
    {{"sort", "-o", "a.txt", "a.txt"}},
    {{"sed", "-i", "s/a/b/", "a.txt"}},
    {{"sed", "w out", "a.txt"}},
    {{"sed", "1e touch new", "a.txt"}},
    {{"awk", "BEGIN { print 1 > \"out\" }"}},
    {{"awk", "BEGIN { system(\"rm a.txt\") }"}},
    {{"awk", "BEGIN { print 1 | \"cat > out\" }"}},
    {{"find", ".", "-delete"}},
    {{"find", ".", "-fprint", "out"}},
    {{"find", ".", "-type", "f", "-exec", "rm", "{}", ";"}},
    {{"tar", "-cf", "-", "--checkpoint=1", "--checkpoint-action=exec=touch new", "a.txt"}},
    {{"tar", "-cf", "out.tar", "a.txt"}},
    {{"uniq", "a.txt", "out"}},
    {{"tee", "out"}},
    {{"dd", "if=a.txt", "of=out"}},
    {{"xargs", "-I{}", "touch", "new"}, Seen::notNecessarily},  // nothing to read, so nothing is run
    // Tools that write.
    {{"touch", "-d", "2001-01-01", "a.txt"}},
    {{"touch", "new"}},
    {{"chmod", "777", "a.txt"}},
    {{"chgrp", "65534", "a.txt"}},
    {{"truncate", "-s", "0", "a.txt"}},
    {{"mkfifo", "new"}},
    {{"mkdir", "new"}},
    {{"rmdir", "empty"}},
    {{"ln", "a.txt", "new"}},
    {{"ln", "-s", "a.txt", "new"}},
    {{"mv", "a.txt", "new"}},
    {{"mv", "a.txt", "b.txt"}},
    {{"rm", "-rf", "folder"}},
    {{"rm", "link"}},
    {{"cp", "a.txt", "new"}},
    {{"install", "a.txt", "new"}},
    {{"chattr", "+d", "a.txt"}},
    {{"unshare", "-U", "true"}},
    // A shell's own doing.
    {{"bash", "-c", "> a.txt"}},
    {{"bash", "-c", "echo x >> a.txt"}},
    {{"bash", "-c", "echo x > new"}},
    {{"bash", "-c", "exec 3<> a.txt; echo x >&3"}},
    {{"bash", "-c", "rm a.txt 2>&-"}, Seen::unlessSilent},
    {{"bash", "-c", "(rm a.txt) & wait"}},
    {{"bash", "-c", "echo x > /dev/tcp/127.0.0.1/9"}},
    // An interpreter that says nothing when a call fails.
    {{"perl", "-e", "utime 0, 0, 'a.txt'"}, Seen::unlessSilent},
    {{"perl", "-e", "chmod 0777, 'a.txt'"}, Seen::unlessSilent},
    {{"perl", "-e", "truncate 'a.txt', 0"}, Seen::unlessSilent},
    {{"perl", "-e", "open F, '+<', 'a.txt' and print F 'x'"}, Seen::unlessSilent},
    {{"perl", "-e", "rename 'a.txt', 'new'"}, Seen::unlessSilent},
    {{"perl", "-e", "socket(S, 2, 1, 0)"}, Seen::unlessSilent},
    {{"perl", "-e", "socket(S, 1, 1, 0)"}, Seen::notNecessarily},
    {{"python3", "-c", "import os; os.setxattr('a.txt', 'user.x', b'y')"}},
    {{"python3", "-c", "import os; os.open('new', os.O_RDONLY | os.O_CREAT)"}},
    {{"python3", "-c", "import os; os.open('a.txt', os.O_RDONLY | os.O_TRUNC)"}},
    {{"python3", "-c", "import os; os.open('.', os.O_RDWR | os.O_TMPFILE)"}},
    {{"python3", "-c", "import os; os.mknod('new')"}},
    {{"python3", "-c", "import os; os.utime('a.txt', (0, 0))"}},
    // Written anew through an open descriptor: by an open for reading and writing that is refused without a report.
    {{"python3", "-c", "import os; os.write(os.open('a.txt', os.O_RDWR | os.O_NONBLOCK), b'x')"}},
    // Calls by number, past the C library: fchmodat2, openat2, io_uring_setup, file_setattr, one that isn't there yet.
    {{"python3", "-c", "import ctypes; ctypes.CDLL(None).syscall(452, -100, b'a.txt', 0o777, 0)"}, Seen::unlessSilent},
    {{"python3", "-c",
      "import ctypes; how = (ctypes.c_uint64 * 3)(0o102, 0o600, 0); "
      "ctypes.CDLL(None).syscall(437, -100, b'new', how, 24)"},
     Seen::notNecessarily},
    {{"python3", "-c", "import ctypes; l = ctypes.CDLL(None); exit(l.syscall(425, 1, (ctypes.c_uint64 * 16)()) != -1)"},
     Seen::notNecessarily},
    {{"python3", "-c", "import ctypes; ctypes.CDLL(None).syscall(469, -100, b'a.txt', (ctypes.c_uint64 * 4)(), 32, 0)"},
     Seen::unlessSilent},
    {{"python3", "-c", "import ctypes; ctypes.CDLL(None).syscall(480, 0)"}, Seen::notNecessarily},
};

void tryAttacks(bool attemptsAreReported) {
    const ScratchFolder scratch;
    fill(scratch);
    const auto launcher = openReadOnlyLauncher(shortLimits);
    ASSERT_TRUE(holds(*launcher, scratch)) << "nothing was tried, since it would have happened";
    const auto before = scratch.snapshot();
    for (const auto& [words, seen] : attacks) {
        if (!isInstalled(words.front())) continue;
        SCOPED_TRACE(words.front() + " " + words[1] + " " + words.back());
        const auto start = Clock::now();
        const ToolOutcome outcome = launcher->run(launchOf(words, scratch.path()));
        EXPECT_LT(Clock::now() - start, shortLimits.wallClock + milliseconds{1'000});
        if (seen == Seen::always || (seen == Seen::unlessSilent && attemptsAreReported)) {
            EXPECT_EQ(outcome.exitCode, std::nullopt) << outcome.output;
        }
        ASSERT_EQ(scratch.snapshot(), before) << outcome.output;
    }
}

// From here on no filter of this process can have a listener any more.
void takeTheListener() {
    sock_filter allow = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    const sock_fprog program{.len = 1, .filter = &allow};
    ASSERT_EQ(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_GE(::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program), 0);
}

class Sandbox : public testing::Test {
  protected:
    void SetUp() override {
        if (openReadOnlyLauncher()->layers() == "none") GTEST_SKIP() << "no sandbox here, so nothing is launched";
    }
};

TEST_F(Sandbox, NoAttackGetsThrough) {
    inOrdinaryProcess([] { tryAttacks(true); });
}

// As under a supervisor that watches this process's own calls: only the tools' words tell.
TEST_F(Sandbox, NoAttackGetsThroughWhereAttemptsAreNotReported) {
    inOrdinaryProcess([] {
        takeTheListener();
        tryAttacks(false);
    });
}

TEST_F(Sandbox, ReadingWorksAsEver) {
    inOrdinaryProcess([] {
        const ScratchFolder scratch;
        fill(scratch);
        const std::string large(10'000'000, 'x');
        struct Case {
            Words words;
            std::string input;
            int exitCode;
            std::string output;
        };
        const Case cases[] = {
            {{"sort", "a.txt"}, "", 0, "alpha\nbeta\n"},
            {{"cat", "-"}, "", 0, ""},  // nothing given: the end comes at once
            {{"cat"}, large, 0, large},
            {{"head", "-c", "1"}, large, 0, "x"},  // stops reading early, which must not end this process
            {{"grep", "gamma", "a.txt"}, "", 1, ""},
            {{"sh", "-c", "exit 7"}, "", 7, ""},
            {{"sh", "-c", "echo out; echo err >&2; echo out"}, "", 0, "out\nerr\nout\n"},
            {{"bash", "-c", "cat < a.txt | sort | head -n 1"}, "", 0, "alpha\n"},
            {{"bash", "-c", "sleep 60 & echo here"}, "", 0, "here\n"},  // the child keeps the pipe open
            {{"bash", "-c", "exec >&- 2>&-; exit 3"}, "", 3, ""},
            {{"bash", "-c", "for n in 0 1 2; do [ -t $n ] && echo $n; done; true"}, "", 0, ""},
            {{"bash", "-c", "ulimit -Hf; ulimit -Hc; ulimit -Hn; ulimit -Hv; ulimit -Ht"},
             "",
             0,
             "0\n0\n512\n4194304\n10\n"},
            {{"bash", "-c", "(( $(cut -d ' ' -f 6 /proc/$$/stat) == $$ ))"}, "", 0, ""},  // a session of its own
            {{"bash", "-c", "cd /proc/$$/fd; echo *"}, "", 0, "0 1 2 3\n"},               // 3 is the listing itself
            {{"env"}, "", 0, "HOME=" + scratch.path().text() + "\nPATH=/usr/bin:/bin\n"},
            {{"no-such-tool"}, "", 127, "/usr/bin/env: 'no-such-tool': No such file or directory\n"},
        };
        const auto launcher = openReadOnlyLauncher(shortLimits);
        ASSERT_TRUE(holds(*launcher, scratch));
        const int inheritable = ::open("/dev/null", O_RDONLY);
        ASSERT_GE(inheritable, 0);
        for (const auto& [words, input, exitCode, output] : cases) {
            SCOPED_TRACE(words.front() + " " + words.back());
            const ToolOutcome outcome = launcher->run(launchOf(words, scratch.path(), input));
            EXPECT_EQ(outcome.exitCode, exitCode);
            EXPECT_TRUE(outcome.output == output) << outcome.output.substr(0, 200);
        }
        ::close(inheritable);
    });
}

TEST_F(Sandbox, EndsWhatRunsPastALimit) {
    inOrdinaryProcess([] {
        const ScratchFolder scratch;
        const auto launcher = openReadOnlyLauncher({.wallClock = milliseconds{300}, .outputBytes = 64 * 1024});
        ASSERT_TRUE(holds(*launcher, scratch));
        const Words cases[] = {
            {"sleep", "60"},
            {"bash", "-c", "while :; do :; done"},
            {"bash", "-c", "trap '' TERM INT HUP; sleep 60 & sleep 60 & wait"},
            {"yes"},
            {"bash", "-c", "yes & sleep 60"},
        };
        for (const Words& words : cases) {
            SCOPED_TRACE(words.back());
            const auto start = Clock::now();
            EXPECT_EQ(launcher->run(launchOf(words, scratch.path())).exitCode, std::nullopt);
            EXPECT_LT(Clock::now() - start, milliseconds{2'000});
        }
        // Nor is one waited for that nobody wants any more, as after Ctrl-C.
        std::array<int, 2> ends{};
        ASSERT_TRUE(::pipe(ends.data()) == 0 && ::write(ends[1], "!", 1) == 1);
        const auto start = Clock::now();
        const auto stopped = openReadOnlyLauncher({.stopDescriptor = ends[0]});
        EXPECT_EQ(stopped->run(launchOf({"sleep", "60"}, scratch.path())).exitCode, std::nullopt);
        EXPECT_LT(Clock::now() - start, milliseconds{2'000});
    });
}

TEST_F(Sandbox, LeavesNoChildBehind) {
    inOrdinaryProcess([] {
        const ScratchFolder scratch;
        const auto launcher = openReadOnlyLauncher(shortLimits);
        ASSERT_TRUE(holds(*launcher, scratch));
        const ToolOutcome outcome = launcher->run(launchOf({"bash", "-c", "sleep 60 & echo $!"}, scratch.path()));
        ASSERT_EQ(outcome.exitCode, 0);
        // Dead, or waiting for its new parent to notice; a killed process may take a moment to get there.
        const std::string state = "/proc/" + outcome.output.substr(0, outcome.output.size() - 1) + "/stat";
        const auto isRunning = [&] {
            const auto text = openFileSystem()->readFile(FilePath(state), 4096);
            return text && text->find(") Z ") == std::string::npos && text->find(") X ") == std::string::npos;
        };
        const auto deadline = Clock::now() + milliseconds{2'000};
        while (isRunning() && Clock::now() < deadline) std::this_thread::yield();
        EXPECT_FALSE(isRunning());
    });
}

TEST_F(Sandbox, LaunchesNothingWhereItCannot) {
    using namespace std::string_literals;
    const ScratchFolder scratch;
    const auto launcher = openReadOnlyLauncher(shortLimits);
    const ToolLaunch cases[] = {
        launchOf({"true"}, scratch.path("not-there")),
        launchOf({"true"}, scratch.write("a.txt", "")),
        launchOf({"true"}, scratch.path("\0nul"s)),  // not the folder above it
        launchOf({"printf", "a\0b"s}, scratch.path()),
        launchOf({}, scratch.path()),
        launchOf({"echo", std::string(4'000'000, 'x')}, scratch.path()),
    };
    for (const ToolLaunch& launch : cases) {
        const ToolOutcome outcome = launcher->run(launch);
        EXPECT_EQ(outcome.exitCode, std::nullopt);
        EXPECT_EQ(outcome.output, "");
    }
}

// The lower layer by itself, since the filter over it lets nothing reach it.
TEST_F(Sandbox, LandlockRefusesToWriteAllButTheNullDevice) {
    inOrdinaryProcess([] {
        const ScratchFolder scratch;
        const FilePath file = scratch.write("a.txt", "content");
        const LandlockRuleset rules = openReadOnlyRuleset();
        if (rules.version == 0) GTEST_SKIP() << "no Landlock here";
        ASSERT_EQ(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
        // For one thread only, so that the scratch folder can be removed afterwards.
        std::thread([&] {
            ASSERT_TRUE(restrictTo(rules));
            EXPECT_LT(::open(file.text().c_str(), O_WRONLY), 0);
            EXPECT_LT(::open(scratch.path("new").text().c_str(), O_WRONLY | O_CREAT, 0600), 0);
            EXPECT_LT(::unlink(file.text().c_str()), 0);
            EXPECT_LT(::rename(file.text().c_str(), scratch.path("new").text().c_str()), 0);
            EXPECT_GE(::open(file.text().c_str(), O_RDONLY), 0);
            EXPECT_GE(::open("/dev/null", O_WRONLY | O_TRUNC), 0);
        }).join();
    });
}

}  // namespace sandbox_tests
}  // namespace brindlet
