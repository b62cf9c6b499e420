#include "report.h"

#include <algorithm>

#include <fmt/format.h>

namespace fiotraf {

namespace {

constexpr std::size_t mostEntries = 10;

std::string counted(std::size_t count, std::string_view thing) {
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

// An entry says that a file keeps its name. One that can't is among the rest, which is only counted: whoever reads the
// lines would else take it for replacing what has the name.
std::string listing(const Category& category) {
    std::string text = fmt::format("{} ({})\n", category.folder, counted(category.fileCount(), "file"));
    const std::size_t shown = std::min(mostEntries, category.files.size());
    for (std::size_t at = 0; at < shown; ++at) text += fmt::format("  → {}\n", category.files[at]);
    const std::size_t rest = category.fileCount() - shown;
    if (rest > 0) text += fmt::format("  → … and {} more\n", rest);
    return text + "\n";
}

std::size_t takenCount(const Plan& plan) {
    std::size_t count = 0;
    for (const auto& category : plan.categories) count += category.taken.size();
    return count;
}

}  // namespace

std::string describe(const Plan& plan, const Options& options) {
    std::string text;
    for (const auto& category : plan.categories) text += listing(category);
    if (const std::size_t taken = takenCount(plan); taken > 0)
        text += fmt::format("Gets a number behind its name, which is taken: {}.\n", counted(taken, "file"));
    if (plan.leftAlone > 0)
        text += fmt::format("Left alone, since a line can't show the name as it is: {}.\n",
                            counted(plan.leftAlone, "file"));
    if (plan.categories.empty()) return text + "Nothing to organize.\n";
    if (!options.executes)
        text += fmt::format("Nothing is changed yet: --execute {} {} into {}.\n", options.copies ? "copies" : "moves",
                            counted(plan.fileCount(), "file"), counted(plan.categories.size(), "folder"));
    return text;
}

std::string describe(const Outcome& outcome, const Options& options) {
    return fmt::format("{} {} into {}.\n", options.copies ? "Copied" : "Moved", counted(outcome.placed, "file"),
                       counted(outcome.folders, "folder"));
}

}  // namespace fiotraf
