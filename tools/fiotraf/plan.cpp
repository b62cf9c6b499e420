#include "plan.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>

#include <fmt/format.h>

#include "file_types.h"
#include "text/character_properties.h"
#include "text/characters.h"
#include "text/regex.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace fiotraf {

namespace {

using brindlet::lowercased;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

// In lower case, without the point.
std::string extensionOf(const std::string& name) {
    const std::string extension = std::filesystem::path(name).extension().string();
    return extension.size() > 1 ? lowercased(extension.substr(1)) : "";
}

// --- filters ---

bool hasMime(const std::string& wanted, std::string_view mime) {
    if (wanted.find('/') == std::string::npos) return mime.starts_with(wanted + "/");
    if (wanted.ends_with("/*")) return mime.starts_with(wanted.substr(0, wanted.size() - 1));
    return mime == wanted;
}

bool passes(const Filters& filters, const std::string& name, const struct stat& status) {
    const auto bytes = static_cast<std::uint64_t>(status.st_size);
    const std::string lowered = lowercased(name);
    return (!filters.minBytes || bytes >= *filters.minBytes) && (!filters.maxBytes || bytes <= *filters.maxBytes) &&
           (!filters.after || status.st_mtime >= *filters.after) &&
           (!filters.before || status.st_mtime < *filters.before) && lowered.starts_with(filters.startsWith) &&
           lowered.ends_with(filters.endsWith) && brindlet::contains(lowered, filters.contains) &&
           (filters.mime.empty() || hasMime(filters.mime, typeOf(extensionOf(name)).mime));
}

// --- categories ---

// "2024-05", in local time.
std::string monthOf(std::time_t time) {
    std::tm date{};
    if (!::localtime_r(&time, &date)) return "Other";
    return fmt::format("{:04}-{:02}", date.tm_year + 1900, date.tm_mon + 1);
}

// A word that can be the name of a folder and is no accident of a name with a point in it.
bool isOrdinaryExtension(const std::string& extension) {
    constexpr std::size_t longest = 16;
    if (extension.empty() || brindlet::characterCount(extension) > longest) return false;
    for (std::size_t at = 0; at < extension.size();) {
        const brindlet::Scalar scalar = brindlet::decodeScalar(extension, at);
        if (!brindlet::isLetter(scalar.value) && !brindlet::isDecimalDigit(scalar.value)) return false;
        at += scalar.length;
    }
    return true;
}

std::string categoryOf(Grouping grouping, const std::string& name, const struct stat& status) {
    const std::string extension = extensionOf(name);
    if (grouping == Grouping::byDate) return monthOf(status.st_mtime);
    if (grouping == Grouping::byType) return std::string(typeOf(extension).category);
    return isOrdinaryExtension(extension) ? brindlet::uppercased(extension) : "Other";
}

bool isThere(int folder, const std::string& path) {
    struct stat status {};
    return ::fstatat(folder, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

// A link to a folder is one; a link to nothing is no folder.
bool isFreeForFolder(int folder, const std::string& name) {
    struct stat status {};
    if (::fstatat(folder, name.c_str(), &status, 0) == 0) return S_ISDIR(status.st_mode);
    return !isThere(folder, name);
}

// Where a file has the category's name already, the folder gets another.
std::string freeFolderName(int folder, const std::string& category) {
    constexpr int most = 1'000;
    std::string name = category;
    for (int number = 2; number <= most && !isFreeForFolder(folder, name); ++number)
        name = fmt::format("{} {}", category, number);
    return name;
}

void sortAsInDictionary(std::vector<std::string>& names) {
    std::vector<std::pair<std::string, std::string>> keyed;
    for (auto& name : names) keyed.emplace_back(lowercased(name), std::move(name));
    std::sort(keyed.begin(), keyed.end());
    names.clear();
    for (auto& [key, name] : keyed) names.push_back(std::move(name));
}

Category makeCategory(int folder, const std::string& name, std::vector<std::string> files) {
    Category category{freeFolderName(folder, name), {}, {}};
    sortAsInDictionary(files);
    for (auto& file : files) {
        const bool isTaken = isThere(folder, category.folder + "/" + file);
        (isTaken ? category.taken : category.files).push_back(std::move(file));
    }
    return category;
}

}  // namespace

std::size_t Plan::fileCount() const {
    std::size_t count = 0;
    for (const auto& category : categories) count += category.fileCount();
    return count;
}

bool isShowable(const std::string& name) {
    static const brindlet::Regex likeHeading(R"(\(\d+\s+files?\)$)");
    static const brindlet::Regex likeRemainder(R"(^(?:\.{3}|…)\s+and\s+\d+\s+more$)");
    if (!brindlet::isValidUtf8(name) || brindlet::trimmed(name) != name) return false;
    for (std::size_t at = 0; at < name.size();) {
        const brindlet::Scalar scalar = brindlet::decodeScalar(name, at);
        if (brindlet::isControl(scalar.value) || brindlet::isNewline(scalar.value)) return false;
        at += scalar.length;
    }
    return !likeHeading.matches(name) && !likeRemainder.matches(name);
}

std::variant<Plan, Failure> makePlan(const Options& options) {
    const OpenFolder folder(::opendir(options.folder.c_str()));
    if (!folder) return Failure{fmt::format("can't read the folder '{}': {}", options.folder, std::strerror(errno))};
    const int descriptor = ::dirfd(folder.get());

    Plan plan;
    std::map<std::string, std::vector<std::string>> filesOf;
    errno = 0;
    while (const dirent* entry = ::readdir(folder.get())) {
        const std::string name = entry->d_name;
        struct stat status {};
        const bool isFile = !name.starts_with('.') &&
                            ::fstatat(descriptor, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                            S_ISREG(status.st_mode) && passes(options.filters, name, status);
        if (isFile && isShowable(name))
            filesOf[categoryOf(options.grouping, name, status)].push_back(name);
        else if (isFile)
            ++plan.leftAlone;
        errno = 0;
    }
    if (errno != 0) return Failure{fmt::format("can't read the folder '{}': {}", options.folder, std::strerror(errno))};
    for (auto& [category, files] : filesOf) {
        plan.categories.push_back(makeCategory(descriptor, category, std::move(files)));
    }
    return plan;
}

}  // namespace fiotraf
