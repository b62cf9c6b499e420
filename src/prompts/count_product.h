// The scalar products of one bag of counts with many, at the speed at which memory gives them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace brindlet {

class CountProduct {
  public:
    static constexpr std::size_t length = 128;

    // `largestInRows`: no byte of the rows is more.
    CountProduct(const std::array<std::uint32_t, length>& counts, std::uint8_t largestInRows);

    // The products with `rowCount` rows of `length` bytes each, which follow each other: the whole numbers, rounded
    // once.
    void ofRows(const std::uint8_t* rows, std::size_t rowCount, float* products) const;

  private:
    std::array<std::uint32_t, length> counts_;
    alignas(32) std::array<std::int8_t, length> small_{};
    bool isSmall_;  // the counts fit, and so does what is added up in 16 bits
};

}  // namespace brindlet
