// File-name patterns: a pattern's text becomes a value that is tested against names. It knows nothing of the file
// system. All text is handled in user-perceived characters (extended grapheme clusters).
//
//     Pattern("*.txt", Pattern::Options::defaults()).match("a.txt")
//
// No pattern takes matching more time than is linear in the pattern times the name.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace brindlet {

namespace glob {
struct Program;
}

struct PatternParsingError {
    enum class Kind {
        invalidNamedCharacterClass,
        rangeNotClosed,
        rangeIsEmpty,
        rangeMissingBounds,
        rangeBoundsAreOutOfOrder,
        invalidEscapeCharacter,
        patternListNotClosed,
        emptyPatternList,
    };
    Kind kind;
    std::string name;  // of `invalidNamedCharacterClass`, else ""
    bool operator==(const PatternParsingError&) const = default;
};

// The case's name, such as "rangeNotClosed".
std::string_view caseName(PatternParsingError::Kind kind);

struct InvalidPatternError : std::exception {
    InvalidPatternError(std::string pattern, std::size_t location, PatternParsingError underlyingError);
    const char* what() const noexcept override { return sentence.c_str(); }

    std::string pattern;   // the whole text
    std::size_t location;  // the byte offset reached in it
    PatternParsingError underlyingError;
    std::string sentence;  // for people: what is wrong with the pattern and where
};

class Pattern {
  public:
    enum class EmptyRangeBehavior { allow, error, treatClosingBracketAsCharacter };
    enum class RangeNegationCharacter { exclamationMark, caret };
    enum class PatternListStyle { zeroOrOne, zeroOrMore, oneOrMore, one, negated };
    enum class ClassName {
        alphaNumeric,
        alpha,
        blank,
        control,
        numeric,
        graph,
        lower,
        printable,
        punctuation,
        space,
        upper,
        hexadecimalDigit,
    };

    struct Options {
        bool supportsPathLevelWildcards = true;
        EmptyRangeBehavior emptyRangeBehavior = EmptyRangeBehavior::error;
        bool supportsEscapedCharacters = true;
        bool supportsRangeSeparatorAtBeginningAndEnd = true;
        bool requiresExplicitLeadingPeriods = true;
        bool matchLeadingDirectories = false;
        bool supportsPatternLists = true;
        RangeNegationCharacter rangeNegationCharacter = RangeNegationCharacter::exclamationMark;
        std::optional<std::string> pathSeparator = "/";  // one character; none means there is no separator

        static const Options& defaults();
        bool operator==(const Options&) const = default;
    };

    struct Range {
        std::string lower, upper;  // one character each
        bool operator==(const Range&) const = default;
    };
    using CharacterClass = std::variant<Range, ClassName>;

    struct Section;
    struct Constant {
        std::string text;
        bool operator==(const Constant&) const = default;
    };
    struct OneOf {
        std::vector<CharacterClass> classes;
        bool isNegated = false;
        bool operator==(const OneOf&) const = default;
    };
    struct PatternList {
        PatternListStyle style = PatternListStyle::one;
        std::vector<std::vector<Section>> alternatives;
        bool operator==(const PatternList&) const = default;
    };
    struct ComponentWildcard {
        bool operator==(const ComponentWildcard&) const = default;
    };
    struct PathWildcard {
        bool operator==(const PathWildcard&) const = default;
    };
    struct SingleCharacter {
        bool operator==(const SingleCharacter&) const = default;
    };
    struct Section : std::variant<Constant, OneOf, PatternList, ComponentWildcard, PathWildcard, SingleCharacter> {
        using variant::variant;
    };

    // Pattern lists may nest this deep; deeper text is `patternListNotClosed`.
    static constexpr int maxNesting = 200;

    // Throws InvalidPatternError.
    explicit Pattern(std::string_view text, const Options& options = Options::defaults());

    // True if the whole name matches. Never fails, whatever bytes the name holds.
    bool match(std::string_view name) const;

    const std::vector<Section>& sections() const { return sections_; }
    const Options& options() const { return options_; }
    // True for a pattern that is one constant: a word without any glob in it.
    bool isConstant() const;

    bool operator==(const Pattern& other) const { return sections_ == other.sections_ && options_ == other.options_; }

  private:
    std::vector<Section> sections_;
    Options options_;
    std::shared_ptr<const glob::Program> program_;  // what matching runs on, shared by copies
};

// The text between "[:" and ":]", such as "alpha".
std::string_view classText(Pattern::ClassName name);

}  // namespace brindlet
