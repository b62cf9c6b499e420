#include "prompts/count_product.h"

#include <algorithm>
#include <limits>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace brindlet {

namespace {

// Bytes times counts up to here, summed over a row, stay below 2^31.
constexpr std::uint32_t largestNarrow = 32'767;

#if defined(__x86_64__)
// Sixteen buckets at a time; the query stays in registers over all rows.
[[gnu::target("avx2")]] void productsByAvx2(const std::int16_t* query, const std::uint8_t* rows, std::size_t rowCount,
                                            std::int64_t* products) {
    constexpr std::size_t lanes = 16;
    __m256i counts[CountProduct::length / lanes];
    for (std::size_t at = 0; at < std::size(counts); ++at)
        counts[at] = _mm256_load_si256(reinterpret_cast<const __m256i*>(query + at * lanes));
    for (std::size_t row = 0; row < rowCount; ++row, rows += CountProduct::length) {
        __m256i sum = _mm256_setzero_si256();
        for (std::size_t at = 0; at < std::size(counts); ++at) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows + at * lanes));
            sum = _mm256_add_epi32(sum, _mm256_madd_epi16(_mm256_cvtepu8_epi16(bytes), counts[at]));
        }
        __m128i half = _mm_add_epi32(_mm256_castsi256_si128(sum), _mm256_extracti128_si256(sum, 1));
        half = _mm_add_epi32(half, _mm_shuffle_epi32(half, 0x4E));
        half = _mm_add_epi32(half, _mm_shuffle_epi32(half, 0xB1));
        products[row] = _mm_cvtsi128_si32(half);
    }
}
#endif

}  // namespace

CountProduct::CountProduct(const std::array<std::uint32_t, length>& counts) : wide_(counts) {
    std::uint64_t sum = 0;
    for (std::size_t at = 0; at < length; ++at) {
        sum += counts[at];
        isNarrow_ &= counts[at] <= largestNarrow;
        if (isNarrow_) narrow_[at] = static_cast<std::int16_t>(counts[at]);
    }
    constexpr auto largestRowCount = std::numeric_limits<std::uint8_t>::max();
    isNarrow_ &= sum * largestRowCount <= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
}

void CountProduct::ofRows(const std::uint8_t* rows, std::size_t rowCount, std::int64_t* products) const {
#if defined(__x86_64__)
    static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
    if (isNarrow_ && hasAvx2) return productsByAvx2(narrow_.data(), rows, rowCount, products);
#endif
    for (std::size_t row = 0; row < rowCount; ++row, rows += length) {
        std::int64_t sum = 0;
        for (std::size_t at = 0; at < length; ++at) sum += std::int64_t{wide_[at]} * rows[at];
        products[row] = sum;
    }
}

}  // namespace brindlet
