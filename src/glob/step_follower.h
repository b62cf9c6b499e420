// Matching by following the steps and coming back where they don't fit. Quick for what people write, and exponential
// for what they don't: so it counts what it does and gives up.
//
//     StepFollower(window, usualEffort).matches()  // none: given up, ask RowMatcher
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "glob/window.h"

namespace brindlet::glob {

template <class Name>
class StepFollower {
  public:
    // `effort` bounds the depth of the recursion as well.
    StepFollower(const Window<Name>& window, int effort) : window_(window), effort_(effort) {}

    std::optional<bool> matches() {
        const Program& program = window_.program;
        const Step* const steps = program.steps.data();
        const Run run{steps + program.searchBegin, steps + program.searchEnd, nullptr};
        const bool isMatch = end(run, window_.begin, Reach::wholeName) == window_.end;
        if (effort_ < 0) return std::nullopt;
        return isMatch;
    }

  private:
    using Style = Pattern::PatternListStyle;
    using Place = std::size_t;
    static constexpr Place none = ~Place{0};

    // The steps [first, last) and then those of `outer`, which has some unless it is null.
    struct Run {
        const Step* first;
        const Step* last;
        const Run* outer;

        bool isEmpty() const { return first == last && !outer; }
        bool canBeEmpty() const {
            for (const Run* run = this; run; run = run->outer)
                for (const Step* step = run->first; step != run->last; ++step)
                    if (!step->canBeEmpty) return false;
            return true;
        }
    };

    // Where the run that begins at `at` ends; none if it doesn't fit. With Reach::wholeName only the window's end
    // counts.
    Place end(Run run, Place at, Reach reach) {
        for (;; ++run.first) {
            if (--effort_ < 0) return none;
            if (at == window_.end) return run.canBeEmpty() ? at : none;
            if (run.isEmpty()) return reach == Reach::anywhere ? at : endAtDirectory(at);
            if (run.first == run.last) run = *run.outer;
            const Step& step = *run.first;
            if (!step.isFixed()) break;
            if (!window_.takes(step, at)) return none;
            at += Name::length(step);
        }
        const Step& step = *run.first++;
        if (run.first == run.last && run.outer) run = *run.outer;
        if (step.isWildcard()) return endOfWildcard(step.kind, run, at, reach);
        const Place found = endOfList(step, run, at);
        return reach == Reach::anywhere || found == window_.end ? found : none;
    }

    Place endAtDirectory(Place at) const {
        return window_.program.matchesLeadingDirectories && window_.name.isSeparator(at) ? window_.end : none;
    }

    // `rest`: the steps behind the wildcard.
    Place endOfWildcard(Step::Kind kind, const Run& rest, Place at, Reach reach) {
        if (rest.isEmpty()) return endOfLastWildcard(kind, at, reach);
        for (; at < window_.end && --effort_ >= 0; ++at) {
            if (window_.stopsWildcard(kind, at, reach)) return none;
            if (rest.first->isFixed() && !window_.takes(*rest.first, at)) continue;
            if (const Place found = end(rest, at, reach); found != none || effort_ < 0) return found;
        }
        return rest.canBeEmpty() ? at : none;
    }

    Place endOfLastWildcard(Step::Kind kind, Place at, Reach reach) {
        if (window_.stopsWildcard(kind, at, reach)) return none;
        if (kind == Step::Kind::pathWildcard || window_.program.matchesLeadingDirectories) return window_.end;
        while (at < window_.end && --effort_ >= 0 && !window_.name.isSeparator(at)) ++at;
        return at == window_.end || reach == Reach::anywhere ? at : none;
    }

    // `rest`: the steps behind the list. What an alternative took together with them is taken for good: where the list
    // repeats, it and those steps have to fit once more behind it.
    Place endOfList(const Step& list, const Run& rest, Place at) {
        for (Style style = list.style;; style = Style::zeroOrMore) {
            if (at == window_.end) return rest.canBeEmpty() ? at : none;
            const Place first = endOfFirstAlternative(list, rest, at);
            if (first == none) return endWithoutAlternative(style, rest, at);
            if (first == at || style == Style::zeroOrOne || style == Style::one) return first;
            if (style == Style::negated) return none;
            at = first;
        }
    }

    Place endOfFirstAlternative(const Step& list, const Run& rest, Place at) {
        const Run* const outer = rest.isEmpty() ? nullptr : &rest;
        for (const auto& alternative : list.alternatives) {
            const Run run{alternative.data(), alternative.data() + alternative.size(), outer};
            const Place found = end(run, at, Reach::anywhere);
            if (found != none || effort_ < 0) return found;
        }
        return none;
    }

    Place endWithoutAlternative(Style style, const Run& rest, Place at) {
        switch (style) {
            case Style::zeroOrOne:
            case Style::zeroOrMore:
                return end(rest, at, Reach::anywhere);
            case Style::oneOrMore:
            case Style::one:
                return none;
            case Style::negated:
                return endOfWildcard(Step::Kind::componentWildcard, rest, at, Reach::anywhere);
        }
        return none;
    }

    const Window<Name>& window_;
    int effort_;
};

}  // namespace brindlet::glob
