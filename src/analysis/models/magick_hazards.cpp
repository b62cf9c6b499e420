#include "analysis/models/magick_hazards.h"

#include <algorithm>

#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/image_support.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// In lower case, since MSL:x is msl:x to ImageMagick.
constexpr std::string_view magickWritingOptions[] = {"write", "script", "process"};
// Formats that run a script, and one that deletes the file that it has read; a drawing can name them too.
constexpr std::string_view actingFormats[] = {"msl", "mvg", "msvg", "ephemeral"};
// As the begin of an operand: addresses, descriptors, lists of files, the screen.
constexpr std::string_view reachingFormats[] = {"http", "https", "ftp", "fd", "vid", "x", "scan", "screenshot"};
constexpr std::string_view scriptExtensions[] = {".msl", ".mvg"};

bool isWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
}

// Whether "format:" stands anywhere in a text in lower case, as in "msl:x" or "tile:msl:x".
bool namesFormat(std::string_view text, std::string_view format) {
    for (std::size_t at = text.find(format); at != std::string_view::npos; at = text.find(format, at + 1)) {
        const std::size_t end = at + format.size();
        const bool isWhole = at == 0 || !isWordCharacter(text[at - 1]);
        if (isWhole && end < text.size() && text[end] == ':') return true;
    }
    return false;
}

bool namesAnyFormat(std::string_view text, AcceptedFlags formats) {
    return std::any_of(formats.begin(), formats.end(), [&](auto format) { return namesFormat(text, format); });
}

// `|program` or `@list`, also behind a format.
bool isProgramOrList(std::string_view operand) {
    return operand.starts_with('|') || operand.starts_with('@') || contains(operand, ":|");
}

bool reachesOut(std::string_view operand) {
    return isProgramOrList(operand) || namesAnyFormat(operand, reachingFormats) || endsInAny(operand, scriptExtensions);
}

bool isOption(std::string_view lowerCasedWord, AcceptedFlags names) {
    return (lowerCasedWord.starts_with('-') || lowerCasedWord.starts_with('+')) &&
           isAmong(lowerCasedWord.substr(1), names);
}

}  // namespace

std::vector<SideEffect> magickHazards(const std::vector<std::string>& words, const std::vector<std::string>& operands) {
    std::vector<SideEffect> found;
    const auto mayDoMore = [&](const std::string& word) {
        found.push_back({PlainSideEffect::partialSupport,
                         fmt::format("magick may do more than is shown here with {}", quotedForSentence(word))});
    };
    for (const std::string& word : words) {
        if (found.size() >= mostSentences) break;
        const std::string lower = lowercased(word);
        if (isOption(lower, magickWritingOptions))
            found.push_back(
                {PlainSideEffect::unknownFileChanges,
                 fmt::format("magick: {} may write files that aren't shown here", quotedForSentence(word))});
        if (namesAnyFormat(lower, actingFormats)) mayDoMore(word);
    }
    for (const std::string& operand : operands)
        if (found.size() < mostSentences && reachesOut(lowercased(operand))) mayDoMore(operand);
    return found;
}

bool beginsWithFormat(std::string_view name) {
    const std::string lower = lowercased(name);
    const auto end = std::find_if_not(lower.begin(), lower.end(), isWordCharacter);
    return end != lower.begin() && end != lower.end() && *end == ':';
}

}  // namespace brindlet
