// Chance from the system's secure source, read in large pieces so that nobody waits for a system call a draw.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace brindlet {

class RandomChoice {
  public:
    static RandomChoice& ofThisThread();

    // A number below `bound`, which is at least 1, each with the same chance.
    std::size_t below(std::size_t bound);
    bool half();

  private:
    std::uint32_t next();

    std::array<std::uint32_t, 8192> drawn_{};
    std::size_t used_ = drawn_.size();
    std::uint32_t bits_ = 0;  // for half(), with a sentinel above the highest that is left
};

}  // namespace brindlet
