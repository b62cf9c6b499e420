#include "analysis/doubts.h"

#include <fnmatch.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "shell/printing.h"
#include "text/overloaded.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// bash 5.2, "Shell Variables": set by the shell itself, whatever the environment holds.
constexpr std::string_view shellOwnVariables[] = {
    "0",
    "BASH",
    "BASHOPTS",
    "BASHPID",
    "BASH_COMMAND",
    "BASH_VERSION",
    "COLUMNS",
    "COMP_WORDBREAKS",
    "DIRSTACK",
    "EPOCHREALTIME",
    "EPOCHSECONDS",
    "EUID",
    "FUNCNAME",
    "GROUPS",
    "HOSTNAME",
    "HOSTTYPE",
    "IFS",
    "LINENO",
    "LINES",
    "MACHTYPE",
    "OPTERR",
    "OPTIND",
    "OSTYPE",
    "PIPESTATUS",
    "PPID",
    "PS4",
    "RANDOM",
    "SECONDS",
    "SHELLOPTS",
    "SHLVL",
    "SRANDOM",
    "UID",
    "_",
};

// bash 5.2, "Shell Variables", and ld.so(8).
constexpr std::string_view steeringVariables[] = {
    "BASHOPTS", "BASH_COMPAT",     "BASH_ENV",   "ENV",  "GLOBIGNORE",      "HOME", "IFS",
    "LD_AUDIT", "LD_LIBRARY_PATH", "LD_PRELOAD", "PATH", "POSIXLY_CORRECT", "PWD",  "SHELLOPTS",
};

template <std::size_t count>
bool isOneOf(std::string_view text, const std::string_view (&table)[count]) {
    return std::find(std::begin(table), std::end(table), text) != std::end(table);
}

std::string mayMatchMore(std::string_view token) {
    return quotedForSentence(token) + " may match files that this prediction doesn't see";
}

std::string mayMeanOther(std::string_view text) {
    return quotedForSentence(text) + " may stand for something else than this prediction shows";
}

struct TokenShape {
    bool hasUnquotedWildcard = false;
    bool hasQuote = false;
    bool hasBackslash = false;
};

TokenShape shapeOf(std::string_view token) {
    TokenShape shape;
    bool inSingle = false, inDouble = false;
    for (char c : token) {
        if (c == '"' && !inSingle) inDouble = !inDouble;
        if (c == '\'' && !inDouble) inSingle = !inSingle;
        shape.hasQuote = shape.hasQuote || c == '"' || c == '\'';
        shape.hasBackslash = shape.hasBackslash || c == '\\';
        if (!inSingle && !inDouble && (c == '*' || c == '?' || c == '[')) shape.hasUnquotedWildcard = true;
    }
    return shape;
}

// The pattern or text of an operation as written, and whether it is a pattern that is removed.
struct RawOperation {
    std::string text;
    enum class Kind { plain, removal, replacement } kind = Kind::plain;
    bool fromStart = false, longest = false;
};

RawOperation rawOperation(const ParameterOperation& operation) {
    using Kind = RawOperation::Kind;
    const auto plain = [](const std::string& text) { return RawOperation{text}; };
    const auto replacement = [](const auto& replace) {
        return RawOperation{replace.pattern + replace.replacement, Kind::replacement};
    };
    const ParameterOperation::variant& cases = operation;
    return std::visit(Overloaded{
                          [](const RemoveShortestMatchEnd& remove) {
                              return RawOperation{remove.pattern, Kind::removal, false, false};
                          },
                          [](const RemoveLongestMatchEnd& remove) {
                              return RawOperation{remove.pattern, Kind::removal, false, true};
                          },
                          [](const RemoveShortestMatchStart& remove) {
                              return RawOperation{remove.pattern, Kind::removal, true, false};
                          },
                          [](const RemoveLongestMatchStart& remove) {
                              return RawOperation{remove.pattern, Kind::removal, true, true};
                          },
                          [&](const DefaultIfEmpty& use) { return plain(use.text); },
                          [&](const DefaultSetIfEmpty& use) { return plain(use.text); },
                          [&](const DefaultIfNonEmpty& use) { return plain(use.text); },
                          [&](const ErrorIfEmpty& use) { return plain(use.text); },
                          [&](const ReplaceFirst& replace) { return replacement(replace); },
                          [&](const ReplaceAll& replace) { return replacement(replace); },
                          [&](const ReplaceAtStart& replace) { return replacement(replace); },
                          [&](const ReplaceAtEnd& replace) { return replacement(replace); },
                          [](const Substring&) { return RawOperation{}; },
                          [](const Length&) { return RawOperation{}; },
                          [](const Upper&) { return RawOperation{}; },
                          [](const Lower&) { return RawOperation{}; },
                          [](const UpperFirstChar&) { return RawOperation{}; },
                          [](const LowerFirstChar&) { return RawOperation{}; },
                      },
                      cases);
}

// What a shell makes of a removal: the pattern matches slashes and leading points like anything else.
std::string shellRemoval(const RawOperation& raw, std::string_view value) {
    const std::size_t size = value.size();
    for (std::size_t step = 0; step <= size; ++step) {
        const std::size_t length = raw.longest ? size - step : step;
        const std::string piece(raw.fromStart ? value.substr(0, length) : value.substr(size - length));
        if (fnmatch(raw.text.c_str(), piece.c_str(), 0) == 0)
            return std::string(raw.fromStart ? value.substr(length) : value.substr(0, size - length));
    }
    return std::string(value);
}

// Long enough for any path; past it the comparison would cost more than it tells.
constexpr std::size_t longestComparedValue = 4096;

bool isIdentifier(std::string_view name) {
    if (name.empty() || (name[0] >= '0' && name[0] <= '9')) return false;
    return std::all_of(name.begin(), name.end(), [](unsigned char c) {
        return c >= 0x80 || c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
}

bool isPositional(std::string_view name) {
    if (name == "@" || name == "*" || name == "?" || name == "#" || name.empty()) return true;
    return name != "0" && std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void Doubts::raise(std::string sentence) {
    raised_.push_back(std::move(sentence));
}

void Doubts::raiseForEscapes(std::string sentence) {
    raise(std::move(sentence));
    ++raisedForEscapes_;
}

std::vector<std::string> Doubts::take() {
    raisedForEscapes_ = 0;
    return std::exchange(raised_, {});
}

void Doubts::taint(std::string_view variable, std::vector<std::string> sentences) {
    if (!sentences.empty()) variables_.insert_or_assign(std::string(variable), std::move(sentences));
}

void Doubts::trust(std::string_view variable) {
    if (auto known = variables_.find(variable); known != variables_.end()) variables_.erase(known);
}

void Doubts::raiseFor(std::string_view variable) {
    if (auto known = variables_.find(variable); known != variables_.end())
        raised_.insert(raised_.end(), known->second.begin(), known->second.end());
}

void Doubts::raiseForTheRest(std::string sentence) {
    if (std::find(forTheRest_.begin(), forTheRest_.end(), sentence) == forTheRest_.end())
        forTheRest_.push_back(std::move(sentence));
}

std::optional<std::string> globDoubt(std::string_view token) {
    const TokenShape shape = shapeOf(token);
    if (!shape.hasUnquotedWildcard) return std::nullopt;
    // "[]a]" and "[^a]" are sets for a shell, a negated one the second.
    const bool isReadDifferently = contains(token, "[]") || contains(token, "[^") || contains(token, "[!]");
    if (shape.hasQuote || shape.hasBackslash || isReadDifferently || contains(token, "/")) return mayMatchMore(token);
    return std::nullopt;
}

std::optional<std::string> escapeDoubt(const Text& text, bool isInDoubleQuotes) {
    if (text.value == text.raw) return std::nullopt;
    const std::string_view harmless = isInDoubleQuotes ? "$`" : "$`(){};&|<>!#,:=+-@%^~./*?[]";
    for (std::size_t at = text.raw.find('\\'); at != std::string::npos; at = text.raw.find('\\', at + 2)) {
        if (at + 1 < text.raw.size() && harmless.find(text.raw[at + 1]) == std::string_view::npos)
            return mayMeanOther(isInDoubleQuotes ? '"' + text.raw + '"' : text.raw);
    }
    return std::nullopt;
}

std::optional<std::string> valueDoubt(std::string_view value, std::string_view source, bool isInDoubleQuotes) {
    if (!isInDoubleQuotes)
        return value.find_first_of("\"'\\") == std::string_view::npos ? std::nullopt
                                                                      : std::optional(mayMeanOther(source));
    if (contains(value, "\"")) return mayMeanOther(source);
    for (std::size_t at = value.find('\\'); at != std::string_view::npos; at = value.find('\\', at + 1))
        if (at + 1 == value.size() || std::string_view("\"$`\\\n").find(value[at + 1]) != std::string_view::npos)
            return mayMeanOther(source);
    return std::nullopt;
}

std::optional<std::string> operationDoubt(const std::string& name, const ParameterOperation& operation,
                                          std::string_view value, std::string_view result) {
    const RawOperation raw = rawOperation(operation);
    const auto doubt = [&] { return std::optional(mayMeanOther("${" + name + print(operation) + "}")); };
    if (raw.text.find_first_of("$\"'\\~") != std::string::npos) return doubt();
    const bool isPlain = raw.text.find_first_of("*?[") == std::string::npos;
    if (raw.kind == RawOperation::Kind::removal && !isPlain && value.size() <= longestComparedValue &&
        shellRemoval(raw, value) != result)
        return doubt();
    // A shell reads brackets as a set, and "&" in a replacement as what was matched (bash 5.2, patsub_replacement).
    if (raw.kind == RawOperation::Kind::replacement && raw.text.find_first_of("[&") != std::string::npos)
        return doubt();
    if (const auto* cut = std::get_if<Substring>(&operation); cut != nullptr && cut->length && *cut->length < 0)
        return doubt();
    return std::nullopt;
}

std::optional<std::string> nameDoubt(std::string_view name, bool isSet) {
    const bool isUnderstood = isPositional(name) || (isIdentifier(name) && !isOneOf(name, shellOwnVariables));
    if (isSet || isUnderstood) return std::nullopt;
    return "The shell gives '${" + std::string(name) + "}' a value that this prediction doesn't know";
}

bool steersTheShell(std::string_view variable) {
    return isOneOf(variable, steeringVariables);
}

std::string quotedForSentence(std::string_view text) {
    constexpr std::size_t longest = 200;
    if (text.size() <= longest) return "'" + std::string(text) + "'";
    return "'" + std::string(text.substr(0, longest)) + "…'";
}

}  // namespace brindlet
