#include <algorithm>

#include "analysis/models/filter_support.h"
#include "analysis/models/text_filters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view acceptedFlags[] = {"r", "s", "e", "G"};

// Each single blank or tab ends a field, so that fields may be empty.
Words fieldsOf(std::string_view line) {
    return split(replacedAll(line, "\t", " "), " ");
}

// Of field `at` for all names but the last, which gets the rest.
std::string valueFor(const Words& fields, std::size_t at, bool isLast) {
    if (at >= fields.size()) return "";
    if (!isLast) return fields[at];
    return joined(Words(fields.begin() + static_cast<std::ptrdiff_t>(at), fields.end()), " ");
}

}  // namespace

CommandResult readVariables(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions({{"a", 1}, {"d", 1}, {"n", 1}, {"p", 1}, {"u", 1}, {"t", 1}});
    if (const Words unsupported = allUnsupported(taken.flags, acceptedFlags); !unsupported.empty())
        return analysis.addCommandError("Read command incorrectly written",
                                        "read: unsupported option(s): -" + joined(unsupported, ", -"));
    Words names = args.remainingArgs();
    if (names.empty()) names.emplace_back("REPLY");
    if (const auto array = taken.value("a")) refuseSubscript("read", *array);
    for (const auto& name : names) refuseSubscript("read", name);

    Words fields;
    if (input.standardInput.isKnown()) {
        const std::string& text = input.standardInput.text();
        fields = fieldsOf(std::string_view(text).substr(0, text.find('\n')));
    }
    for (std::size_t at = 0; at < names.size(); ++at)
        analysis.setVariable(names[at], valueFor(fields, at, at + 1 == names.size()));
    analysis.addSideEffect(
        {PlainSideEffect::partialSupport, "`read` command has limited support, full effects unpredictable"});
    return silentResult(true);
}

}  // namespace brindlet
