// Predictions written down as texts, for tests of what is made of them.
//
//     resultOf({"create /w/a", "move /w/b /w/c"})
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/analysis_result.h"
#include "text/strings.h"

namespace brindlet {

// The type's name, of a move the source, and the path affected.
inline PredictedChange changeOf(std::string_view description) {
    using Type = FileChange::FileChangeType;
    const auto words = split(description, " ");
    for (const Type type : {Type::create, Type::modify, Type::move, Type::delete_, Type::overwrite}) {
        if (caseName(type) != words.front()) continue;
        FileChange change{type, FilePath(words.back()), {}};
        if (words.size() == 3) change.sourceURL = FilePath(words[1]);
        return {change, false};
    }
    throw std::invalid_argument("no change: " + std::string(description));
}

inline AnalysisResult resultOf(const std::vector<std::string>& changes, std::vector<SideEffect> sideEffects = {},
                               std::vector<CommandError> errors = {}) {
    AnalysisResult result;
    for (const std::string& change : changes) result.changes.push_back(changeOf(change));
    result.sideEffects = std::move(sideEffects);
    result.commandErrors = std::move(errors);
    return result;
}

}  // namespace brindlet
