// Matching in time linear in the pattern times the name, whatever the pattern; the memory is that of two rows for each
// level of nesting. It tries every place of the name, so for what people write StepFollower is faster.
//
//     RowMatcher(window).matches()
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>

#include "glob/window.h"

namespace brindlet::glob {

// A row says, for one run of steps and each place in the window, where the run ends that begins there. A step turns the
// row of the steps behind it into the row of the run that begins with it, so that going through a pattern from its end
// to its begin tries everything exactly once.
template <class Name>
class RowMatcher {
  public:
    explicit RowMatcher(const Window<Name>& window)
        : window_(window), size_(static_cast<Place>(window.end - window.begin)) {}

    bool matches() {
        const Program& program = window_.program;
        const std::size_t cells = (1 + 2 * program.listDepth) * (size_ + std::size_t{1});
        std::array<Place, 512> smallRows;
        std::unique_ptr<Place[]> largeRows;
        if (cells > smallRows.size()) largeRows = std::make_unique<Place[]>(cells);
        rows_ = largeRows ? largeRows.get() : smallRows.data();

        Reach reach = program.hasList() ? Reach::anywhere : Reach::wholeName;
        setEndsWithoutSteps(reach);
        for (std::size_t index = program.searchEnd; index > program.searchBegin; --index) {
            apply(program.steps[index - 1], 0, index == program.searchEnd, reach);
            if (index - 1 != program.firstList) continue;
            reach = Reach::wholeName;
            std::replace_if(
                row(0), row(0) + size_, [this](Place end) { return end != size_; }, none);
        }
        return row(0)[0] == size_;
    }

  private:
    using Style = Pattern::PatternListStyle;
    using Place = std::uint32_t;
    static constexpr Place none = ~Place{0};

    Place* row(std::size_t number) { return rows_ + number * (size_ + std::size_t{1}); }
    std::size_t inName(Place at) const { return window_.begin + at; }

    void setEndsWithoutSteps(Reach reach) {
        std::iota(row(0), row(0) + size_ + 1, Place{0});
        if (reach == Reach::anywhere) return;
        for (Place at = 0; at < size_; ++at) {
            const bool isDirectory = window_.program.matchesLeadingDirectories && window_.name.isSeparator(inName(at));
            row(0)[at] = isDirectory ? size_ : none;
        }
    }

    // Turns row `number` from that of the steps behind `step` into that of `step` and them. `isLast`: there are none
    // behind it. The rows from number + 1 on are free.
    void apply(const Step& step, std::size_t number, bool isLast, Reach reach) {
        if (step.kind == Step::Kind::list) return applyList(step, number, isLast);
        if (step.isWildcard()) return applyWildcard(step.kind, number, isLast, reach);
        const Place length = static_cast<Place>(Name::length(step));
        Place* const ends = row(number);
        for (Place at = 0; at <= size_; ++at) ends[at] = window_.takes(step, inName(at)) ? ends[at + length] : none;
    }

    void applyWildcard(Step::Kind kind, std::size_t number, bool isLast, Reach reach) {
        if (isLast) return applyLastWildcard(kind, number, reach);
        Place* const ends = row(number);
        for (Place at = size_; at-- > 0;) {
            if (ends[at] == none) ends[at] = ends[at + 1];
            if (window_.stopsWildcard(kind, inName(at), reach)) ends[at] = none;
        }
    }

    void applyLastWildcard(Step::Kind kind, std::size_t number, Reach reach) {
        const bool endsAtSeparator =
            kind == Step::Kind::componentWildcard && !window_.program.matchesLeadingDirectories;
        Place* const ends = row(number);
        Place end = ends[size_] = size_;
        for (Place at = size_; at-- > 0;) {
            if (endsAtSeparator && window_.name.isSeparator(inName(at))) end = reach == Reach::anywhere ? at : none;
            ends[at] = window_.stopsWildcard(kind, inName(at), reach) ? none : end;
        }
    }

    void applyList(const Step& step, std::size_t number, bool isLast) {
        findFirstEnds(step, number, isLast);
        Place* const ends = row(number);
        const Place* const firstEnds = row(number + 1);
        const Place endOfEmpty = step.canBeEmpty ? ends[size_] : none;
        if (step.style == Style::zeroOrMore || step.style == Style::oneOrMore) repeat(ends, firstEnds);
        if (step.style == Style::negated) applyWildcard(Step::Kind::componentWildcard, number, isLast, Reach::anywhere);
        for (Place at = 0; at < size_; ++at) ends[at] = chosenEnd(step.style, at, firstEnds[at], ends[at]);
        ends[size_] = endOfEmpty;
    }

    // `first` is where the first alternative that fits ends, with the steps behind the list; `other` the end by what
    // the style has in its place, or for styles that repeat the end of all repetitions.
    static Place chosenEnd(Style style, Place at, Place first, Place other) {
        switch (style) {
            case Style::zeroOrOne:
                return first != none ? first : other;
            case Style::zeroOrMore:
                return other;
            case Style::oneOrMore:
                return first != none ? other : none;
            case Style::one:
                return first;
            case Style::negated:
                return first == none ? other : first == at ? at : none;
        }
        return none;
    }

    // Row number + 1 becomes that of the list's first alternative that fits, with the steps behind the list.
    void findFirstEnds(const Step& step, std::size_t number, bool isLast) {
        Place* const firstEnds = row(number + 1);
        std::fill(firstEnds, firstEnds + size_, none);
        for (const auto& alternative : step.alternatives) {
            const Place* const ends = row(number);
            Place* const tried = row(number + 2);
            std::copy(ends, ends + size_ + 1, tried);
            for (std::size_t index = alternative.size(); index > 0; --index)
                apply(alternative[index - 1], number + 2, isLast && index == alternative.size(), Reach::anywhere);
            for (Place at = 0; at < size_; ++at)
                if (firstEnds[at] == none) firstEnds[at] = tried[at];
        }
    }

    // `ends` becomes the row of zero or more of a list. What an alternative took together with the steps behind the
    // list is taken for good: the list and those steps have to fit once more behind it.
    void repeat(Place* ends, const Place* firstEnds) const {
        for (Place at = size_; at-- > 0;) {
            const Place first = firstEnds[at];
            if (first != none) ends[at] = first == at ? at : ends[first];
        }
    }

    const Window<Name>& window_;
    Place size_;
    Place* rows_ = nullptr;
};

}  // namespace brindlet::glob
