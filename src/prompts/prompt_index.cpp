#include "prompts/prompt_index.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

#include "prompts/count_product.h"
#include "text/characters.h"

namespace brindlet {

namespace {

using WideCounts = std::array<std::uint32_t, PromptIndex::vectorLength>;

constexpr std::size_t longestPiece = 3;  // in characters

// Multiplies and folds, eight bytes at a time; it has to spread short texts well and to be quick, no more.
std::uint64_t hashed(std::string_view piece) {
    std::uint64_t hash = 0xC0AC'29B7'C97C'50DDU ^ piece.size();
    for (std::size_t at = 0; at < piece.size(); at += sizeof hash) {
        std::uint64_t word = 0;
        std::memcpy(&word, piece.data() + at, std::min(sizeof word, piece.size() - at));
        hash = (hash ^ word) * 0xD6E8'FEB8'6659'FD93U;
        hash ^= hash >> 32;
    }
    return hash;
}

// The remainder of the absolute value of the hash, read as a signed number.
std::size_t bucketOf(std::string_view piece) {
    const std::uint64_t hash = hashed(piece);
    const std::uint64_t magnitude = hash >> 63 ? 0 - hash : hash;
    return static_cast<std::size_t>(magnitude % PromptIndex::vectorLength);
}

bool hasOneByteCharacters(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char byte) { return (byte & 0x80) != 0 || byte == '\r'; });
}

WideCounts countsOf(std::string_view text) {
    WideCounts counts{};
    const std::string lower = lowercased(text);
    if (hasOneByteCharacters(lower)) {
        const std::string_view whole = lower;
        for (std::size_t length = 1; length <= longestPiece; ++length)
            for (std::size_t at = 0; at + length <= whole.size(); ++at) ++counts[bucketOf(whole.substr(at, length))];
        return counts;
    }
    const std::vector<std::string_view> all = characters(lower);
    for (std::size_t length = 1; length <= longestPiece; ++length)
        for (std::size_t at = 0; at + length <= all.size(); ++at) {
            const std::string_view last = all[at + length - 1];
            const auto size = static_cast<std::size_t>(last.data() + last.size() - all[at].data());
            ++counts[bucketOf({all[at].data(), size})];
        }
    return counts;
}

float inverseLength(const WideCounts& counts) {
    double sum = 0;
    for (const std::uint32_t count : counts) sum += static_cast<double>(count) * count;
    return sum > 0 ? static_cast<float>(1 / std::sqrt(sum)) : 0;
}

// Bags of the same direction become the same bag, so that their scores are equal to the last bit.
void reduce(WideCounts& counts) {
    std::uint32_t divisor = 0;
    for (const std::uint32_t count : counts)
        if ((divisor = std::gcd(divisor, count)) == 1) return;
    if (divisor > 1)
        for (std::uint32_t& count : counts) count /= divisor;
}

bool fitBytes(const WideCounts& counts) {
    return *std::max_element(counts.begin(), counts.end()) <= std::numeric_limits<std::uint8_t>::max();
}

std::vector<float> unitVector(const WideCounts& counts) {
    const float inverse = inverseLength(counts);
    std::vector<float> result;
    result.reserve(counts.size());
    for (const std::uint32_t count : counts) result.push_back(static_cast<float>(count) * inverse);
    return result;
}

float scoreOf(float cosine) {
    return (cosine + 1) * 0.5F;
}

}  // namespace

PromptIndex& PromptIndex::shared() {
    static PromptIndex index;
    return index;
}

std::vector<float> PromptIndex::vectorize(std::string_view text) {
    return unitVector(countsOf(text));
}

void PromptIndex::add(std::string_view id, std::string_view text) {
    auto place = places_.find(id);
    if (place == places_.end()) {
        place = places_.emplace(id, static_cast<std::uint32_t>(ids_.size())).first;
        ids_.emplace_back(id);
    }
    WideCounts wide = countsOf(text);
    reduce(wide);
    Counts counts{};
    if (fitBytes(wide))
        std::transform(wide.begin(), wide.end(), counts.begin(),
                       [](auto count) { return static_cast<std::uint8_t>(count); });
    else
        longTexts_.emplace(items_.size(), unitVector(wide));
    counts_.push_back(counts);
    inverseLengths_.push_back(inverseLength(wide));
    items_.push_back({place->second, std::string(text)});
}

PromptIndex::IndexItem PromptIndex::item(std::size_t at) const {
    return {ids_[items_[at].id], items_[at].text, vectorize(items_[at].text)};
}

// Keeps the hits sorted, one an id, no more than the limit.
void PromptIndex::offer(std::vector<Hit>& hits, Hit hit, std::size_t limit) const {
    const auto ofThisId = [&](const Hit& other) { return items_[other.at].id == items_[hit.at].id; };
    const auto known = std::find_if(hits.begin(), hits.end(), ofThisId);
    if (known == hits.end())
        hits.push_back(hit);
    else if (known->score < hit.score)
        *known = hit;
    else
        return;
    std::stable_sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) { return a.score > b.score; });
    if (hits.size() > limit) hits.pop_back();
}

std::vector<PromptIndex::ScoredItem> PromptIndex::search(std::string_view query, long limit) const {
    if (limit <= 0) return {};
    const auto wanted = static_cast<std::size_t>(limit);
    WideCounts wide = countsOf(query);
    reduce(wide);
    const float inverse = inverseLength(wide);
    const std::vector<float> queryVector = longTexts_.empty() ? std::vector<float>{} : unitVector(wide);
    const CountProduct product(wide);
    std::vector<Hit> hits;
    float least = -1;  // what a hit has to beat once there are enough
    std::array<std::int64_t, 256> products{};
    for (std::size_t begin = 0; begin < counts_.size(); begin += products.size()) {
        const std::size_t count = std::min(products.size(), counts_.size() - begin);
        product.ofRows(counts_[begin].data(), count, products.data());
        for (std::size_t offset = 0; offset < count; ++offset) {
            const std::size_t at = begin + offset;
            float cosine = static_cast<float>(products[offset]) * (inverseLengths_[at] * inverse);
            if (!longTexts_.empty())
                if (const auto longText = longTexts_.find(at); longText != longTexts_.end())
                    cosine = std::inner_product(queryVector.begin(), queryVector.end(), longText->second.begin(), 0.0F);
            const float score = scoreOf(cosine);
            if (score <= least) continue;
            offer(hits, {at, score}, wanted);
            if (hits.size() == wanted) least = hits.back().score;
        }
    }
    std::vector<ScoredItem> result;
    for (const Hit& hit : hits) result.push_back({item(hit.at), hit.score});
    return result;
}

}  // namespace brindlet
