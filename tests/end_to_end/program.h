// The built program as its users start it: words in, texts and an exit code out, in a scratch folder of its own and
// with settings of its own.
//
//     Program program;
//     program.disk.write("a.txt", "");
//     EXPECT_EQ(program.run({"predict", "mv a.txt b.txt"}).exitCode, 0);
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/environment.h"
#include "support/scratch_folder.h"

namespace brindlet {

struct Outcome {
    int exitCode = -1;  // a signal's number plus 128
    std::string out, err;

    nlohmann::ordered_json json() const { return nlohmann::ordered_json::parse(out); }
};

struct Program {
    Program();

    ScratchFolder disk;  // the current folder
    ScratchFolder home;  // HOME, and where the program keeps its things
    Environment environment;

    Outcome run(const std::vector<std::string>& words, std::string_view standardInput = "") const;
    // With standard output on what `outputFile` names; none: closed.
    Outcome runOnto(const char* outputFile, const std::vector<std::string>& words) const;
    // At a terminal: once the screen holds `awaited`, `keys` are typed or, where there are none, SIGINT is sent. `out`
    // is what the screen showed.
    Outcome runAtTerminal(const std::vector<std::string>& words, std::string_view awaited, std::string_view keys) const;
    // SIGINT once the file `sign` is there.
    Outcome interruptWhenExists(std::string_view sign, const std::vector<std::string>& words) const;

    // The names in the current folder, sorted, one a line.
    std::string names(std::string_view folder = ".") const;

  private:
    [[noreturn]] void become(const std::vector<std::string>& words) const;
    pid_t start(const std::vector<std::string>& words, std::string_view standardInput,
                const std::function<void()>& prepare) const;
    Outcome collect(pid_t child) const;
};

}  // namespace brindlet
