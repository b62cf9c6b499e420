#include "glob/matcher.h"

#include <cstddef>

#include "glob/name.h"
#include "glob/row_matcher.h"
#include "glob/step_follower.h"
#include "glob/window.h"

namespace brindlet::glob {

namespace {

template <class Name>
bool takesFixedBegin(Window<Name>& window) {
    for (std::size_t index = 0; index < window.program.searchBegin; ++index) {
        const Step& step = window.program.steps[index];
        if (!window.takes(step, window.begin)) return false;
        window.begin += Name::length(step);
    }
    return true;
}

// No leading period is refused here.
template <class Name>
bool takesFixedEnd(Window<Name>& window) {
    for (std::size_t index = window.program.steps.size(); index > window.program.searchEnd; --index) {
        const Step& step = window.program.steps[index - 1];
        const std::size_t length = Name::length(step);
        if (window.end - window.begin < length || !window.fits(step, window.end - length)) return false;
        window.end -= length;
    }
    return true;
}

// Behind the first place from `at` on where the fixed steps [first, last) fit; past the end if there is none.
template <class Name>
std::size_t endOfFirst(const Window<Name>& window, const Step* first, const Step* last, std::size_t at) {
    const bool isConstant = first->kind == Step::Kind::constant;
    for (; at < window.end; ++at) {
        if (isConstant) at = window.name.find(*first, at, window.end);
        if (at == window.end || (!isConstant && !window.takes(*first, at))) continue;
        std::size_t next = at + Name::length(*first);
        const Step* step = first + 1;
        for (; step != last && window.takes(*step, next); ++step) next += Name::length(*step);
        if (step == last) return next;
    }
    return window.end + 1;
}

// For wildcards and fixed steps in a name without separators: there wildcards are all alike once they have begun, so
// the first place where the steps between two of them fit is as good as any other.
template <class Name>
bool matchesGreedily(const Window<Name>& window) {
    const Step* step = window.program.steps.data() + window.program.searchBegin;
    const Step* const last = window.program.steps.data() + window.program.searchEnd;
    std::size_t at = window.begin;
    if (window.stopsWildcard(step->kind, at, Reach::wholeName)) return false;
    while (++step != last) {
        const Step* const first = step;
        while (!step->isWildcard()) ++step;
        at = endOfFirst(window, first, step, at);
        if (at > window.end) return false;
    }
    return true;
}

template <class Name>
bool matchesName(const Program& program, const Name& name, int effort) {
    Window<Name> window{program, name, 0, name.size()};
    if (!takesFixedBegin(window)) return false;
    const bool isEmpty = window.begin == window.end;
    if (program.searchBegin == program.steps.size())
        return isEmpty || (program.matchesLeadingDirectories && name.isSeparator(window.begin));
    if (!takesFixedEnd(window)) return false;
    if (window.begin == window.end) return program.canSearchedBeEmpty;
    if (!program.hasList() && !program.matchesLeadingDirectories && !name.hasSeparator())
        return matchesGreedily(window);
    if (const auto isMatch = StepFollower(window, effort).matches()) return *isMatch;
    return RowMatcher(window).matches();
}

}  // namespace

bool matches(const Program& program, std::string_view name, int effort) {
    if (const auto plain = PlainName::from(program, name)) return matchesName(program, *plain, effort);
    return matchesName(program, CharacterName(program, name), effort);
}

}  // namespace brindlet::glob
