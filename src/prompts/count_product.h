// The scalar products of one bag of counts with many, at the speed at which memory gives them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace brindlet {

class CountProduct {
  public:
    static constexpr std::size_t length = 128;

    explicit CountProduct(const std::array<std::uint32_t, length>& counts);

    // The products with `rowCount` rows of `length` bytes each, which follow each other.
    void ofRows(const std::uint8_t* rows, std::size_t rowCount, std::int64_t* products) const;

  private:
    std::array<std::uint32_t, length> wide_;
    alignas(32) std::array<std::int16_t, length> narrow_{};
    bool isNarrow_ = true;  // all counts fit, and so do all sums of products in 32 bits
};

}  // namespace brindlet
