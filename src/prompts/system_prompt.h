// What a model is told before the request itself: what is selected, worked examples of requests like this one, and the
// rules, with the tools that it may use. Neither the folder's path nor anything in the files is part of it.
//
//     composeSystemPrompt("make this 300px wide", ModelPace::normal, {FilePath("/w/photo.jpg")}, sources)
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/file_path.h"
#include "platform/file_system.h"
#include "prompts/similarity_search.h"

namespace brindlet {

// Small models of a user's own get fewer examples.
enum class ModelPace { normal, fast };

struct PromptSources {
    const PromptSimilaritySearch& search;
    FileSystem& files;
    std::vector<std::string> installedCommands;  // of tools that the user installed through the system
};

// How many categories the search is asked for, which is also how many examples there are at most.
long categoryLimit(ModelPace pace);

std::string composeSystemPrompt(std::string_view prompt, ModelPace pace, const std::vector<FilePath>& files,
                                const PromptSources& sources);
// The same for categories that were found already.
std::string composeSystemPrompt(std::string_view prompt, ModelPace pace, const std::vector<FilePath>& files,
                                const PromptSources& sources,
                                const std::vector<PromptSimilaritySearch::SearchResult>& categories);

}  // namespace brindlet
