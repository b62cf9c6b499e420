// A pattern made ready for matching: texts in canonical form, bracket expressions as bit sets over ASCII, and the
// sections at both ends that need no search told apart from those between.
//
//     matches(compiled(sections, options), "a.txt")
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "glob/pattern.h"

namespace brindlet::glob {

class AsciiSet {
  public:
    void insert(unsigned char character) { words_[character / 64] |= std::uint64_t{1} << (character % 64); }
    void negate() {
        for (auto& word : words_) word = ~word;
    }
    bool contains(unsigned char character) const { return ((words_[character / 64] >> (character % 64)) & 1) != 0; }

  private:
    std::array<std::uint64_t, 2> words_{};
};

// One section.
struct Step {
    enum class Kind : std::uint8_t { constant, oneOf, single, componentWildcard, pathWildcard, list };

    bool isWildcard() const { return kind == Kind::componentWildcard || kind == Kind::pathWildcard; }
    // Takes a number of characters that is known beforehand.
    bool isFixed() const { return kind == Kind::constant || kind == Kind::oneOf || kind == Kind::single; }

    Kind kind = Kind::constant;
    bool canBeEmpty = false;

    std::string text;                // of a constant, in canonical form
    std::size_t characterCount = 1;  // that the step takes, if it is fixed

    AsciiSet asciiSet;                             // of a oneOf: the ASCII characters that it takes, the negation done
    std::vector<Pattern::CharacterClass> classes;  // for the others, in canonical form
    bool isNegated = false;

    Pattern::PatternListStyle style = Pattern::PatternListStyle::one;
    std::vector<std::vector<Step>> alternatives;
};

struct Program {
    bool hasList() const { return firstList < steps.size(); }

    std::vector<Step> steps;
    // steps[0, searchBegin) are fixed and stand at the begin of a name, steps[searchEnd, size) are fixed and stand at
    // its end, and both ends of what lies between are wildcards or lists, if it isn't empty. With leading directories
    // the end of a pattern need not stand at the end of a name: searchEnd is the size.
    std::size_t searchBegin = 0, searchEnd = 0;
    std::size_t firstList = 0;  // among all steps; their number if there is none
    bool canSearchedBeEmpty = true;
    std::size_t listDepth = 0;

    std::string separator;  // in canonical form; empty if there is none
    bool refusesLeadingPeriods = true;
    bool matchesLeadingDirectories = false;
};

Program compiled(const std::vector<Pattern::Section>& sections, const Pattern::Options& options);

}  // namespace brindlet::glob
