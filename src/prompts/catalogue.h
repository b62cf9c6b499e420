// What people ask of a file manager and which line of bash answers it: the categories of requests, each with its
// phrasings, its worked examples and what a model has to be told besides.
//
//     categoryWithId("archive")->outputExamples.front().expectedCommand   // "zip -r archive.zip $SPACE_..."
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "prompts/prompt_template.h"

namespace brindlet {

// For which selections an example is shown.
enum class SingleMultiple { none, single, multiple, singleOrMultiple, singleMultipleOrNone };
bool fitsSelection(SingleMultiple kind, std::size_t fileCount);

struct PromptSimilarityOutputExample {
    std::string_view prompt;
    std::string_view expectedCommand;
    SingleMultiple singleMultiple = SingleMultiple::singleOrMultiple;
};

struct ExtraRuleContext {
    std::vector<std::string> fileExtensions;  // one a file, as its path gives it, "" where it has none
    std::size_t fileCount = 0;
    std::string prompt;
};

struct ExtraRule {
    std::string_view rule;
    bool (*when)(const ExtraRuleContext&) = nullptr;  // always where there is none
};

// Fields in the order in which the rows give them; a row leaves out what it has no use for.
struct PromptSimilarityCategory {
    std::string_view id;
    WordList prompts{};   // templates, the most typical first
    Variants variants{};  // the word lists that they name
    // The first that occurs in a request multiplies its score.
    std::vector<std::pair<std::string_view, float>> biasTerms{};
    WordList fileFormats{};  // lowercase; none means any file or no file
    float bias = 1;
    std::map<std::string_view, std::string_view> metadata{};  // "tools": names with single spaces between
    std::vector<PromptSimilarityOutputExample> outputExamples{};
    std::vector<ExtraRule> extraRules{};
};

// In catalogue order, built at the first call and then fixed.
const std::vector<PromptSimilarityCategory>& catalogueCategories();
// nullptr where no category has this id.
const PromptSimilarityCategory* categoryWithId(std::string_view id);

}  // namespace brindlet
