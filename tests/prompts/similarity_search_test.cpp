#include "prompts/similarity_search.h"

#include <gtest/gtest.h>

#include "search_cases.h"
#include "text/strings.h"

namespace brindlet {
namespace similarity_search_tests {

std::vector<FilePath> paths(std::string_view names) {
    std::vector<FilePath> result;
    for (const std::string& name : splitNonEmpty(names, " ")) result.push_back(FilePath("/w").child(name));
    return result;
}

std::vector<std::string_view> found(const PromptSimilaritySearch& search, const SearchCase& wanted) {
    std::vector<std::string_view> ids;
    for (const auto& result : search.similarCategories(wanted.request, paths(wanted.files), 6))
        ids.push_back(result.category->id);
    return ids;
}

// The index differs from launch to launch, so that a few cases may fall out in any of them.
TEST(SimilaritySearch, FindsWhatPeopleMean) {
    constexpr int builds = 5;
    constexpr double leastFound = 0.95, leastFirst = 0.80;
    for (int build = 0; build < builds; ++build) {
        PromptIndex index;
        PromptSimilaritySearch search(index);
        search.buildIndex();
        int cases = 0, hits = 0, firsts = 0, firstHits = 0;
        std::string missed;
        for (const SearchCase& wanted : searchCases) {
            const auto ids = found(search, wanted);
            const auto accepted = split(wanted.category, "|");
            const auto isAccepted = [&](std::string_view id) {
                return std::find(accepted.begin(), accepted.end(), id) != accepted.end();
            };
            ++cases;
            if (std::any_of(ids.begin(), ids.end(), isAccepted))
                ++hits;
            else
                missed += "\n  " + std::string(wanted.request);
            if (!wanted.isFirst) continue;
            ++firsts;
            firstHits += !ids.empty() && isAccepted(ids.front()) ? 1 : 0;
        }
        EXPECT_GE(hits, leastFound * cases) << "not among the six:" << missed;
        EXPECT_GE(firstHits, leastFirst * firsts);
        EXPECT_GE(firsts * 3, cases);
    }
}

TEST(SimilaritySearch, TypesAndTerms) {
    PromptIndex index;
    PromptSimilaritySearch search(index);
    index.add("imagemagick_rotate_flip", "rotate and flip");
    index.add("rename", "rotate and flip");
    index.add("sysctlInfo", "program");
    const auto scoreOf = [&](std::string_view prompt, std::string_view files, std::string_view id) {
        for (const auto& [category, score] : search.similarCategories(prompt, paths(files), 20))
            if (category->id == id) return score;
        return -1.0F;
    };
    EXPECT_NEAR(scoreOf("ROTATE and flip", "a.PNG b.txt", "imagemagick_rotate_flip"), 1.1F, 1e-6);  // one term, not two
    EXPECT_NEAR(scoreOf("rotate and flip", "a.pdf", "imagemagick_rotate_flip"), 1.1F * 0.3F, 1e-6);
    EXPECT_NEAR(scoreOf("rotate and flip", "", "imagemagick_rotate_flip"), 1.1F * 0.3F, 1e-6);
    EXPECT_NEAR(scoreOf("rotate and flip", "Makefile .bashrc", "rename"), 0.95F, 1e-6);  // no types at all
    EXPECT_NEAR(scoreOf("rotate and flip", "a.pdf", "rename"), 1, 1e-6);
    EXPECT_NEAR(scoreOf("program", "a.pdf", "sysctlInfo"), 1.1F, 1e-6);  // "ram" in "program"
    EXPECT_EQ(search.similarCategories("x", {}, 50).size(), 3u);
    EXPECT_TRUE(search.similarCategories("x", {}, 0).empty());
}

}  // namespace similarity_search_tests
}  // namespace brindlet
