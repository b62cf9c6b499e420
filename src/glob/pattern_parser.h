// Reads a pattern's text into sections. Only the constructor of Pattern uses it.
//
//     PatternParser("*.@(a|b)", options).parse()  // componentWildcard, constant ".", patternList
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "glob/pattern.h"

namespace brindlet::glob {

class PatternParser {
  public:
    // Both are kept by reference.
    PatternParser(std::string_view text, const Pattern::Options& options) : text_(text), options_(options) {}

    // Throws InvalidPatternError. To be called once.
    std::vector<Pattern::Section> parse() { return parseSections(); }

  private:
    using Sections = std::vector<Pattern::Section>;
    using Classes = std::vector<Pattern::CharacterClass>;

    // One character of the pattern. An escaped one never acts as a sign.
    struct Token {
        std::string_view character;
        bool isEscaped = false;
        bool is(char sign) const { return !isEscaped && character.size() == 1 && character.front() == sign; }
    };

    bool isAtEnd() const { return at_ == text_.size(); }
    bool isNext(char sign) const;
    bool takeIfNext(char sign);
    std::string_view takeCharacter();
    std::optional<Token> takeToken();
    Token takeBracketToken();
    [[noreturn]] void fail(PatternParsingError::Kind kind, std::string_view name = "") const;

    Sections parseSections();
    void parseSection(Sections& sections);
    void addWildcard(Sections& sections) const;
    bool parsePatternList(const Token& opening, Sections& sections);
    std::vector<Sections> parseAlternatives();
    void parseBracketExpression(Sections& sections);
    bool parseClass(Classes& classes);
    bool parseRange(std::string_view lower, Classes& classes);
    Pattern::ClassName parseClassName();

    std::string_view text_;
    const Pattern::Options& options_;
    std::size_t at_ = 0;
    int nesting_ = 0;
};

}  // namespace brindlet::glob
