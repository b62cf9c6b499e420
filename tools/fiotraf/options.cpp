#include "options.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include <fmt/format.h>

#include "text/characters.h"
#include "text/regex.h"

namespace fiotraf {

namespace {

using brindlet::Regex;

// --- values ---

struct Unit {
    std::string_view name;  // in lower case
    double bytes;
};

// Thousands, as file managers count; the units of programmers have an "i".
constexpr Unit units[] = {
    {"", 1},
    {"b", 1},
    {"k", 1e3},
    {"kb", 1e3},
    {"m", 1e6},
    {"mb", 1e6},
    {"g", 1e9},
    {"gb", 1e9},
    {"t", 1e12},
    {"tb", 1e12},
    {"kib", 1024},
    {"mib", 1048576},
    {"gib", 1073741824.0},
    {"tib", 1099511627776.0},
};

std::optional<std::uint64_t> readSize(const std::string& text) {
    static const Regex form(R"(^(\d{1,15}(?:\.\d{1,9})?)\s*([A-Za-z]*)$)");
    const auto match = form.find(text);
    if (!match) return std::nullopt;
    const std::string unit = brindlet::lowercased(*match->group(2));
    const auto row = std::find_if(std::begin(units), std::end(units), [&](const Unit& u) { return u.name == unit; });
    if (row == std::end(units)) return std::nullopt;
    const double bytes = std::stod(std::string(*match->group(1))) * row->bytes;
    if (bytes > 1e18) return std::nullopt;
    return static_cast<std::uint64_t>(std::llround(bytes));
}

// The begin of a year, month or day in local time; none for a day that is in no calendar.
std::optional<std::time_t> readDate(const std::string& text) {
    static const Regex form(R"(^(\d{4})(?:-(\d\d))?(?:-(\d\d))?$)");
    const auto match = form.find(text);
    if (!match) return std::nullopt;
    const auto number = [&](std::size_t group, int otherwise) {
        const auto digits = match->group(group);
        return digits ? std::stoi(std::string(*digits)) : otherwise;
    };
    std::tm date{};
    date.tm_year = number(1, 0) - 1900;
    date.tm_mon = number(2, 1) - 1;
    date.tm_mday = number(3, 1);
    date.tm_isdst = -1;
    const std::tm asWritten = date;
    const std::time_t time = std::mktime(&date);
    const bool isReal =
        date.tm_year == asWritten.tm_year && date.tm_mon == asWritten.tm_mon && date.tm_mday == asWritten.tm_mday;
    if (!isReal) return std::nullopt;
    return time;
}

// --- options ---

constexpr const char* sizeWanted = "a size such as 500KB or 1.5GB";
constexpr const char* dateWanted = "a date such as 2024-05-31, 2024-05 or 2024";
constexpr const char* textWanted = "a text";

struct Filter {
    std::string_view option;
    const char* wanted;
    bool (*set)(Filters& filters, const std::string& value);
};

template <auto member>
bool setSize(Filters& filters, const std::string& value) {
    return (filters.*member = readSize(value)).has_value();
}
template <auto member>
bool setDate(Filters& filters, const std::string& value) {
    return (filters.*member = readDate(value)).has_value();
}
// What doesn't matter is the case.
template <auto member>
bool setText(Filters& filters, const std::string& value) {
    filters.*member = brindlet::lowercased(value);
    return !value.empty();
}

constexpr Filter filterOptions[] = {
    {"--min-size", sizeWanted, setSize<&Filters::minBytes>},
    {"--max-size", sizeWanted, setSize<&Filters::maxBytes>},
    {"--after", dateWanted, setDate<&Filters::after>},
    {"--before", dateWanted, setDate<&Filters::before>},
    {"--startswith", textWanted, setText<&Filters::startsWith>},
    {"--endswith", textWanted, setText<&Filters::endsWith>},
    {"--contains", textWanted, setText<&Filters::contains>},
    {"--mime", "a type such as image/png or image", setText<&Filters::mime>},
};

const Filter* filterOf(std::string_view option) {
    const auto row = std::find_if(std::begin(filterOptions), std::end(filterOptions),
                                  [&](const Filter& filter) { return filter.option == option; });
    return row == std::end(filterOptions) ? nullptr : row;
}

class Reader {
  public:
    explicit Reader(const std::vector<std::string>& words) : words_(words) {}

    std::variant<Options, HelpWanted, WrongUsage> read() {
        for (; at_ < words_.size(); ++at_)
            if (auto wrong = takeWord(words_[at_])) return *wrong;
        if (wantsHelp_) return HelpWanted{};
        if (byDate_ && byExtension_) return WrongUsage{"choose one of --by-date and --by-extension"};
        if (operands_.empty()) return WrongUsage{"name the folder to organize, such as 'fiotraf organize .'"};
        if (operands_.size() > 1)
            return WrongUsage{fmt::format("one folder at a time, and '{}' is one too many", operands_[1])};
        options_.folder = operands_.front();
        if (byDate_) options_.grouping = Grouping::byDate;
        if (byExtension_) options_.grouping = Grouping::byExtension;
        return options_;
    }

  private:
    std::optional<WrongUsage> takeWord(const std::string& word) {
        if (hasOptionsEnded_ || !word.starts_with('-') || word == "-")
            operands_.push_back(word);
        else if (word == "--")
            hasOptionsEnded_ = true;
        else if (word == "--by-date")
            byDate_ = true;
        else if (word == "--by-extension")
            byExtension_ = true;
        else if (word == "--copy")
            options_.copies = true;
        else if (word == "--execute")
            options_.executes = true;
        else if (word == "--help" || word == "-h")
            wantsHelp_ = true;
        else
            return takeFilter(word);
        return std::nullopt;
    }

    std::optional<WrongUsage> takeFilter(const std::string& word) {
        const std::size_t equals = word.find('=');
        const std::string option = word.substr(0, equals);
        const Filter* filter = filterOf(option);
        if (!filter) return WrongUsage{fmt::format("there is no option '{}'; 'fiotraf --help' lists them", option)};
        std::string value;
        if (equals != std::string::npos)
            value = word.substr(equals + 1);
        else if (at_ + 1 < words_.size() && !words_[at_ + 1].starts_with("--"))
            value = words_[++at_];
        else
            return WrongUsage{fmt::format("{} needs {} behind it", option, filter->wanted)};
        if (filter->set(options_.filters, value)) return std::nullopt;
        return WrongUsage{fmt::format("'{}' is not {}, which {} needs", value, filter->wanted, option)};
    }

    const std::vector<std::string>& words_;
    std::size_t at_ = 0;
    Options options_;
    std::vector<std::string> operands_;
    bool hasOptionsEnded_ = false;
    bool byDate_ = false;
    bool byExtension_ = false;
    bool wantsHelp_ = false;
};

}  // namespace

std::variant<Options, HelpWanted, WrongUsage> readOptions(const std::vector<std::string>& words) {
    if (words.empty() || words.front() == "--help" || words.front() == "-h" || words.front() == "help")
        return HelpWanted{};
    if (words.front() != "organize")
        return WrongUsage{fmt::format("'{}' is nothing it does; say 'fiotraf organize FOLDER'", words.front())};
    return Reader({words.begin() + 1, words.end()}).read();
}

// No line of it may look like one of a plan.
std::string_view helpText() {
    return R"(fiotraf organize FOLDER [OPTION...]

Sorts the files of a folder into folders by type: Images, Documents, Music and so on.
Only shows what it would do until --execute is given. Never replaces a file: where a
name is taken, " 2" is put behind it. Folders, links and hidden files stay as they are.

  --by-date          one folder for each month in which files were last changed
  --by-extension     one folder for each extension
  --copy             organizes copies, and leaves the files where they are
  --execute          does it

Only files that pass all of these are organized:
  --min-size SIZE    not smaller, such as 500KB or 1.5GB
  --max-size SIZE    not larger
  --after DATE       last changed on that day or later, such as 2024-05-31, 2024-05 or 2024
  --before DATE      last changed before that day
  --startswith TEXT  name begins so, in any case
  --endswith TEXT    name ends so, extension included
  --contains TEXT    name holds it
  --mime TYPE        is of that type, such as image/png or image

Example:
  fiotraf organize ~/Downloads --min-size 10MB --execute
)";
}

}  // namespace fiotraf
