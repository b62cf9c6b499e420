#include "glob/pattern.h"

#include "glob/matcher.h"
#include "glob/pattern_parser.h"
#include "glob/program.h"

namespace brindlet {

namespace {

using Kind = PatternParsingError::Kind;

struct KindRow {
    Kind kind;
    std::string_view caseName;
    std::string_view sentence;
};

// In the order of the kinds.
constexpr KindRow kindRows[] = {
    {Kind::invalidNamedCharacterClass, "invalidNamedCharacterClass", "there is no such character class"},
    {Kind::rangeNotClosed, "rangeNotClosed", "a bracket expression isn't closed"},
    {Kind::rangeIsEmpty, "rangeIsEmpty", "a bracket expression is empty"},
    {Kind::rangeMissingBounds, "rangeMissingBounds", "a range lacks a bound"},
    {Kind::rangeBoundsAreOutOfOrder, "rangeBoundsAreOutOfOrder", "the bounds of a range are out of order"},
    {Kind::invalidEscapeCharacter, "invalidEscapeCharacter", "nothing follows the last backslash"},
    {Kind::patternListNotClosed, "patternListNotClosed", "a pattern list isn't closed"},
    {Kind::emptyPatternList, "emptyPatternList", "a pattern list is empty"},
};

const KindRow& rowOf(Kind kind) {
    return kindRows[static_cast<std::size_t>(kind)];
}

std::string sentenceFor(const InvalidPatternError& error) {
    std::string sentence = "Invalid pattern \"" + error.pattern + "\", byte " + std::to_string(error.location) + ": " +
                           std::string(rowOf(error.underlyingError.kind).sentence);
    if (!error.underlyingError.name.empty()) sentence += " (" + error.underlyingError.name + ")";
    return sentence;
}

}  // namespace

std::string_view caseName(Kind kind) {
    return rowOf(kind).caseName;
}

InvalidPatternError::InvalidPatternError(std::string text, std::size_t offset, PatternParsingError error)
    : pattern(std::move(text)), location(offset), underlyingError(std::move(error)), sentence(sentenceFor(*this)) {}

const Pattern::Options& Pattern::Options::defaults() {
    static const Options options;
    return options;
}

Pattern::Pattern(std::string_view text, const Options& options)
    : sections_(glob::PatternParser(text, options).parse()),
      options_(options),
      program_(std::make_shared<const glob::Program>(glob::compiled(sections_, options_))) {}

bool Pattern::match(std::string_view name) const {
    return glob::matches(*program_, name);
}

bool Pattern::isConstant() const {
    return sections_.size() == 1 && std::holds_alternative<Constant>(sections_.front());
}

}  // namespace brindlet
