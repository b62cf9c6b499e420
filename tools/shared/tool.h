// What the small programs under tools/ have in common: one sentence for whatever goes wrong, other programs found and
// run without a shell, outputs that are there whole or not at all.
//
//     int main(int count, char** words) {
//         return toolMain("trash", count, words, [](const std::vector<std::string>& arguments) {
//             const std::string gio = neededProgram("gio", "libglib2.0-bin");
//             return run({gio, "trash", "--", path});
//         });
//     }
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet::tools {

// How a tool ends, by sysexits.h.
inline constexpr int statusWrongUsage = 64;
inline constexpr int statusMissingEngine = 69;

// Thrown for what the user has to know; the sentence stands behind the tool's name on standard error.
struct ToolFailure {
    std::string sentence;
    int status = 1;
};

// Runs a tool's work and gives its exit status. A ToolFailure becomes one line of standard error, and so does whatever
// else is thrown; a name in it that is no text is spelt out, so that it can't steer a terminal.
int toolMain(std::string_view name, int count, char** words,
             const std::function<int(const std::vector<std::string>& arguments)>& work);

// One such line, for what doesn't end the work.
void complain(std::string_view name, std::string_view sentence);

// Where a program of that name lies on PATH, the folders of these wrappers left out, so that a wrapper finds the real
// one and never itself.
std::optional<std::string> programPath(std::string_view name);
// The same; a ToolFailure of status 69 that names the Debian package where it is missing.
std::string neededProgram(std::string_view name, std::string_view package);

// The exit status of a program that has this one's standard streams; 128 and the signal's number where one ended it.
int run(const std::vector<std::string>& words);

struct Captured {
    int status = 0;
    std::string output;
    std::string errors;
};
// The same, its output read to the end (at most 64 MiB of it, a ToolFailure beyond) and `input` fed to it.
Captured capture(const std::vector<std::string>& words, std::string_view input = "");

// A name that no program takes for an option: "-a" is "./-a".
std::string safeName(const std::string& name);

// Where the bytes of a file of that name lie: the name itself, or what it links to.
std::filesystem::path realPlace(const std::filesystem::path& place);
// Renames a finished file, made in the folder of `realPlace(place)`, over what is there, whose mode it keeps.
void putInPlace(const std::filesystem::path& file, const std::filesystem::path& place);

// A file on its way: written beside its place under a hidden name with the same ending, renamed into it by `keep`,
// gone if that is never called, or a signal ends the tool.
class Output {
  public:
    explicit Output(std::filesystem::path place);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    const std::filesystem::path& path() const { return path_; }
    // A ToolFailure where it can't be put there, or was never written.
    void keep();

  private:
    std::filesystem::path place_;
    std::filesystem::path path_;
    bool isKept_ = false;
};

// A hidden folder of the tool's own in the folder `place`, gone with all that is in it as above.
class WorkFolder {
  public:
    explicit WorkFolder(const std::filesystem::path& place);
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

}  // namespace brindlet::tools
