// What a line asks of fiotraf.
//
//     fiotraf organize ~/Downloads --by-date --min-size 10MB --execute
#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace fiotraf {

enum class Grouping { byType, byDate, byExtension };

// A file is organized if it passes all that are set.
struct Filters {
    std::optional<std::uint64_t> minBytes, maxBytes;
    std::optional<std::time_t> after, before;  // changed at `after` or later, and earlier than `before`
    // Parts of the name, in any case.
    std::string startsWith, endsWith, contains;
    std::string mime;  // "image/png", or "image" or "image/*" for all images
};

struct Options {
    std::string folder;
    Grouping grouping = Grouping::byType;
    bool copies = false;    // the files stay where they are, and copies are organized
    bool executes = false;  // else the plan is only printed
    Filters filters;
};

struct HelpWanted {};

// Wrong usage, in one sentence.
struct WrongUsage {
    std::string sentence;
};

// The words behind the program's name.
std::variant<Options, HelpWanted, WrongUsage> readOptions(const std::vector<std::string>& words);

std::string_view helpText();

}  // namespace fiotraf
