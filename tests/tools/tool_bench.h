// A bench for the small programs below tools/: a scratch folder, a home of its own, a search path like the one that
// lines run under, and stand-ins for the programs of a desktop.
//
//     const ToolBench bench;
//     bench.standIn("xdg-open");
//     EXPECT_EQ(bench.run("open a.pdf").status, 0);
//     EXPECT_EQ(bench.log(), "xdg-open <" + bench.path("a.pdf") + ">\n");
#pragma once

#include <filesystem>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/child_process.h"
#include "support/scratch_folder.h"

namespace brindlet {

struct ToolRun {
    int status = -1;
    std::string output;  // standard error with it

    bool operator==(const ToolRun&) const = default;
    friend void PrintTo(const ToolRun& run, std::ostream* stream) { *stream << run.status << ": " << run.output; }
};

class ToolBench {
  public:
    ToolBench() {
        for (const std::string_view folder : {"bin", "home", "work"}) scratch_.makeFolder(folder);
        const std::string binaries = BRINDLET_BINARIES;
        environment_ = {{"HOME", scratch_.path("home").text()},
                        {"LOG", scratch_.path("log").text()},
                        {"LC_ALL", "C.UTF-8"},
                        {"TZ", "UTC"},
                        {"PATH", scratch_.path("bin").text() + ":" + binaries +
                                     "/overrides:/usr/local/bin:/usr/bin:/bin:" + binaries}};
    }

    // By bash, in the folder "work".
    ToolRun run(std::string_view line) const {
        const auto child = ChildProcess::start({.arguments = {"/bin/bash", "-c", std::string(line)},
                                                .folder = scratch_.path("work"),
                                                .environment = environment_,
                                                .joinsStandardError = true});
        if (!child) return {};
        ToolRun run;
        while ((*child)->read(run.output, std::chrono::seconds(1)) != ReadState::ended) continue;
        run.status = (*child)->waitForExit();
        return run;
    }

    // Whether a program is there, to skip a test of what is made with it.
    bool has(std::string_view program) const { return run("command -v " + std::string(program)).status == 0; }

    // A program of that name, found before any other, that notes how it was called and then runs `script`.
    void standIn(std::string_view name, std::string_view script = "") const {
        const FilePath file = scratch_.write("bin/" + std::string(name),
                                             "#!/bin/bash\n"
                                             "{ printf '%s' \"${0##*/}\"; [ $# = 0 ] || printf ' <%s>' \"$@\"; echo; } "
                                             ">>\"$LOG\"\n" +
                                                 std::string(script));
        std::filesystem::permissions(file.text(), std::filesystem::perms::owner_all);
    }
    // How the stand-ins were called since the last look.
    std::string log() const {
        const std::string text = scratch_.read("log");
        std::filesystem::remove(scratch_.path("log").text());
        return text;
    }

    void set(const std::string& name, const std::string& value) { environment_[name] = value; }
    const ScratchFolder& scratch() const { return scratch_; }
    std::string path(std::string_view inWork) const { return scratch_.path("work").text() + '/' + std::string(inWork); }
    void write(std::string_view inWork, std::string_view content) const {
        scratch_.write("work/" + std::string(inWork), content);
    }
    std::string read(std::string_view inWork) const { return scratch_.read("work/" + std::string(inWork)); }

  private:
    ScratchFolder scratch_;
    Environment environment_;
};

}  // namespace brindlet
