// What is installed beside the program: the man page says what the program says of itself, and the shells complete it.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "end_to_end/program.h"
#include "platform/child_process.h"
#include "text/strings.h"

namespace brindlet {
namespace packaging_tests {

FilePath builtFolder() {
    return FilePath(BRINDLET_PROGRAM).parent();
}

FilePath shareFile(std::string_view name) {
    return builtFolder().child("share").child(name);
}

std::vector<std::string> linesOf(const FilePath& file) {
    std::ifstream stream(file.text());
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// The first of the system's folders that has the tool; none: empty.
std::string toolPath(const std::string& name) {
    for (const std::string folder : {"/usr/bin/", "/bin/", "/usr/local/bin/"})
        if (std::filesystem::exists(folder + name)) return folder + name;
    return "";
}

std::string outputOf(const Program& program, const std::vector<std::string>& arguments) {
    Environment environment = program.environment;
    environment["PATH"] = builtFolder().text() + ":" + environment["PATH"];
    auto child = ChildProcess::start({.arguments = arguments,
                                      .folder = program.disk.path(),
                                      .environment = environment,
                                      .joinsStandardError = true});
    std::string output;
    while (child && (*child)->read(output, std::chrono::seconds(60)) == ReadState::bytes) {
    }
    if (child) (*child)->waitForExit();
    return output;
}

// The options and words of each command, by the words that reach it: {"settings get": {"KEY"}}.
using Manual = std::map<std::string, std::set<std::string>>;

bool isHelp(const std::string& option) {
    return option == "-h" || option == "--help";
}

// A program's --help, and that of all its commands.
void addHelp(const Program& program, const std::vector<std::string>& path, Manual& manual) {
    std::vector<std::string> words = path;
    words.emplace_back("--help");
    std::istringstream help(program.run(words).out);
    std::string section;
    std::set<std::string> names;
    bool hasCommands = false;
    for (std::string line; std::getline(help, line);) {
        if (line.ends_with(':')) section = line;
        if (!line.starts_with("  ") || line.starts_with("   ")) continue;
        std::string name;
        std::istringstream(line) >> name;
        if (section == "Positionals:") names.insert(name);
        if (section == "Options:")
            for (const std::string& option : split(name, ","))
                if (!isHelp(option)) names.insert(option);
        if (section != "Subcommands:") continue;
        hasCommands = true;
        words = path;
        words.push_back(name);
        addHelp(program, words, manual);
    }
    if (!hasCommands || !names.empty()) manual[joined(path, " ")] = names;
}

// What stands between ".It Xo" and ".Xc" is one command: its words, then its options with their values and its words.
Manual writtenManual() {
    Manual manual;
    std::string path;
    bool isInCommand = false;
    for (const std::string& line : linesOf(shareFile("brindlet.1"))) {
        if (line == ".It Xo") {
            isInCommand = true;
            path.clear();
        } else if (line == ".Xc") {
            isInCommand = false;
        } else if (isInCommand && line.starts_with(".Cm ")) {
            path = line.substr(4);
            manual[path];
        } else if (isInCommand) {
            bool isValue = false;
            std::istringstream words(line);
            for (std::string macro, word; words >> macro;) {
                if (macro.ends_with("Fl") && words >> word) manual[path].insert("-" + word);
                if (macro.ends_with("Ar") && words >> word && !isValue) manual[path].insert(word);
                isValue = macro.ends_with("Fl");
            }
        }
    }
    return manual;
}

TEST(ManPage, SaysWhatTheProgramSays) {
    const Program program;
    Manual manual;
    addHelp(program, {}, manual);
    EXPECT_EQ(writtenManual(), manual);  // a command or option on one side only is what differs
}

TEST(ManPage, IsWellFormed) {
    const std::string mandoc = toolPath("mandoc");
    if (mandoc.empty()) GTEST_SKIP() << "mandoc is not installed";
    // At the level of warnings: below it is said what else the machine has no page for.
    EXPECT_EQ(outputOf(Program(), {mandoc, "-Tlint", "-Wwarning", shareFile("brindlet.1").text()}), "");
}

// Each is given its completion file and the words after the program's name, of which the last is being typed, and
// prints what could stand there.
struct Shell {
    const char* name;
    std::vector<std::string> options;
    const char* driver;
};
const Shell shells[] = {
    {"bash",
     {"--norc", "-c"},
     R"(source "$0"
        COMP_WORDS=(brindlet "$@") COMP_CWORD=$#
        _brindlet
        printf '%s\n' "${COMPREPLY[@]}")"},
    // What the completion system would do with the words is left out: here they are printed.
    {"zsh",
     {"-f", "-c"},
     R"(_describe() { print -l -- ${${(P)2}%%:*} }
        compadd() { print -l -- ${@[2,-1]} }
        _files() { if [[ $1 == -/ ]]; then print -l -- *(N/); else print -l -- *(N); fi }
        _message() { }
        compset() { PREFIX=${PREFIX#*=} }
        words=(brindlet "$@") CURRENT=$#words PREFIX=$words[-1]
        source "$0")"},
    {"fish",
     {"--no-config", "-c"},
     R"(source $argv[1]
        set -l line (string join ' ' -- brindlet (string escape -- $argv[2..-2]) $argv[-1])
        complete -C $line | string replace -r '\t.*' '')"},
};

class Completion : public testing::TestWithParam<Shell> {};

TEST_P(Completion, OffersWhatCanStandThere) {
    const Shell& shell = GetParam();
    const std::string path = toolPath(shell.name);
    if (path.empty()) GTEST_SKIP() << shell.name << " is not installed";
    Program program;
    program.environment["BRINDLET_SECRETS"] = "file";
    program.disk.write("notes.txt", "");
    program.disk.makeFolder("sub");
    program.run({"models", "add", "--name", "gpt-4.1-mine:8b", "--url", "http://localhost:1"});
    program.run({"ask", "--yes", "duplicate", "notes.txt"});  // one entry in the history
    program.disk.write("two words.txt", "");

    struct Case {
        std::vector<std::string> words;
        std::set<std::string> offered;
    };
    const Case cases[] = {
        {{"pr"}, {"predict", "prompt"}},
        {{"settings", "un"}, {"unset"}},
        {{"run", "predict"}, {}},  // the first word behind `run` is a line, whatever it says
        {{"ask", "--dr"}, {"--dry-run"}},
        {{"ask", "--yes", "zip", "--mo"}, {"--model"}},
        {{"ask", "--yes", "zip", "--", "--mo"}, {}},  // no option behind --
        {{"predict", "--folder", "s"}, {"sub"}},
        {{"predict", "--folder", "sub", "mv a b", "notes.t"}, {"notes.txt"}},
        {{"predict", "mv a b", "notes.txt", "tw"}, {"two words.txt"}},
        {{"glob", "*.txt", "notes.t"}, {"notes.txt"}},
        {{"parse", "ls", "n"}, {}},  // one word and no more
        {{"settings", "allow", "Ren"}, {"Rename files"}},
        {{"settings", "allow", "Rename files", "o"}, {"on", "off"}},
        {{"settings", "get", "autoRun"}, {"autoRunRiskLevel"}},
        {{"keys", "set", "Mi"}, {"Mistral"}},
        {{"tools", "install", "Pan"}, {"Pandoc"}},
        {{"models", "select", "gpt-4.1-mi"}, {"gpt-4.1-mini", "gpt-4.1-mine:8b"}},
        {{"prompt", "--model", "gpt-4.1-na"}, {"gpt-4.1-nano"}},
        {{"models", "remove", "gpt"}, {"gpt-4.1-mine:8b"}},
        {{"models", "add", "--name", "gpt"}, {}},
        {{"history", "show", "1"}, {"1"}},
    };
    for (const auto& [words, offered] : cases) {
        SCOPED_TRACE(joined(words, " "));
        std::vector<std::string> arguments = {path};
        arguments.insert(arguments.end(), shell.options.begin(), shell.options.end());
        arguments.emplace_back(shell.driver);
        arguments.push_back(shareFile(std::string("brindlet.") + shell.name).text());
        arguments.insert(arguments.end(), words.begin(), words.end());
        const std::string output = outputOf(program, arguments);
        // Some print all that goes there, for the shell to choose from, and folders with a slash behind.
        std::set<std::string> printed;
        for (std::string line : splitNonEmpty(output, "\n")) {
            if (line.ends_with('/')) line.pop_back();
            if (line.starts_with(words.back())) printed.insert(line);
        }
        EXPECT_EQ(printed, offered) << output;
    }
}

INSTANTIATE_TEST_SUITE_P(Shells, Completion, testing::ValuesIn(shells),
                         [](const auto& shell) { return std::string(shell.param.name); });

}  // namespace packaging_tests
}  // namespace brindlet
