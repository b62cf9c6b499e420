#include "prompts/prompt_index.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>

namespace brindlet {
namespace prompt_index_tests {

// The search as it is defined, item by item in 32-bit floats.
std::vector<std::pair<std::string, float>> slowSearch(const PromptIndex& index, std::string_view query,
                                                      std::size_t limit) {
    const auto wanted = PromptIndex::vectorize(query);
    std::vector<std::pair<std::string, float>> best;
    for (std::size_t at = 0; at < index.size(); ++at) {
        const auto item = index.item(at);
        const float dot = std::inner_product(wanted.begin(), wanted.end(), item.vector.begin(), 0.0F);
        const float score = (dot + 1) * 0.5F;
        const auto known =
            std::find_if(best.begin(), best.end(), [&](const auto& hit) { return hit.first == item.id; });
        if (known == best.end())
            best.emplace_back(item.id, score);
        else
            known->second = std::max(known->second, score);
    }
    std::stable_sort(best.begin(), best.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    if (best.size() > limit) best.resize(limit);
    return best;
}

TEST(PromptIndex, Vectors) {
    const auto sum = [](const std::vector<float>& vector) {
        return std::inner_product(vector.begin(), vector.end(), vector.begin(), 0.0F);
    };
    for (const char* text : {"a", "zip these up", "é", "日本語", "\r\n", "\xff\xfe"}) {
        ASSERT_EQ(PromptIndex::vectorize(text).size(), PromptIndex::vectorLength);
        EXPECT_NEAR(sum(PromptIndex::vectorize(text)), 1, 1e-5) << text;
    }
    EXPECT_EQ(sum(PromptIndex::vectorize("")), 0);
    EXPECT_EQ(PromptIndex::vectorize("Convert To ÉTÉ"), PromptIndex::vectorize("convert to été"));
    // One piece of one character, and nothing longer.
    const auto one = PromptIndex::vectorize("x");
    EXPECT_EQ(std::count(one.begin(), one.end(), 1.0F), 1);
}

TEST(PromptIndex, OneHitAnIdAndEarlierFirst) {
    PromptIndex index;
    index.add("a", "zip these");
    index.add("b", "zip these");
    index.add("c", "open the window");
    index.add("a", "zip these up now");
    const auto hits = index.search("ZIP these", 5);
    ASSERT_EQ(hits.size(), 3u);
    EXPECT_EQ(hits[0].item.id, "a");
    EXPECT_EQ(hits[1].item.id, "b");
    EXPECT_EQ(hits[0].score, hits[1].score);
    EXPECT_NEAR(hits[0].score, 1, 1e-6);
    EXPECT_EQ(index.search("zip these up now", 1).front().item.text, "zip these up now");
    EXPECT_TRUE(index.search("zip", 0).empty());
    EXPECT_TRUE(index.search("zip", -1).empty());

    const auto nothing = index.search("", 2);
    ASSERT_EQ(nothing.size(), 2u);
    EXPECT_EQ(nothing[0].item.id, "a");
    EXPECT_EQ(nothing[0].score, 0.5F);
}

TEST(PromptIndex, FindsWhatTheSlowSearchFinds) {
    std::mt19937 random(7);
    const auto text = [&](std::size_t length) {
        std::string result;
        for (std::size_t at = 0; at < length; ++at) result += "abcd é日"[random() % 5];
        return result;
    };
    PromptIndex index;
    for (int count = 0; count < 600; ++count) index.add("id" + std::to_string(random() % 40), text(random() % 12));
    index.add("long", std::string(5000, 'a'));  // more of one piece than a byte counts
    for (const std::size_t length : {0, 1, 3, 8, 20, 3000, 200'000}) {
        const std::string query = length < 100 ? text(length) : std::string(length, 'a');
        const auto expected = slowSearch(index, query, 12);
        const auto hits = index.search(query, 12);
        ASSERT_EQ(hits.size(), expected.size()) << length;
        for (std::size_t at = 0; at < hits.size(); ++at)
            EXPECT_NEAR(hits[at].score, expected[at].second, 1e-6) << length;
    }
}

}  // namespace prompt_index_tests
}  // namespace brindlet
