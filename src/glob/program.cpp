#include "glob/program.h"

#include <algorithm>

#include "glob/character_class.h"
#include "text/character_properties.h"
#include "text/characters.h"
#include "text/overloaded.h"

namespace brindlet::glob {

namespace {

using Style = Pattern::PatternListStyle;

std::vector<Step> compiledSteps(const std::vector<Pattern::Section>& sections);

bool canAllBeEmpty(const std::vector<Step>& steps) {
    return std::all_of(steps.begin(), steps.end(), [](const Step& step) { return step.canBeEmpty; });
}

Step compiledConstant(const Pattern::Constant& constant) {
    Step step;
    step.kind = Step::Kind::constant;
    step.text = composed(constant.text);
    step.characterCount = characterCount(step.text);
    return step;
}

Pattern::CharacterClass canonical(const Pattern::CharacterClass& characterClass) {
    const auto* range = std::get_if<Pattern::Range>(&characterClass);
    if (!range) return characterClass;
    return Pattern::Range{composed(range->lower), composed(range->upper)};
}

void insertAscii(AsciiSet& set, const Pattern::CharacterClass& characterClass) {
    unsigned char first = 0, last = 127;
    const auto* range = std::get_if<Pattern::Range>(&characterClass);
    if (range && range->lower.size() == 1 && range->upper.size() == 1) {
        first = std::min<unsigned char>(static_cast<unsigned char>(range->lower.front()), 128);
        last = std::min<unsigned char>(static_cast<unsigned char>(range->upper.front()), last);
    }
    for (unsigned char code = first; code <= last; ++code) {
        const char character = static_cast<char>(code);
        if (isInClass({&character, 1}, characterClass)) set.insert(code);
    }
}

Step compiledOneOf(const Pattern::OneOf& section) {
    Step step;
    step.kind = Step::Kind::oneOf;
    step.isNegated = section.isNegated;
    for (const auto& characterClass : section.classes) {
        step.classes.push_back(canonical(characterClass));
        insertAscii(step.asciiSet, step.classes.back());
    }
    if (section.isNegated) step.asciiSet.negate();
    return step;
}

Step compiledList(const Pattern::PatternList& list) {
    Step step;
    step.kind = Step::Kind::list;
    step.style = list.style;
    for (const auto& alternative : list.alternatives) step.alternatives.push_back(compiledSteps(alternative));
    const bool isOptional =
        list.style == Style::zeroOrOne || list.style == Style::zeroOrMore || list.style == Style::negated;
    step.canBeEmpty = isOptional || std::any_of(step.alternatives.begin(), step.alternatives.end(), canAllBeEmpty);
    return step;
}

Step emptyStep(Step::Kind kind) {
    Step step;
    step.kind = kind;
    step.canBeEmpty = step.isWildcard();
    return step;
}

Step compiledStep(const Pattern::Section& section) {
    using StepKind = Step::Kind;
    return std::visit(
        Overloaded{[](const Pattern::Constant& constant) { return compiledConstant(constant); },
                   [](const Pattern::OneOf& oneOf) { return compiledOneOf(oneOf); },
                   [](const Pattern::PatternList& list) { return compiledList(list); },
                   [](const Pattern::ComponentWildcard&) { return emptyStep(StepKind::componentWildcard); },
                   [](const Pattern::PathWildcard&) { return emptyStep(StepKind::pathWildcard); },
                   [](const Pattern::SingleCharacter&) { return emptyStep(StepKind::single); }},
        section);
}

std::vector<Step> compiledSteps(const std::vector<Pattern::Section>& sections) {
    std::vector<Step> steps;
    steps.reserve(sections.size());
    for (const auto& section : sections) steps.push_back(compiledStep(section));
    return steps;
}

std::size_t listDepth(const std::vector<Step>& steps) {
    std::size_t depth = 0;
    for (const Step& step : steps) {
        if (step.kind != Step::Kind::list) continue;
        depth = std::max<std::size_t>(depth, 1);
        for (const auto& alternative : step.alternatives) depth = std::max(depth, 1 + listDepth(alternative));
    }
    return depth;
}

void findSearchedPart(Program& program) {
    const auto& steps = program.steps;
    const auto isSearched = [](const Step& step) { return !step.isFixed(); };
    const auto begin = std::find_if(steps.begin(), steps.end(), isSearched);
    const auto end = program.matchesLeadingDirectories
                         ? steps.end()
                         : std::find_if(steps.rbegin(), std::make_reverse_iterator(begin), isSearched).base();
    program.searchBegin = static_cast<std::size_t>(begin - steps.begin());
    program.searchEnd = static_cast<std::size_t>(end - steps.begin());
    program.canSearchedBeEmpty = std::all_of(begin, end, [](const Step& step) { return step.canBeEmpty; });
}

}  // namespace

Program compiled(const std::vector<Pattern::Section>& sections, const Pattern::Options& options) {
    Program program;
    program.steps = compiledSteps(sections);
    program.separator = composed(options.pathSeparator.value_or(""));
    program.refusesLeadingPeriods = options.requiresExplicitLeadingPeriods;
    program.matchesLeadingDirectories = options.matchLeadingDirectories;
    findSearchedPart(program);
    const auto list = std::find_if(program.steps.begin(), program.steps.end(),
                                   [](const Step& step) { return step.kind == Step::Kind::list; });
    program.firstList = static_cast<std::size_t>(list - program.steps.begin());
    program.listDepth = listDepth(program.steps);
    return program;
}

}  // namespace brindlet::glob
