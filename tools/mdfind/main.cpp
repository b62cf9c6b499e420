// mdfind finds files and folders by name, text, type, size and time. There is no index: it looks through the folders,
// hidden ones left out, of the home folder and the mounted media, or below the one that -onlyin names.
//
//     mdfind -onlyin . 'kMDItemFSName == *.pdf && kMDItemTextContent == "*apple*"c'
//
// Exit codes: 0 done, 1 a folder is missing or the time was over, 64 wrong usage, 69 an engine for texts is missing.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <set>

#include <fmt/format.h>

#include "candidate.h"
#include "platform/environment.h"
#include "query.h"
#include "shared/command_line.h"
#include "shared/tool.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;
using SearchClock = std::chrono::steady_clock;

constexpr OptionRow findOptions[] = {{"-onlyin", true}, {"-name", true}, {"-count"}, {"-0"}};

constexpr std::chrono::seconds longestSearch{60};
constexpr std::string_view mediaFolders[] = {"/media", "/run/media", "/mnt"};
// What lies there is made up by the kernel.
constexpr std::string_view kernelFolders[] = {"/proc", "/sys", "/dev", "/run"};

struct Found {
    std::size_t count = 0;
    bool isWhole = true;
};

// The current folder as the shell names it, which a link may be part of.
fs::path currentFolder() {
    const char* const named = std::getenv("PWD");
    struct stat here {
    }, there{};
    if (named && *named == '/' && ::stat(".", &here) == 0 && ::stat(named, &there) == 0 &&
        here.st_dev == there.st_dev && here.st_ino == there.st_ino)
        return named;
    return fs::current_path();
}

fs::path searchedFolder(const std::string& named) {
    fs::path folder = (currentFolder() / named).lexically_normal();
    if (!folder.has_filename() && folder.has_relative_path()) folder = folder.parent_path();
    std::error_code error;
    if (!fs::is_directory(folder, error)) throw ToolFailure{"'" + named + "' is no folder"};
    return folder;
}

std::vector<fs::path> wholeMachine() {
    std::vector<fs::path> folders{homeFolder().text()};
    std::error_code error;
    for (const std::string_view folder : mediaFolders)
        if (fs::is_directory(folder, error)) folders.emplace_back(folder);
    return folders;
}

class Search {
  public:
    Search(const Query& query, std::function<void(const Candidate&)> tell)
        : query_(query), tell_(std::move(tell)), deadline_(SearchClock::now() + longestSearch) {}

    // All below the folder, each folder's items by name.
    void lookBelow(const fs::path& top) {
        std::vector<fs::path> open{top};
        while (!open.empty() && found_.isWhole) {
            const fs::path folder = std::move(open.back());
            open.pop_back();
            std::vector<fs::path> below;
            for (const fs::directory_entry& entry : itemsOf(folder)) {
                if (SearchClock::now() > deadline_) {
                    found_.isWhole = false;
                    return;
                }
                std::error_code error;
                const bool isFolder = fs::is_directory(entry.symlink_status(error));
                lookAt(entry.path(), isFolder);
                if (isFolder) below.push_back(entry.path());
            }
            open.insert(open.end(), below.rbegin(), below.rend());
        }
    }

    const Found& found() const { return found_; }
    const std::optional<ToolFailure>& missingEngine() const { return reader_.missingEngine(); }

  private:
    static std::vector<fs::directory_entry> itemsOf(const fs::path& folder) {
        std::vector<fs::directory_entry> items;
        std::error_code error;
        for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
            const fs::path& path = at->path();
            if (path.filename().string().starts_with('.')) continue;
            const auto isPath = [&](std::string_view kernel) { return path == kernel; };
            if (std::any_of(std::begin(kernelFolders), std::end(kernelFolders), isPath)) continue;
            items.push_back(*at);
        }
        std::sort(items.begin(), items.end());
        return items;
    }

    void lookAt(const fs::path& path, bool isFolder) {
        Candidate candidate(path, isFolder, reader_);
        if (!query_.matches(candidate) || !matched_.insert(path).second) return;
        ++found_.count;
        tell_(candidate);
    }

    const Query& query_;
    std::function<void(const Candidate&)> tell_;
    SearchClock::time_point deadline_;
    TextReader reader_;
    std::set<fs::path> matched_;  // one of the folders may lie in another
    Found found_;
};

Query queryOf(const CommandLine& line) {
    std::optional<Query> query;
    if (!line.operands.empty()) query = Query::parse(joined(line.operands, " "), std::time(nullptr));
    for (const std::string& name : line.values("-name"))
        query = query ? Query::both(Query::nameHolds(name), std::move(*query)) : Query::nameHolds(name);
    if (!query)
        throw ToolFailure{"what is to be found? (mdfind [-onlyin FOLDER] [-name NAME] QUERY)", statusWrongUsage};
    return std::move(*query);
}

int find(const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words, findOptions);
    const Query query = queryOf(line);
    std::vector<fs::path> folders;
    for (const std::string& named : line.values("-onlyin")) folders.push_back(searchedFolder(named));
    if (folders.empty()) folders = wholeMachine();
    std::sort(folders.begin(), folders.end());
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());

    const bool counts = line.has("-count");
    const char end = line.has("-0") ? '\0' : '\n';
    Search search(query, [&](const Candidate& candidate) {
        if (counts) return;
        const std::string text = candidate.path() + end;
        std::fwrite(text.data(), 1, text.size(), stdout);
    });
    for (const fs::path& folder : folders) search.lookBelow(folder);
    if (counts) fmt::print("{}\n", search.found().count);
    if (!search.found().isWhole)
        throw ToolFailure{fmt::format("not everything was looked at in {} seconds; search a smaller folder by -onlyin",
                                      longestSearch.count())};
    if (search.missingEngine()) throw *search.missingEngine();
    return 0;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("mdfind", count, words, brindlet::tools::find);
}
