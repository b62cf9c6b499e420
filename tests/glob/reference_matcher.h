// A matcher that tells the rules as plainly as it can, to judge the real one by: recursion over the sections, a name as
// a list of characters, nothing remembered. It takes exponential time where a pattern asks for it, so it counts its
// steps and gives up.
//
//     ReferenceMatcher(pattern, "ab").match()  // true, false, or none for "too long"
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "glob/character_class.h"
#include "glob/pattern.h"
#include "text/character_properties.h"
#include "text/characters.h"

namespace brindlet {

class ReferenceMatcher {
  public:
    ReferenceMatcher(const Pattern& pattern, std::string_view name)
        : sections_(pattern.sections()), options_(pattern.options()), name_(split(name)) {}

    std::optional<bool> match() {
        const bool result = matchWhole(sections_, {0, name_.size()});
        if (steps_ > mostSteps) return std::nullopt;
        return result;
    }

  private:
    using Sections = std::vector<Pattern::Section>;
    using Rest = std::optional<std::size_t>;  // where what remains of the name begins; none if nothing matches
    using Style = Pattern::PatternListStyle;

    struct Part {
        std::size_t begin, end;
        bool isEmpty() const { return begin == end; }
        std::size_t size() const { return end - begin; }
        Part dropFirst(std::size_t count) const { return {begin + count, end}; }
        Part dropLast(std::size_t count) const { return {begin, end - count}; }
    };

    static constexpr int mostSteps = 20'000;

    static std::vector<std::string> split(std::string_view text) {
        const std::string canonical = composed(text);
        const auto pieces = characters(canonical);
        return {pieces.begin(), pieces.end()};
    }

    static Sections joined(const Sections& first, const Sections& second) {
        Sections all = first;
        all.insert(all.end(), second.begin(), second.end());
        return all;
    }

    static Sections behindFirst(const Sections& sections) { return {sections.begin() + 1, sections.end()}; }
    static Sections beforeLast(const Sections& sections) { return {sections.begin(), sections.end() - 1}; }

    static bool canBeEmpty(const Pattern::Section& section) {
        if (std::holds_alternative<Pattern::ComponentWildcard>(section)) return true;
        if (std::holds_alternative<Pattern::PathWildcard>(section)) return true;
        const auto* list = std::get_if<Pattern::PatternList>(&section);
        if (!list) return false;
        if (list->style != Style::oneOrMore && list->style != Style::one) return true;
        for (const auto& alternative : list->alternatives)
            if (canAllBeEmpty(alternative)) return true;
        return false;
    }

    static bool canAllBeEmpty(const Sections& sections) {
        for (const auto& section : sections)
            if (!canBeEmpty(section)) return false;
        return true;
    }

    bool isSeparator(std::size_t at) const {
        return options_.pathSeparator && name_[at] == composed(*options_.pathSeparator);
    }

    bool refusesPeriod(std::size_t at) const {
        const bool isLeading = at == 0 || isSeparator(at - 1);
        return options_.requiresExplicitLeadingPeriods && isLeading && name_[at] == ".";
    }

    bool hasConstant(const Pattern::Constant& constant, Part part, bool atEnd) const {
        const auto text = split(constant.text);
        if (text.size() > part.size()) return false;
        const std::size_t begin = atEnd ? part.end - text.size() : part.begin;
        for (std::size_t index = 0; index < text.size(); ++index)
            if (name_[begin + index] != text[index]) return false;
        return true;
    }

    bool isOneOf(const Pattern::OneOf& section, std::size_t at) const {
        bool fits = false;
        for (auto each : section.classes) {
            if (auto* range = std::get_if<Pattern::Range>(&each))
                *range = {composed(range->lower), composed(range->upper)};
            fits = fits || glob::isInClass(name_[at], each);
        }
        return fits != section.isNegated;
    }

    // What a constant, oneOf or singleCharacter leaves of the part; none if it doesn't fit.
    std::optional<Part> withoutFixed(const Pattern::Section& section, Part part) const {
        if (const auto* constant = std::get_if<Pattern::Constant>(&section)) {
            if (!hasConstant(*constant, part, false)) return std::nullopt;
            return part.dropFirst(split(constant->text).size());
        }
        if (refusesPeriod(part.begin)) return std::nullopt;
        if (const auto* oneOf = std::get_if<Pattern::OneOf>(&section)) {
            if (!isOneOf(*oneOf, part.begin)) return std::nullopt;
        } else if (isSeparator(part.begin)) {
            return std::nullopt;
        }
        return part.dropFirst(1);
    }

    bool matchTrimmed(const Sections& sections, Part part) {
        const Pattern::Section& last = sections.back();
        if (const auto* constant = std::get_if<Pattern::Constant>(&last)) {
            const bool fits = hasConstant(*constant, part, true);
            return fits && matchWhole(beforeLast(sections), part.dropLast(split(constant->text).size()));
        }
        if (const auto* oneOf = std::get_if<Pattern::OneOf>(&last)) {
            if (!isOneOf(*oneOf, part.end - 1)) return false;
        } else if (isSeparator(part.end - 1)) {
            return false;
        }
        return matchWhole(beforeLast(sections), part.dropLast(1));
    }

    static bool isFixed(const Pattern::Section& section) {
        return std::holds_alternative<Pattern::Constant>(section) || std::holds_alternative<Pattern::OneOf>(section) ||
               std::holds_alternative<Pattern::SingleCharacter>(section);
    }

    bool matchWhole(const Sections& sections, Part part) {
        if (++steps_ > mostSteps) return false;
        if (part.isEmpty()) return canAllBeEmpty(sections);
        if (sections.empty()) return options_.matchLeadingDirectories && isSeparator(part.begin);
        const Pattern::Section& first = sections.front();
        if (isFixed(first)) {
            const auto rest = withoutFixed(first, part);
            return rest && matchWhole(behindFirst(sections), *rest);
        }
        if (!options_.matchLeadingDirectories && isFixed(sections.back())) return matchTrimmed(sections, part);
        if (const auto* list = std::get_if<Pattern::PatternList>(&first))
            return matchList(list->style, list->alternatives, behindFirst(sections), part) == part.end;
        const bool isComponent = std::holds_alternative<Pattern::ComponentWildcard>(first);
        if (isComponent && refusesPeriod(part.begin)) return false;
        if (sections.size() == 1)
            return !isComponent || options_.matchLeadingDirectories || firstSeparator(part) == part.end;
        return matchWhole(behindFirst(sections), part) || matchWhole(sections, part.dropFirst(1));
    }

    std::size_t firstSeparator(Part part) const {
        while (!part.isEmpty() && !isSeparator(part.begin)) ++part.begin;
        return part.begin;
    }

    Rest matchPrefix(const Sections& sections, Part part) {
        if (++steps_ > mostSteps) return std::nullopt;
        if (part.isEmpty()) return canAllBeEmpty(sections) ? Rest(part.begin) : std::nullopt;
        if (sections.empty()) return part.begin;
        const Pattern::Section& first = sections.front();
        if (isFixed(first)) {
            const auto rest = withoutFixed(first, part);
            return rest ? matchPrefix(behindFirst(sections), *rest) : std::nullopt;
        }
        if (const auto* list = std::get_if<Pattern::PatternList>(&first))
            return matchList(list->style, list->alternatives, behindFirst(sections), part);
        if (refusesPeriod(part.begin)) return std::nullopt;
        const bool isComponent = std::holds_alternative<Pattern::ComponentWildcard>(first);
        if (sections.size() == 1)
            return isComponent && !options_.matchLeadingDirectories ? firstSeparator(part) : part.end;
        if (const Rest rest = matchPrefix(behindFirst(sections), part)) return rest;
        return matchPrefix(sections, part.dropFirst(1));
    }

    Rest matchList(Style style, const std::vector<Sections>& alternatives, const Sections& rest, Part part) {
        for (const auto& alternative : alternatives) {
            const Rest found = matchPrefix(joined(alternative, rest), part);
            if (!found) continue;
            if (*found == part.begin || style == Style::zeroOrOne || style == Style::one) return found;
            if (style == Style::negated) return std::nullopt;
            const Sections again = {Pattern::PatternList{Style::zeroOrMore, alternatives}};
            return matchPrefix(joined(again, rest), {*found, part.end});
        }
        if (style == Style::oneOrMore || style == Style::one) return std::nullopt;
        if (style != Style::negated) return matchPrefix(rest, part);
        return matchPrefix(joined({Pattern::ComponentWildcard{}}, rest), part);
    }

    const Sections& sections_;
    const Pattern::Options& options_;
    std::vector<std::string> name_;
    int steps_ = 0;
};

}  // namespace brindlet
