// Which stored requests look most like this one? Texts become hashed bags of their 1, 2 and 3 character pieces;
// likeness is the cosine of two such bags. One pass over all of them, without a model.
//
//     PromptIndex index;
//     index.add("archive", "zip these up");
//     index.search("zip this", 3).front().score   // 0.5 is nothing in common, 1 the same
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet {

class PromptIndex {
  public:
    static constexpr std::size_t vectorLength = 128;

    struct IndexItem {
        std::string id;
        std::string text;
        std::vector<float> vector;  // of unit length; all zeros for an empty text
    };
    struct ScoredItem {
        IndexItem item;
        float score = 0;
    };

    // The index that the program shares, empty at first.
    static PromptIndex& shared();

    static std::vector<float> vectorize(std::string_view text);

    // Room for that many texts at once.
    void reserve(std::size_t count);
    void add(std::string_view id, std::string_view text);
    std::size_t size() const { return items_.size(); }
    IndexItem item(std::size_t at) const;

    // The best items, at most one an id, the highest score first; of equal ones, the one added earlier.
    std::vector<ScoredItem> search(std::string_view query, long limit) const;

  private:
    // How often pieces fell into each bucket. Kept as bytes, an index of twenty thousand texts fits a processor's
    // cache; the lengths that make cosines of them stand apart.
    using Counts = std::array<std::uint8_t, vectorLength>;
    struct Item {
        std::uint32_t id = 0;  // a place in ids_
        std::string text;
    };
    struct Hit {
        std::size_t at = 0;
        float score = 0;
    };

    void offer(std::vector<Hit>& hits, Hit hit, std::size_t limit) const;

    std::vector<std::string> ids_;
    std::map<std::string, std::uint32_t, std::less<>> places_;
    std::vector<Item> items_;
    std::vector<Counts> counts_;
    std::uint8_t largestCount_ = 0;
    std::vector<float> inverseLengths_;
    // Texts with more pieces in a bucket than a byte counts, by their place.
    std::map<std::size_t, std::vector<float>> longTexts_;
};

}  // namespace brindlet
