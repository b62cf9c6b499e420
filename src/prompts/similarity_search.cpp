#include "prompts/similarity_search.h"

#include <algorithm>
#include <chrono>
#include <set>

#include <fmt/format.h>

#include "platform/log.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::size_t totalExampleBudget = 20'000;
constexpr long candidatesPerResult = 2;
constexpr float noTypeOverlap = 0.3F;
constexpr float noTypesAtAll = 0.95F;

using Types = std::set<std::string, std::less<>>;

Types typesOf(const std::vector<FilePath>& files) {
    Types types;
    for (const FilePath& file : files)
        if (std::string type = lowercased(pathExtension(file.text())); !type.empty()) types.insert(std::move(type));
    return types;
}

float typeFactor(const Types& selected, const PromptSimilarityCategory& category) {
    if (selected.empty()) return category.fileFormats.empty() ? noTypesAtAll : noTypeOverlap;
    if (category.fileFormats.empty()) return 1;
    const bool doesOverlap = std::any_of(category.fileFormats.begin(), category.fileFormats.end(),
                                         [&](std::string_view format) { return selected.contains(format); });
    return doesOverlap ? 1 : noTypeOverlap;
}

// At most one term counts.
float termFactor(std::string_view lowerPrompt, const PromptSimilarityCategory& category) {
    for (const auto& [term, weight] : category.biasTerms)
        if (contains(lowerPrompt, lowercased(term))) return weight;
    return 1;
}

}  // namespace

std::string PromptSimilaritySearch::buildIndex() {
    const auto start = std::chrono::steady_clock::now();
    const auto& all = categories();
    const std::size_t budget = all.empty() ? 0 : totalExampleBudget / all.size();
    index_.reserve(totalExampleBudget);
    for (const PromptSimilarityCategory& category : all)
        for (const std::string& text : PromptGenerator::generatePrompts(category.prompts, category.variants, budget))
            index_.add(category.id, text);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return fmt::format("Time taken to generate and index {} examples: {} seconds", index_.size(), elapsed.count());
}

std::vector<PromptSimilaritySearch::SearchResult> PromptSimilaritySearch::similarCategories(
    std::string_view prompt, const std::vector<FilePath>& files, long count) const {
    const Types selected = typesOf(files);
    const std::string lowerPrompt = lowercased(prompt);
    std::vector<SearchResult> results;
    for (const auto& [item, rawScore] : index_.search(prompt, candidatesPerResult * count)) {
        const PromptSimilarityCategory* category = categoryWithId(item.id);
        if (category == nullptr) continue;
        float score = rawScore * category->bias;
        score *= termFactor(lowerPrompt, *category);
        score *= typeFactor(selected, *category);
        results.push_back({category, score});
    }
    std::stable_sort(results.begin(), results.end(),
                     [](const SearchResult& a, const SearchResult& b) { return a.score > b.score; });
    if (results.size() > static_cast<std::size_t>(std::max(count, 0L))) results.resize(static_cast<std::size_t>(count));
    std::string entry = "Similar category search results:\n";
    for (const auto& [category, score] : results) entry += fmt::format(" - {} (score={})\n", category->id, score);
    logInfo(entry);
    return results;
}

}  // namespace brindlet
