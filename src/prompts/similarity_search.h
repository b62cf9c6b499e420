// Finds the catalogue's categories for a request: the index's likeness, weighed by what the catalogue says of each
// category and by the types of the selected files.
//
//     PromptSimilaritySearch search;
//     search.buildIndex();
//     search.similarCategories("convert to png", {FilePath("/w/a.jpg")}, 6).front().category->id
#pragma once

#include <string_view>
#include <vector>

#include "platform/file_path.h"
#include "prompts/catalogue.h"
#include "prompts/prompt_index.h"

namespace brindlet {

class PromptSimilaritySearch {
  public:
    struct SearchResult {
        const PromptSimilarityCategory* category = nullptr;
        float score = 0;
    };

    // Over the index that the program shares, or over one of its own for a test.
    explicit PromptSimilaritySearch(PromptIndex& index = PromptIndex::shared()) : index_(index) {}

    static const std::vector<PromptSimilarityCategory>& categories() { return catalogueCategories(); }

    // Fills the index with what the templates of all categories give by chance. Once, before the first search; returns
    // the sentence that says how long it took. Throws CatalogueError.
    std::string buildIndex();

    // The best `count` categories, the highest first.
    std::vector<SearchResult> similarCategories(std::string_view prompt, const std::vector<FilePath>& files,
                                                long count) const;

  private:
    PromptIndex& index_;
};

}  // namespace brindlet
