#include "glob/pattern_parser.h"

#include <algorithm>
#include <iterator>

#include "glob/character_class.h"
#include "text/character_properties.h"
#include "text/characters.h"

namespace brindlet::glob {

namespace {

using Kind = PatternParsingError::Kind;
using Style = Pattern::PatternListStyle;

struct StyleRow {
    char opening;
    Style style;
};
constexpr StyleRow styleRows[] = {
    {'?', Style::zeroOrOne}, {'*', Style::zeroOrMore}, {'+', Style::oneOrMore},
    {'@', Style::one},       {'!', Style::negated},
};

void addLiteral(std::vector<Pattern::Section>& sections, std::string_view character) {
    if (!sections.empty()) {
        if (auto* last = std::get_if<Pattern::Constant>(&sections.back())) {
            last->text += character;
            return;
        }
    }
    sections.emplace_back(Pattern::Constant{std::string(character)});
}

Pattern::Range rangeOf(std::string_view character) {
    return {std::string(character), std::string(character)};
}

}  // namespace

bool PatternParser::isNext(char sign) const {
    return !isAtEnd() && text_[at_] == sign && characterLength(text_, at_) == 1;
}

bool PatternParser::takeIfNext(char sign) {
    if (!isNext(sign)) return false;
    ++at_;
    return true;
}

std::string_view PatternParser::takeCharacter() {
    const std::string_view character = text_.substr(at_, characterLength(text_, at_));
    at_ += character.size();
    return character;
}

std::optional<PatternParser::Token> PatternParser::takeToken() {
    if (isAtEnd()) return std::nullopt;
    const std::string_view character = takeCharacter();
    if (!options_.supportsEscapedCharacters || character != "\\") return Token{character};
    if (isAtEnd()) fail(Kind::invalidEscapeCharacter);
    return Token{takeCharacter(), true};
}

PatternParser::Token PatternParser::takeBracketToken() {
    const auto token = takeToken();
    if (!token) fail(Kind::rangeNotClosed);
    return *token;
}

void PatternParser::fail(Kind kind, std::string_view name) const {
    throw InvalidPatternError(std::string(text_), at_, {kind, std::string(name)});
}

PatternParser::Sections PatternParser::parseSections() {
    Sections sections;
    while (!isAtEnd() && !(nesting_ > 0 && (isNext('|') || isNext(')')))) parseSection(sections);
    return sections;
}

void PatternParser::parseSection(Sections& sections) {
    const Token token = *takeToken();
    if (token.is('[')) {
        parseBracketExpression(sections);
    } else if (parsePatternList(token, sections)) {
        return;
    } else if (token.is('?')) {
        sections.emplace_back(Pattern::SingleCharacter{});
    } else if (token.is('*')) {
        addWildcard(sections);
    } else {
        addLiteral(sections, token.character);
    }
}

void PatternParser::addWildcard(Sections& sections) const {
    if (!sections.empty() && std::holds_alternative<Pattern::PathWildcard>(sections.back())) return;
    if (sections.empty() || !std::holds_alternative<Pattern::ComponentWildcard>(sections.back())) {
        sections.emplace_back(Pattern::ComponentWildcard{});
    } else if (options_.supportsPathLevelWildcards) {
        sections.back() = Pattern::PathWildcard{};
    }
}

// False, with nothing taken, where no list begins.
bool PatternParser::parsePatternList(const Token& opening, Sections& sections) {
    const auto row = std::find_if(std::begin(styleRows), std::end(styleRows),
                                  [&](const StyleRow& candidate) { return opening.is(candidate.opening); });
    if (row == std::end(styleRows) || !options_.supportsPatternLists || !takeIfNext('(')) return false;
    if (nesting_ == Pattern::maxNesting) fail(Kind::patternListNotClosed);
    ++nesting_;
    sections.emplace_back(Pattern::PatternList{row->style, parseAlternatives()});
    --nesting_;
    return true;
}

std::vector<PatternParser::Sections> PatternParser::parseAlternatives() {
    if (isAtEnd()) fail(Kind::emptyPatternList);
    std::vector<Sections> alternatives;
    while (!isAtEnd()) {
        alternatives.push_back(parseSections());
        if (takeIfNext(')')) return alternatives;
        takeIfNext('|');
    }
    fail(Kind::patternListNotClosed);
}

void PatternParser::parseBracketExpression(Sections& sections) {
    using Negation = Pattern::RangeNegationCharacter;
    using EmptyRange = Pattern::EmptyRangeBehavior;
    Pattern::OneOf section;
    section.isNegated = takeIfNext(options_.rangeNegationCharacter == Negation::caret ? '^' : '!');
    if (options_.emptyRangeBehavior == EmptyRange::treatClosingBracketAsCharacter && takeIfNext(']'))
        section.classes.emplace_back(rangeOf("]"));
    while (parseClass(section.classes)) continue;
    if (!section.classes.empty()) {
        sections.emplace_back(std::move(section));
    } else if (options_.emptyRangeBehavior == EmptyRange::error) {
        fail(Kind::rangeIsEmpty);
    }
}

// False where the expression has ended.
bool PatternParser::parseClass(Classes& classes) {
    const Token token = takeBracketToken();
    if (token.is(']')) return false;
    if (token.is('[') && takeIfNext(':')) {
        classes.emplace_back(parseClassName());
        return true;
    }
    if (token.is('-') && !options_.supportsRangeSeparatorAtBeginningAndEnd) fail(Kind::rangeMissingBounds);
    const bool canBeLowerBound = !token.is('[') && !token.is('-');
    if (canBeLowerBound && takeIfNext('-')) return parseRange(token.character, classes);
    classes.emplace_back(rangeOf(token.character));
    return true;
}

// Reads on behind the "-". False where the expression has ended.
bool PatternParser::parseRange(std::string_view lower, Classes& classes) {
    if (takeIfNext(']')) {
        if (!options_.supportsRangeSeparatorAtBeginningAndEnd) fail(Kind::rangeNotClosed);
        classes.emplace_back(rangeOf(lower));
        classes.emplace_back(rangeOf("-"));
        return false;
    }
    const std::string_view upper = takeBracketToken().character;
    if (composed(upper) < composed(lower)) fail(Kind::rangeBoundsAreOutOfOrder);
    classes.emplace_back(Pattern::Range{std::string(lower), std::string(upper)});
    return true;
}

// Reads on behind the "[:".
Pattern::ClassName PatternParser::parseClassName() {
    const std::size_t begin = at_;
    while (!isAtEnd() && !isNext(':')) takeCharacter();
    if (isAtEnd()) fail(Kind::rangeNotClosed);
    const std::string_view text = text_.substr(begin, at_ - begin);
    const auto name = classNamed(text);
    if (!name) fail(Kind::invalidNamedCharacterClass, text);
    takeCharacter();
    if (!takeBracketToken().is(']')) fail(Kind::rangeNotClosed);
    return *name;
}

}  // namespace brindlet::glob
