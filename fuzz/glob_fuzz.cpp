// Any pattern against any name: no crash, and the same answer as the reference matcher wherever that one answers in
// time. The first byte chooses options ('0' the default ones), then the pattern up to a newline, then the name.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "../tests/glob/reference_matcher.h"
#include "glob/matcher.h"
#include "glob/pattern.h"
#include "glob/program.h"

namespace {

brindlet::Pattern::Options optionsFor(unsigned char choice) {
    using Pattern = brindlet::Pattern;
    choice ^= '0';
    const auto isChosen = [&](int bit) { return ((choice >> bit) & 1) != 0; };
    Pattern::Options options;
    if (isChosen(0)) options.matchLeadingDirectories = true;
    if (isChosen(1)) options.requiresExplicitLeadingPeriods = false;
    if (isChosen(2)) options.pathSeparator = isChosen(3) ? std::optional<std::string>("é") : std::nullopt;
    if (isChosen(4)) options.supportsPathLevelWildcards = false;
    if (isChosen(5)) options.emptyRangeBehavior = Pattern::EmptyRangeBehavior::allow;
    if (isChosen(6)) options.rangeNegationCharacter = Pattern::RangeNegationCharacter::caret;
    if (isChosen(7)) options.supportsEscapedCharacters = false;
    return options;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t newline = std::min(input.find('\n', 1), input.size());
    const std::string_view text = input.substr(1, newline - 1);
    const std::string_view name = input.substr(std::min(newline + 1, input.size()));
    try {
        const brindlet::Pattern pattern(text, optionsFor(data[0]));
        const bool isMatch = pattern.match(name);
        // Without any searching step by step, so that the linear way is judged too.
        const auto program = brindlet::glob::compiled(pattern.sections(), pattern.options());
        if (brindlet::glob::matches(program, name, 0) != isMatch) std::abort();
        if (text.size() > 40 || name.size() > 20) return 0;
        const auto expected = brindlet::ReferenceMatcher(pattern, name).match();
        if (expected && *expected != isMatch) std::abort();
    } catch (const brindlet::InvalidPatternError&) {
    }
    return 0;
}
