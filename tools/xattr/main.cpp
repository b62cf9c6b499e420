// xattr lists, prints and changes the attributes that a file carries beside its content. They lie in the name space
// "user." of the system, which is left away here: "xattr -w note urgent a.txt" sets what getfattr calls "user.note".
//
// Exit codes: 0 done, 1 something couldn't be, 64 wrong usage.
#include <sys/xattr.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

#include <fmt/format.h>

#include "shared/command_line.h"
#include "shared/tool.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view nameSpace = "user.";
constexpr std::size_t bytesInRow = 16;

constexpr OptionRow attributeOptions[] = {{"-l"}, {"-p"}, {"-w"}, {"-d"}, {"-c"},
                                          {"-r"}, {"-v"}, {"-x"}, {"-h"}, {"--help"}};

constexpr std::string_view attributeHelp =
    "Usage: xattr [-lrvx] FILE...            list the attributes, with -l also their values\n"
    "       xattr -p [-lrvx] NAME FILE...    print a value\n"
    "       xattr -w [-rx] NAME VALUE FILE...  set one\n"
    "       xattr -d [-r] NAME FILE...       remove one\n"
    "       xattr -c [-r] FILE...            remove all\n\n"
    "  -r  also in all that lies below a folder\n  -v  with the file's name\n  -x  values as hexadecimal digits\n";

enum class Task { list, print, write, remove, clear };

struct TaskRow {
    std::string_view option;
    Task task;
    std::size_t words;  // before the files
};
constexpr TaskRow taskRows[] = {
    {"-p", Task::print, 1}, {"-w", Task::write, 2}, {"-d", Task::remove, 1}, {"-c", Task::clear, 0}};

struct Order {
    Task task = Task::list;
    std::string name{};  // in the system's words
    std::string value{};
    bool isLong = false, isHex = false, tellsFile = false;
    bool isDeep = false;  // in all that lies below a folder
};

std::string systemName(const std::string& name) {
    return name.starts_with(nameSpace) ? name : std::string(nameSpace) + name;
}

ToolFailure refused(const std::string& file, const std::string& name, int error) {
    if (error == ENODATA) return {fmt::format("{}: No such xattr: {}", file, name.substr(nameSpace.size()))};
    if (error == ENOTSUP) return {fmt::format("{}: no attributes can be kept here", file)};
    if (error == EPERM) return {fmt::format("{}: only files and folders carry attributes", file)};
    return {fmt::format("{}: {}", file, std::strerror(error))};
}

// What one of the calls that fill a buffer has to give; the size may change between asking for it and taking it.
template <class Call>
std::optional<std::string> filledBy(Call call) {
    for (;;) {
        const ssize_t size = call(nullptr, 0);
        if (size < 0) return std::nullopt;
        std::string buffer(static_cast<std::size_t>(size), '\0');
        const ssize_t got = size == 0 ? 0 : call(buffer.data(), buffer.size());
        if (got < 0 && errno == ERANGE) continue;
        if (got < 0) return std::nullopt;
        buffer.resize(static_cast<std::size_t>(got));
        return buffer;
    }
}

std::vector<std::string> namesOn(const std::string& file) {
    const auto list = filledBy([&](char* to, std::size_t size) { return ::listxattr(file.c_str(), to, size); });
    if (!list) throw refused(file, "", errno);
    std::vector<std::string> names;
    for (const std::string& name : splitNonEmpty(*list, std::string_view("\0", 1)))
        if (name.starts_with(nameSpace)) names.push_back(name);
    return names;
}

std::string valueOf(const std::string& file, const std::string& name) {
    auto value = filledBy([&](char* to, std::size_t size) { return ::getxattr(file.c_str(), name.c_str(), to, size); });
    if (!value) throw refused(file, name, errno);
    return std::move(*value);
}

std::string hexRows(std::string_view value) {
    std::string rows;
    for (std::size_t at = 0; at < value.size(); ++at) {
        rows += fmt::format("{:02X}", static_cast<unsigned char>(value[at]));
        rows += (at + 1) % bytesInRow == 0 || at + 1 == value.size() ? '\n' : ' ';
    }
    return rows;
}

std::string bytesOfHex(const std::string& digits) {
    std::string bytes, pair;
    for (const char digit : digits) {
        if (digit == ' ' || digit == '\n') continue;
        if (!std::isxdigit(static_cast<unsigned char>(digit)))
            throw ToolFailure{"'" + digits + "' is no row of hexadecimal digits", statusWrongUsage};
        pair += digit;
        if (pair.size() < 2) continue;
        bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
        pair.clear();
    }
    if (!pair.empty()) throw ToolFailure{"'" + digits + "' has half a byte at its end", statusWrongUsage};
    return bytes;
}

bool isText(std::string_view value) {
    return isValidUtf8(value) && value.find('\0') == std::string_view::npos;
}

void say(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

// One value, with what stands before it. What is no text is shown by its bytes.
void show(const std::string& label, const std::string& value, bool isHex) {
    if (isHex || !isText(value)) {
        say((label.empty() ? "" : label + "\n") + hexRows(value));
    } else {
        say((label.empty() ? "" : label + " ") + value + "\n");
    }
}

void carryOut(const Order& order, const std::string& file) {
    const std::string prefix = order.tellsFile ? file + ": " : "";
    const auto remove = [&](const std::string& name) {
        if (::removexattr(file.c_str(), name.c_str()) == 0) return;
        // Of all that lies below a folder, most never had it.
        if (errno != ENODATA || !order.isDeep) throw refused(file, name, errno);
    };
    switch (order.task) {
        case Task::list:
            for (const std::string& name : namesOn(file)) {
                const std::string shown = prefix + name.substr(nameSpace.size());
                if (order.isLong) {
                    show(shown + ":", valueOf(file, name), order.isHex);
                } else {
                    say(shown + "\n");
                }
            }
            return;
        case Task::print: {
            const std::string label = order.isLong     ? prefix + order.name.substr(nameSpace.size()) + ":"
                                      : prefix.empty() ? ""
                                                       : file + ":";
            show(label, valueOf(file, order.name), order.isHex);
            return;
        }
        case Task::write:
            if (::setxattr(file.c_str(), order.name.c_str(), order.value.data(), order.value.size(), 0) != 0)
                throw refused(file, order.name, errno);
            return;
        case Task::remove:
            remove(order.name);
            return;
        case Task::clear:
            for (const std::string& name : namesOn(file)) remove(name);
            return;
    }
}

// The files, and with `isDeep` all that lies below them; links are not followed and carry no attributes of their own.
std::vector<std::string> withAllBelow(const std::vector<std::string>& files, bool isDeep) {
    std::vector<std::string> all;
    for (const std::string& file : files) {
        all.push_back(file);
        std::error_code error;
        if (!isDeep || !fs::is_directory(fs::symlink_status(file, error))) continue;
        fs::recursive_directory_iterator at(file, fs::directory_options::skip_permission_denied, error), end;
        for (; !error && at != end; at.increment(error))
            if (!at->is_symlink(error)) all.push_back(at->path().string());
    }
    return all;
}

int attributes(const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words, attributeOptions, Operands::endOptions);
    if (line.has("-h") || line.has("--help")) {
        say(std::string(attributeHelp));
        return 0;
    }
    Order order{
        .isLong = line.has("-l"), .isHex = line.has("-x"), .tellsFile = line.has("-v"), .isDeep = line.has("-r")};
    std::size_t wordsBefore = 0;
    int tasks = 0;
    for (const TaskRow& row : taskRows) {
        if (!line.has(row.option)) continue;
        order.task = row.task;
        wordsBefore = row.words;
        ++tasks;
    }
    if (tasks > 1) throw ToolFailure{"only one of -p, -w, -d and -c", statusWrongUsage};
    if (line.operands.size() <= wordsBefore)
        throw ToolFailure{"something is missing in that command (see xattr --help)", statusWrongUsage};
    if (wordsBefore > 0) order.name = systemName(line.operands[0]);
    if (wordsBefore > 1) order.value = order.isHex ? bytesOfHex(line.operands[1]) : line.operands[1];
    const std::vector<std::string> given(line.operands.begin() + static_cast<std::ptrdiff_t>(wordsBefore),
                                         line.operands.end());
    const std::vector<std::string> files = withAllBelow(given, order.isDeep);
    if (files.size() > 1) order.tellsFile = true;
    int status = 0;
    for (const std::string& file : files) {
        try {
            carryOut(order, file);
        } catch (const ToolFailure& failure) {
            complain("xattr", failure.sentence);
            status = failure.status;
        }
    }
    return status;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("xattr", count, words, brindlet::tools::attributes);
}
