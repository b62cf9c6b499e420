#include "prompts/count_product.h"

#include <algorithm>
#include <limits>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace brindlet {

namespace {

constexpr std::size_t bytesAtOnce = 32;
constexpr std::size_t steps = CountProduct::length / bytesAtOnce;
constexpr std::size_t rowsAtOnce = 8;

#if defined(__x86_64__)
// Pairs of products are added in 16 bits, and so are those of all steps; eight sums of 32 bits are left for a row.
[[gnu::target("avx2")]] inline __m256i sumsOfRow(const __m256i* counts, const std::uint8_t* row) {
    __m256i pairs = _mm256_setzero_si256();
    for (std::size_t at = 0; at < steps; ++at) {
        const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(row + at * bytesAtOnce));
        pairs = _mm256_add_epi16(pairs, _mm256_maddubs_epi16(bytes, counts[at]));
    }
    return _mm256_madd_epi16(pairs, _mm256_set1_epi16(1));
}

// Eight rows at a time; the query stays in registers over all of them. Returns how many rows are done.
[[gnu::target("avx2")]] std::size_t productsByAvx2(const std::int8_t* query, const std::uint8_t* rows,
                                                   std::size_t rowCount, float* products) {
    __m256i counts[steps];
    for (std::size_t at = 0; at < steps; ++at)
        counts[at] = _mm256_load_si256(reinterpret_cast<const __m256i*>(query + at * bytesAtOnce));
    std::size_t done = 0;
    for (; done + rowsAtOnce <= rowCount; done += rowsAtOnce) {
        __m256i quarters[2];  // of four rows each, the two halves of their sums apart
        for (std::size_t half = 0; half < 2; ++half) {
            const std::uint8_t* row = rows + (done + half * 4) * CountProduct::length;
            const __m256i first =
                _mm256_hadd_epi32(sumsOfRow(counts, row), sumsOfRow(counts, row + CountProduct::length));
            const __m256i second = _mm256_hadd_epi32(sumsOfRow(counts, row + 2 * CountProduct::length),
                                                     sumsOfRow(counts, row + 3 * CountProduct::length));
            quarters[half] = _mm256_hadd_epi32(first, second);
        }
        const __m256i sums = _mm256_add_epi32(_mm256_permute2x128_si256(quarters[0], quarters[1], 0x20),
                                              _mm256_permute2x128_si256(quarters[0], quarters[1], 0x31));
        _mm256_storeu_ps(products + done, _mm256_cvtepi32_ps(sums));
    }
    return done;
}
#endif

}  // namespace

CountProduct::CountProduct(const std::array<std::uint32_t, length>& counts, std::uint8_t largestInRows)
    : counts_(counts) {
    const std::uint32_t largest = *std::max_element(counts.begin(), counts.end());
    constexpr std::uint64_t inOneLane = 2 * steps;
    isSmall_ = largest <= std::numeric_limits<std::int8_t>::max() &&
               inOneLane * largest * largestInRows <= std::numeric_limits<std::int16_t>::max();
    if (isSmall_)
        std::transform(counts.begin(), counts.end(), small_.begin(),
                       [](std::uint32_t count) { return static_cast<std::int8_t>(count); });
}

void CountProduct::ofRows(const std::uint8_t* rows, std::size_t rowCount, float* products) const {
    std::size_t row = 0;
#if defined(__x86_64__)
    static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
    if (isSmall_ && hasAvx2) row = productsByAvx2(small_.data(), rows, rowCount, products);
#endif
    for (; row < rowCount; ++row) {
        std::uint64_t sum = 0;
        for (std::size_t at = 0; at < length; ++at) sum += std::uint64_t{counts_[at]} * rows[row * length + at];
        products[row] = static_cast<float>(sum);
    }
}

}  // namespace brindlet
