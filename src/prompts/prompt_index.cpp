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
constexpr std::uint64_t seedOf(std::size_t size) {
    return 0xC0AC'29B7'C97C'50DDU ^ size;
}
constexpr std::uint64_t hashedWord(std::uint64_t hash, std::uint64_t word) {
    hash = (hash ^ word) * 0xD6E8'FEB8'6659'FD93U;
    return hash ^ hash >> 32;
}

std::uint64_t hashed(std::string_view piece) {
    std::uint64_t hash = seedOf(piece.size());
    for (std::size_t at = 0; at < piece.size(); at += sizeof hash) {
        std::uint64_t word = 0;
        std::memcpy(&word, piece.data() + at, std::min(sizeof word, piece.size() - at));
        hash = hashedWord(hash, word);
    }
    return hash;
}

// The remainder of the absolute value of the hash, read as a signed number.
std::size_t bucketOf(std::uint64_t hash) {
    const std::uint64_t magnitude = hash >> 63 ? 0 - hash : hash;
    return static_cast<std::size_t>(magnitude % PromptIndex::vectorLength);
}

// All pieces in one pass, each by its bytes in one word, as `hashed` has them on a machine that counts from the low
// end.
void countOneByteCharacters(std::string_view text, WideCounts& counts) {
    std::uint64_t last[longestPiece - 1] = {};
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::uint64_t one = static_cast<unsigned char>(text[at]);
        const std::uint64_t two = last[0] | one << 8;
        const std::uint64_t three = last[1] | last[0] << 8 | one << 16;
        ++counts[bucketOf(hashedWord(seedOf(1), one))];
        if (at >= 1) ++counts[bucketOf(hashedWord(seedOf(2), two))];
        if (at >= 2) ++counts[bucketOf(hashedWord(seedOf(3), three))];
        last[1] = last[0];
        last[0] = one;
    }
}

bool hasOneByteCharacters(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char byte) { return (byte & 0x80) != 0 || byte == '\r'; });
}

WideCounts countsOf(std::string_view text) {
    WideCounts counts{};
    const std::string lower = lowercased(text);
    if (hasOneByteCharacters(lower)) {
        countOneByteCharacters(lower, counts);
        return counts;
    }
    const std::vector<std::string_view> all = characters(lower);
    for (std::size_t length = 1; length <= longestPiece; ++length)
        for (std::size_t at = 0; at + length <= all.size(); ++at) {
            const std::string_view last = all[at + length - 1];
            const auto size = static_cast<std::size_t>(last.data() + last.size() - all[at].data());
            ++counts[bucketOf(hashed({all[at].data(), size}))];
        }
    return counts;
}

float inverseLength(const WideCounts& counts) {
    std::uint64_t sum = 0;
    for (const std::uint32_t count : counts) sum += std::uint64_t{count} * count;
    return sum > 0 ? static_cast<float>(1 / std::sqrt(static_cast<double>(sum))) : 0;
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

void PromptIndex::reserve(std::size_t count) {
    items_.reserve(count);
    counts_.reserve(count);
    inverseLengths_.reserve(count);
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
    largestCount_ = std::max(largestCount_, *std::max_element(counts.begin(), counts.end()));
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
    const CountProduct product(wide, largestCount_);
    std::vector<Hit> hits;
    float least = -1;  // what a hit has to beat once there are enough
    std::array<float, 256> scores{};
    for (std::size_t begin = 0; begin < counts_.size(); begin += scores.size()) {
        const std::size_t count = std::min(scores.size(), counts_.size() - begin);
        product.ofRows(counts_[begin].data(), count, scores.data());
        for (std::size_t offset = 0; offset < count; ++offset)
            scores[offset] = scoreOf(scores[offset] * (inverseLengths_[begin + offset] * inverse));
        for (auto longText = longTexts_.lower_bound(begin); longText != longTexts_.end(); ++longText) {
            if (longText->first >= begin + count) break;
            scores[longText->first - begin] =
                scoreOf(std::inner_product(queryVector.begin(), queryVector.end(), longText->second.begin(), 0.0F));
        }
        for (std::size_t offset = 0; offset < count; ++offset) {
            if (scores[offset] <= least) continue;
            offer(hits, {begin + offset, scores[offset]}, wanted);
            if (hits.size() == wanted) least = hits.back().score;
        }
    }
    std::vector<ScoredItem> result;
    for (const Hit& hit : hits) result.push_back({item(hit.at), hit.score});
    return result;
}

}  // namespace brindlet
