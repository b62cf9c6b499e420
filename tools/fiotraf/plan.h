// Which files go into which folders: found by looking, changing nothing.
//
//     auto plan = makePlan(options);
//     if (auto* failure = std::get_if<Failure>(&plan)) ...
#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "options.h"

namespace fiotraf {

struct Category {
    std::string folder;              // its name in the organized folder; nothing but a folder stands there
    std::vector<std::string> files;  // their names, in the order of the alphabet
    std::vector<std::string> taken;  // names that stand in the category's folder already: these files get others

    std::size_t fileCount() const { return files.size() + taken.size(); }
};

struct Plan {
    std::vector<Category> categories;  // in the order of the alphabet, none empty
    // Files with names that no line can show as they are, so that nobody could agree to what happens to them.
    std::size_t leftAlone = 0;

    std::size_t fileCount() const;
};

// A sentence for the user.
struct Failure {
    std::string sentence;
};

// Plain files only: no folders, no links, nothing hidden.
std::variant<Plan, Failure> makePlan(const Options& options);

// Whether a line of a plan can show the name: the line would be read as this entry and nothing else.
bool isShowable(const std::string& name);

}  // namespace fiotraf
