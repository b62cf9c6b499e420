#include "shared/tool.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <random>

#include <fmt/format.h>

#include "shared/waiting.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

// A file that lies beside the wrappers and nowhere else. There may be several such folders on one PATH.
constexpr std::string_view wrapperMark = "brindlet_animated_gif";
constexpr std::string_view overridesName = "overrides";

// Longer endings are none that an engine knows.
constexpr std::size_t longestEnding = 32;

bool isControl(char32_t scalar) {
    return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0) || (scalar >= 0x2028 && scalar <= 0x202E) ||
           (scalar >= 0x2066 && scalar <= 0x2069);
}

std::string spelledOut(std::string_view text) {
    std::string shown;
    for (std::size_t at = 0; at < text.size();) {
        const Scalar scalar = decodeScalar(text, at);
        const std::string_view piece = text.substr(at, scalar.length);
        if (scalar.isValid && !isControl(scalar.value)) {
            shown += piece;
        } else {
            for (const char byte : piece) shown += fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
        }
        at += scalar.length;
    }
    return shown;
}

bool holdsWrappers(const fs::path& folder) {
    std::error_code ignored;
    if (fs::exists(folder / wrapperMark, ignored)) return true;
    const fs::path place = fs::weakly_canonical(folder, ignored);
    return place.filename() == overridesName && fs::exists(place.parent_path() / wrapperMark, ignored);
}

bool isProgram(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) && ::access(path.c_str(), X_OK) == 0;
}

bool isThisProgram(const fs::path& path) {
    std::error_code ignored;
    return fs::equivalent(path, "/proc/self/exe", ignored);
}

std::string freshName(std::string_view ending) {
    std::random_device random;
    return fmt::format(".brindlet-{:08x}{:08x}{}", random(), random(), ending);
}

// A device or a pipe is written to, and no file can stand in for it.
bool isStream(const fs::path& place) {
    std::error_code error;
    const fs::file_status status = fs::status(place, error);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

std::string endingOf(const fs::path& place) {
    const std::string ending = place.extension();
    return ending.size() <= longestEnding ? ending : "";
}

// What is opened later must not take the number of a standard stream that this process was started without.
void openStandardStreams() {
    for (int stream = 0; stream < 3; ++stream)
        if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", stream == 0 ? O_RDONLY : O_WRONLY);
}

// Should a copy of these wrappers lie where nobody expects it, two may take each other for the real program. That ends
// here, long before the machine feels it; programs that rightly call each other don't stand so deep.
constexpr const char* depthVariable = "BRINDLET_TOOL_DEPTH";
constexpr int deepestCall = 16;

void countCall() {
    const char* text = std::getenv(depthVariable);
    const int depth = text == nullptr ? 0 : std::atoi(text);
    if (depth >= deepestCall)
        throw ToolFailure{"it was called by itself again and again: a second copy of it must lie on PATH",
                          statusMissingEngine};
    ::setenv(depthVariable, std::to_string(depth + 1).c_str(), 1);
}

}  // namespace

void complain(std::string_view name, std::string_view sentence) {
    const std::string line = fmt::format("{}: {}\n", name, spelledOut(sentence));
    std::fwrite(line.data(), 1, line.size(), stderr);
}

int toolMain(std::string_view name, int count, char** words,
             const std::function<int(const std::vector<std::string>& arguments)>& work) {
    openStandardStreams();
    try {
        countCall();
        const int status = work({words + std::min(count, 1), words + count});
        if (std::fflush(stdout) == 0) return status;
        complain(name, "the output can't be written");
    } catch (const ToolFailure& failure) {
        std::fflush(stdout);
        complain(name, failure.sentence);
        return failure.status;
    } catch (const Interrupted& interrupted) {
        std::signal(interrupted.signal, SIG_DFL);
        std::raise(interrupted.signal);
    } catch (const std::exception& error) {
        complain(name, error.what());
    }
    return 1;
}

std::optional<std::string> programPath(std::string_view name) {
    const char* const path = std::getenv("PATH");
    for (const std::string& folder : splitNonEmpty(path ? path : "/usr/bin:/bin", ":")) {
        fs::path program = fs::path(folder) / name;
        if (folder.starts_with('/') && isProgram(program) && !isThisProgram(program) && !holdsWrappers(folder))
            return program.string();
    }
    return std::nullopt;
}

std::string neededProgram(std::string_view name, std::string_view package) {
    if (auto path = programPath(name)) return *path;
    throw ToolFailure{fmt::format("{} is missing; the Debian package {} has it", name, package), statusMissingEngine};
}

std::string safeName(const std::string& name) {
    return name.starts_with('-') ? "./" + name : name;
}

fs::path realPlace(const fs::path& place) {
    std::error_code error;
    if (!fs::is_symlink(place, error)) return place;
    const fs::path target = fs::weakly_canonical(place, error);
    return error ? place : target;
}

void putInPlace(const fs::path& file, const fs::path& place) {
    const fs::path target = realPlace(place);
    std::error_code error;
    const fs::file_status previous = fs::status(target, error);
    if (fs::is_regular_file(previous)) fs::permissions(file, previous.permissions(), error);
    fs::rename(file, target, error);
    if (error) throw ToolFailure{fmt::format("'{}' can't be written: {}", place.string(), error.message())};
}

Output::Output(fs::path place) : place_(realPlace(place)) {
    std::error_code error;
    if (place_.filename().empty() || fs::is_directory(place_, error))
        throw ToolFailure{fmt::format("'{}' is a folder, it needs a file name", place.string())};
    holdSignals();
    path_ = isStream(place_) ? place_ : place_.parent_path() / freshName(endingOf(place_));
}

Output::~Output() {
    std::error_code ignored;
    if (!isKept_ && path_ != place_) fs::remove(path_, ignored);
    releaseSignals();
}

void Output::keep() {
    if (path_ == place_) return;
    std::error_code error;
    if (!fs::is_regular_file(path_, error)) throw ToolFailure{fmt::format("'{}' could not be made", place_.string())};
    putInPlace(path_, place_);
    isKept_ = true;
}

WorkFolder::WorkFolder(const fs::path& place) {
    holdSignals();
    std::string pattern = place / ".brindlet-XXXXXX";
    if (!::mkdtemp(pattern.data())) {
        const int reason = errno;
        releaseSignals();
        throw ToolFailure{fmt::format("nothing can be made in '{}': {}", place.string(), std::strerror(reason))};
    }
    path_ = pattern;
}

WorkFolder::~WorkFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
    releaseSignals();
}

}  // namespace brindlet::tools
