// The part of a name that is still to be matched. The matchers share it: what a single fixed step takes is the same for
// all of them.
//
//     window.takes(step, at)
#pragma once

#include <cstddef>

#include "glob/program.h"

namespace brindlet::glob {

// Whether the end of a run of steps must also be the end of the name: so at the top level of a pattern up to its first
// list. Within lists and behind them a run may end anywhere.
enum class Reach { wholeName, anywhere };

template <class Name>
struct Window {
    const Program& program;
    const Name& name;
    std::size_t begin, end;

    // A leading period stands first in the whole name or right behind a separator.
    bool isRefusedPeriod(std::size_t at) const {
        return name.isPeriod(at) && program.refusesLeadingPeriods && (at == 0 || name.isSeparator(at - 1));
    }

    bool stopsWildcard(Step::Kind kind, std::size_t at, Reach reach) const {
        return (kind == Step::Kind::componentWildcard || reach == Reach::anywhere) && isRefusedPeriod(at);
    }

    // Without a look at leading periods. The step must not be longer than what follows `at`.
    bool fits(const Step& step, std::size_t at) const {
        switch (step.kind) {
            case Step::Kind::constant:
                return name.hasConstant(step, at);
            case Step::Kind::oneOf:
                return name.isInSet(step, at);
            default:
                return !name.isSeparator(at);
        }
    }

    bool takes(const Step& step, std::size_t at) const {
        if (end - at < Name::length(step) || !fits(step, at)) return false;
        return step.kind == Step::Kind::constant || !isRefusedPeriod(at);
    }
};

}  // namespace brindlet::glob
