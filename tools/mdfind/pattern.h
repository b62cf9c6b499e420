// What a text is compared with: "*" stands for anything.
//
//     Pattern("*apple*", {.ignoresCase = true}).isIn("Pineapples")
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brindlet::tools {

struct Folding {
    bool ignoresCase = false;
    bool ignoresMarks = false;  // "e" is "é"
};

class Pattern {
  public:
    Pattern(std::string_view text, Folding folding);

    bool isWhole(std::string_view text) const;
    // Anywhere in it; where the pattern has no star at an end, a word has to begin or end there.
    bool isIn(std::string_view text) const;

  private:
    std::string folded(std::string_view text) const;

    Folding folding_;
    std::vector<std::string> parts_;  // between the stars
};

}  // namespace brindlet::tools
