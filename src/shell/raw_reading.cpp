#include "shell/raw_reading.h"

#include <algorithm>

#include "shell/printing.h"
#include "shell/raw_text.h"
#include "shell/scanner.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// Line ends for one shell or another, and what a user sees as one.
constexpr std::string_view lineBreaks = "\n\r\v\f";
// What ends or changes an unquoted word where no backslash stands before it.
constexpr std::string_view wordBreakers = " \t|&;()<>\"'`$";

bool isAsciiLetter(std::string_view text) {
    return text.size() == 1 && ((text[0] >= 'a' && text[0] <= 'z') || (text[0] >= 'A' && text[0] <= 'Z'));
}

bool isAsciiNameCharacter(char byte) {
    return byteClass::has(byte, byteClass::name);
}

bool endsInOpenBackslash(std::string_view text) {
    const std::size_t last = text.find_last_not_of('\\');
    const std::size_t count = text.size() - (last == std::string_view::npos ? 0 : last + 1);
    return count % 2 == 1;
}

// As a shell removes backslashes outside quotes.
std::string withoutBackslashes(std::string_view raw) {
    std::string result;
    for (std::size_t at = 0; at < raw.size(); ++at) {
        if (raw[at] == '\\' && at + 1 < raw.size()) ++at;
        result += raw[at];
    }
    return result;
}

// The first of `wanted` that has no backslash before it.
std::size_t findUnescaped(std::string_view text, std::string_view wanted) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\') {
            ++at;
        } else if (contains(wanted, text.substr(at, 1))) {
            return at;
        }
    }
    return std::string_view::npos;
}

bool hasOpenQuote(std::string_view text) {
    bool inSingle = false;
    bool inDouble = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && !inSingle) {
            ++at;
        } else if (text[at] == '\'' && !inDouble) {
            inSingle = !inSingle;
        } else if (text[at] == '"' && !inSingle) {
            inDouble = !inDouble;
        }
    }
    return inSingle || inDouble;
}

// "$(...)", "`...`" and "<(...)" in raw text, whatever quotes stand around them: which of those protect depends on
// quotes further out.
Hazard substitutionHazard(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::string_view rest = text.substr(at);
        if (rest.front() == '\\') {
            ++at;
        } else if (rest.front() == '`') {
            return hazardSentence("run", rest.substr(1, rest.substr(1).find('`')));
        } else if (rest.starts_with("$(") || rest.starts_with("<(") || rest.starts_with(">(")) {
            return hazardSentence("run", rest);
        } else if (rest.starts_with("${") || rest.starts_with("$[") || rest.starts_with("$'") ||
                   rest.starts_with("$\"")) {
            return hazardSentence("expand", rest);
        }
    }
    return std::nullopt;
}

bool areParenthesesBalanced(std::string_view text) {
    int depth = 0;
    for (const char byte : text) {
        if (byte == '(') ++depth;
        if (byte == ')' && --depth < 0) return false;
    }
    return depth == 0;
}

struct RangeEnd {
    std::size_t size = 0;
    bool isPadded = false;
};

RangeEnd rangeEnd(std::string_view number) {
    const std::string_view digits = number.starts_with('-') ? number.substr(1) : number;
    return {number.size(), digits.size() > 1 && digits.front() == '0'};
}

// bash 5.2, braces.c: a range of numbers is padded to the longer end if either has a leading zero; letters range
// within ASCII, and between the cases lie a backslash and a backtick; anything else stays literal.
bool readsAsRange(std::string_view inner) {
    const auto ends = splitUnescaped("..", inner);
    if (ends.size() != 2) return false;
    if (isAsciiLetter(ends[0]) && isAsciiLetter(ends[1])) return (ends[0][0] >= 'a') == (ends[1][0] >= 'a');
    if (!parsedInteger(ends[0]) || !parsedInteger(ends[1])) return false;
    const RangeEnd first = rangeEnd(ends[0]);
    const RangeEnd last = rangeEnd(ends[1]);
    if (!first.isPadded && !last.isPadded) return true;
    return first.isPadded && ends[0].front() == '0' && last.size <= first.size;
}

}  // namespace

std::string hazardSentence(std::string_view deed, std::string_view text) {
    constexpr std::size_t longestExcerpt = 60;
    const std::string_view start = firstCharacters(text, longestExcerpt);
    std::string excerpt(start);
    std::replace_if(
        excerpt.begin(), excerpt.end(), [](char byte) { return byte >= 0 && byte < ' '; }, ' ');
    if (start.size() < text.size()) excerpt += "…";
    return "The shell would " + std::string(deed) + " `" + excerpt + "`, which this prediction can't show.";
}

bool isShellName(std::string_view name) {
    if (name.empty() || byteClass::has(name.front(), byteClass::digit)) return false;
    return std::all_of(name.begin(), name.end(), isAsciiNameCharacter);
}

Hazard unquotedHazard(const Text& text) {
    const std::string_view raw = text.raw;
    if (raw.find_first_of(lineBreaks) != std::string_view::npos) {
        return hazardSentence("act on the line break in", raw);
    }
    if (endsInOpenBackslash(raw)) return hazardSentence("join the next text to", raw);
    if (findUnescaped(raw, wordBreakers) != std::string_view::npos) return hazardSentence("cut up the word", raw);
    // Braces that stay literal keep their backslashes in the tree and lose them in a shell.
    if (withoutBackslashes(raw) != text.value) return hazardSentence("take the backslashes out of", raw);
    return std::nullopt;
}

Hazard doubleQuotedHazard(const DoubleQuotedExpansion& quoted) {
    for (const BashWordElement& element : quoted.elements) {
        const auto* text = std::get_if<Text>(&element);
        if (!text) continue;
        if (findUnescaped(text->raw, "`") != std::string_view::npos) {
            // What stands between the backticks may go on over variables and the like.
            const std::string printed = print(BashWordElement(quoted));
            const std::string_view command = std::string_view(printed).substr(findUnescaped(printed, "`") + 1);
            return hazardSentence("run", command.substr(0, findUnescaped(command, "`")));
        }
        if (contains(text->raw, "\\\n")) return hazardSentence("join the lines of", text->raw);
    }
    return std::nullopt;
}

Hazard parameterTextHazard(std::string_view text) {
    if (auto hazard = substitutionHazard(text)) return hazard;
    if (hasOpenQuote(text) || endsInOpenBackslash(text))
        return hazardSentence("look for the end of a quote behind", text);
    return std::nullopt;
}

Hazard arithmeticHazard(std::string_view text) {
    if (auto hazard = substitutionHazard(text)) return hazard;
    if (hasOpenQuote(text) || endsInOpenBackslash(text) || !areParenthesesBalanced(text)) {
        return hazardSentence("look for the end of the arithmetic behind", text);
    }
    return std::nullopt;
}

Hazard braceHazard(const BraceExpansion& braces) {
    const std::string_view inner = braces.originalInnerText;
    if (inner.find_first_of(lineBreaks) != std::string_view::npos ||
        inner.find_first_of(wordBreakers) != std::string_view::npos || contains(inner, "\\")) {
        return hazardSentence("cut up the word", "{" + braces.originalInnerText + "}");
    }
    const bool isList = splitUnescaped(",", inner).size() > 1;
    if (!isList && !readsAsRange(inner))
        return hazardSentence("not count through", "{" + braces.originalInnerText + "}");
    return std::nullopt;
}

Hazard bareNameHazard(std::string_view name) {
    const bool isPositional = name.size() == 1 && byteClass::has(name.front(), byteClass::digit);
    if (isPositional || name == "?" || isShellName(name)) return std::nullopt;
    return hazardSentence("end the variable's name inside", std::string("$").append(name));
}

bool readsAsAssignment(const BashWord& word) {
    const auto* first = std::get_if<Text>(&word.elements.front());
    if (!first) return false;
    const std::string& raw = first->raw;
    const auto nameEnd = std::find_if_not(raw.begin(), raw.end(), isAsciiNameCharacter);
    const auto length = static_cast<std::size_t>(nameEnd - raw.begin());
    if (!isShellName(std::string_view(raw).substr(0, length))) return false;
    if (raw.compare(length, 2, "+=") == 0) return true;
    if (raw.compare(length, 1, "[") != 0) return false;
    // The subscript may hold quotes and expansions.
    const std::string printed = print(word);
    return contains(printed, "]=") || contains(printed, "]+=");
}

}  // namespace brindlet
