// Words become argument strings: expanded to text that still carries its quotes, joined by blanks, split again by a
// small quote-aware tokenizer, globbed, and unquoted. Word splitting of values falls out of the second splitting, and a
// quote keeps a wildcard from matching because it is still in the token when the pattern is tried.
#include <algorithm>
#include <cstdlib>
#include <unordered_set>

#include "analysis/basher_analysis.h"
#include "analysis/own_process.h"
#include "glob/pattern.h"
#include "platform/log.h"
#include "shell/printing.h"
#include "text/characters.h"
#include "text/overloaded.h"
#include "text/regex.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

using ErrorKind = BasherAnalysisError::Kind;

// Its value holds quotes by design.
constexpr std::string_view quotedFilesVariable = "SPACE_SEPARATED_FILE_NAMES";
constexpr std::string_view processSubstitutionName = "/tmp/fake-file-name-for-simulated-process-substitution";

// Removing a match tries every prefix or suffix in turn, so a long value is refused rather than waited for.
constexpr std::size_t longestMatchedValue = 8'192;

// The default value of IFS (bash 5.2, "Word Splitting").
bool splitsWords(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

std::vector<std::string> tokenized(std::string_view text) {
    std::vector<std::string> tokens;
    std::string token;
    bool inSingle = false, inDouble = false;
    for (const char c : text) {
        if (!inSingle && !inDouble && splitsWords(c)) {
            if (!token.empty()) tokens.push_back(std::exchange(token, {}));
            continue;
        }
        token += c;
        if (c == '"' && !inSingle) inDouble = !inDouble;
        if (c == '\'' && !inDouble) inSingle = !inSingle;
    }
    if (!token.empty()) tokens.push_back(std::move(token));
    return tokens;
}

std::string unquoted(const std::string& token) {
    if (token.find_first_of("\"'\\") == std::string::npos) return token;
    std::string text;
    bool inSingle = false, inDouble = false;
    for (std::size_t at = 0; at < token.size(); ++at) {
        const char c = token[at];
        if (c == '\'' && !inDouble) {
            inSingle = !inSingle;
        } else if (c == '"' && !inSingle) {
            inDouble = !inDouble;
        } else if (c == '\\' && !inSingle && at + 1 < token.size()) {
            const char next = token[at + 1];
            if (inDouble && std::string_view("\"$`\\\n").find(next) == std::string_view::npos) {
                text += c;
            } else {
                text += next;
                ++at;
            }
        } else {
            text += c;
        }
    }
    return text;
}

bool hasBraces(const BashWord& word) {
    return std::any_of(word.elements.begin(), word.elements.end(),
                       [](const auto& element) { return std::holds_alternative<BraceExpansion>(element); });
}

// An escaped wildcard is a plain character for a shell, and a wildcard once its backslash is gone.
bool hasEscapedWildcard(const BashWord& word) {
    return std::any_of(word.elements.begin(), word.elements.end(), [](const auto& element) {
        const auto* text = std::get_if<Text>(&element);
        return text != nullptr &&
               (contains(text->raw, "\\*") || contains(text->raw, "\\?") || contains(text->raw, "\\["));
    });
}

bool mayBePattern(std::string_view token) {
    return token.find_first_of("*?[(") != std::string_view::npos;
}

// A pattern's text with nothing but "*" and "?" left special, as a regular expression.
std::string regexOf(std::string_view pattern) {
    std::string regex;
    for (const char c : pattern) {
        if (std::string_view("\\.^$+{}[]()|").find(c) != std::string_view::npos) regex += '\\';
        if (c == '*') regex += '.';
        regex += c == '?' ? '.' : c;
    }
    return regex;
}

Pattern patternOf(const std::string& text) {
    try {
        return Pattern(text);
    } catch (const InvalidPatternError& error) {
        throw BasherAnalysisFailure{error.what()};
    }
}

enum class End { start, end };
enum class MatchLength { shortest, longest };

std::string withoutMatch(const std::string& value, const std::string& patternText, End end, MatchLength wanted) {
    const Pattern pattern = patternOf(patternText);
    if (value.empty()) return value;
    // Plain text, as in ${name%.jpg}, needs no trying out where every byte is a character.
    if (pattern.isConstant() && asciiRunLength(value, 0) == value.size() && !contains(value, "\r")) {
        const std::string& text = std::get<Pattern::Constant>(pattern.sections().front()).text;
        const std::size_t kept = value.size() - std::min(text.size(), value.size());
        if (end == End::start) return value.starts_with(text) ? value.substr(text.size()) : value;
        return value.ends_with(text) ? value.substr(0, kept) : value;
    }
    if (value.size() > longestMatchedValue)
        throw BasherAnalysisError{ErrorKind::simulationError, "The line makes a text that is too long to simulate"};
    // Byte offsets of the cuts, from the shortest piece to the longest.
    std::vector<std::size_t> lengths{0};
    const auto all = characters(value);
    const auto grow = [&](std::string_view character) { lengths.push_back(lengths.back() + character.size()); };
    if (end == End::start) std::for_each(all.begin(), all.end(), grow);
    if (end == End::end) std::for_each(all.rbegin(), all.rend(), grow);
    if (wanted == MatchLength::longest) std::reverse(lengths.begin(), lengths.end());
    const std::string_view text = value;
    for (const std::size_t length : lengths) {
        const std::size_t cut = end == End::start ? length : text.size() - length;
        const auto piece = end == End::start ? text.substr(0, cut) : text.substr(cut);
        if (pattern.match(piece)) return std::string(end == End::start ? text.substr(cut) : text.substr(0, cut));
    }
    return value;
}

std::string substringOf(const std::string& value, const Substring& cut) {
    const auto all = characters(value);
    const auto count = static_cast<std::int64_t>(all.size());
    const std::int64_t offset = cut.offset < 0 ? cut.offset + count : cut.offset;
    if (offset < 0 || offset >= count || (cut.length && *cut.length < 1)) return "";
    const std::int64_t length = cut.length ? std::min(*cut.length, count - offset) : count - offset;
    std::string text;
    for (std::int64_t at = offset; at < offset + length; ++at) text += all[static_cast<std::size_t>(at)];
    return text;
}

std::string withFirst(const std::string& value, std::string (*change)(std::string_view)) {
    if (value.empty()) return value;
    const std::size_t first = characterLength(value, 0);
    return change(std::string_view(value).substr(0, first)) + value.substr(first);
}

}  // namespace

std::optional<std::vector<std::string>> BasherAnalysis::expandWords(const std::vector<BashWord>& words) {
    return expandedTokens(words, " ");
}

std::optional<std::string> BasherAnalysis::expandWord(const BashWord& word) {
    const auto all = expandWords({word});
    if (!all || all->empty() || all->front().empty()) return std::nullopt;
    return all->front();
}

std::optional<std::vector<std::string>> BasherAnalysis::expandedTokens(const std::vector<BashWord>& words,
                                                                       std::string_view separator) {
    std::string joinedText;
    bool isFirst = true, isKnown = true, hasEscapedWildcards = false;
    const auto append = [&](const BashWord& word) {
        if (!std::exchange(isFirst, false)) joinedText += separator;
        hasEscapedWildcards = hasEscapedWildcards || hasEscapedWildcard(word);
        if (auto text = expandElements(word.elements, false))
            joinedText += *text;
        else
            isKnown = false;
        checkSize(joinedText.size());
    };
    for (const auto& word : words) {
        if (!hasBraces(word)) {
            append(word);
            continue;
        }
        for (const auto& variant : braceVariants(word)) append(variant);
    }
    if (!isKnown) return std::nullopt;
    if ((state_->bytesExpanded += joinedText.size()) > services_.limits.textBytesInAll) checkSize(std::string::npos);

    std::vector<std::string> results;
    for (auto& token : tokenized(joinedText)) {
        if (!mayBePattern(token)) {
            results.push_back(unquoted(token));
            continue;
        }
        const auto names = expandGlob(token);
        if (hasEscapedWildcards && (names.size() != 1 || names.front() != token))
            state_->doubts.raise(quotedForSentence(token) + " may stand for something else than this prediction shows");
        for (const auto& name : names) results.push_back(unquoted(name));
        if (results.size() > services_.limits.words) checkSize(std::string::npos);
    }
    return results;
}

// Counted like an odometer whose first brace turns fastest.
std::vector<BashWord> BasherAnalysis::braceVariants(const BashWord& word) const {
    std::size_t count = 1;
    for (const auto& element : word.elements)
        if (const auto* braces = std::get_if<BraceExpansion>(&element)) {
            count *= braces->elements.size();
            if (count > services_.limits.words)
                throw BasherAnalysisError{ErrorKind::simulationError, "The braces make too many words to simulate"};
        }
    std::vector<BashWord> variants(count, word);
    std::size_t stride = 1;
    for (std::size_t at = 0; at < word.elements.size(); ++at) {
        const auto* braces = std::get_if<BraceExpansion>(&word.elements[at]);
        if (braces == nullptr) continue;
        for (std::size_t variant = 0; variant < count; ++variant) {
            const auto& chosen = braces->elements[(variant / stride) % braces->elements.size()];
            variants[variant].elements[at] = Text{chosen, chosen};
        }
        stride *= braces->elements.size();
    }
    return variants;
}

std::optional<std::string> BasherAnalysis::expandElement(const BashWordElement& element) {
    return expandElement(element, false);
}

std::optional<std::string> BasherAnalysis::expandElements(const std::vector<BashWordElement>& elements,
                                                          bool isInDoubleQuotes) {
    std::optional<std::string> text("");
    for (const auto& element : elements) {
        const auto piece = expandElement(element, isInDoubleQuotes);
        if (piece && text) *text += *piece;
        if (!piece) text.reset();
        if (text) checkSize(text->size());
    }
    return text;
}

std::optional<std::string> BasherAnalysis::expandElement(const BashWordElement& element, bool isInDoubleQuotes) {
    using Expanded = std::optional<std::string>;
    auto& doubts = state_->doubts;
    const auto doubtful = [&](std::string value, const auto& source) -> Expanded {
        if (value.find_first_of("\"'\\") != std::string::npos)
            if (auto doubt = valueDoubt(value, source(), isInDoubleQuotes)) doubts.raise(std::move(*doubt));
        return value;
    };
    const BashWordElement::variant& cases = element;
    return std::visit(
        Overloaded{
            [&](const Text& text) -> Expanded {
                if (text.raw.size() != text.value.size())
                    if (auto doubt = escapeDoubt(text, isInDoubleQuotes)) doubts.raiseForEscapes(std::move(*doubt));
                return text.value;
            },
            [&](const CommandSubstitution& substitution) -> Expanded {
                return expandSubstitution(substitution.pipeline, isInDoubleQuotes);
            },
            [&](const ProcessSubstitution& substitution) -> Expanded {
                BashPipeline pipeline;
                pipeline.components.emplace_back(substitution.command);
                (void)runPipeline(pipeline, SimString::known(""));
                return std::string(processSubstitutionName);
            },
            [&](const DoubleQuotedExpansion& quoted) -> Expanded {
                auto inner = expandElements(quoted.elements, true);
                if (!inner) return std::nullopt;
                return '"' + *inner + '"';
            },
            [&](const SingleQuotedText& quoted) -> Expanded { return '\'' + quoted.text + '\''; },
            [&](const VariableReference& reference) -> Expanded { return expandVariable(reference, isInDoubleQuotes); },
            [&](const ArithmeticExpansion& arithmetic) -> Expanded {
                return evaluateArithmetic(arithmetic.text).value;
            },
            [&](const ParameterExpansion& expansion) -> Expanded {
                return doubtful(expandParameter(expansion.name, expansion.operation), [&] { return print(element); });
            },
            [](const BraceExpansion&) -> Expanded {
                std::fputs("Brace expansion should've already been done by this point\n", stderr);
                std::abort();
            },
        },
        cases);
}

std::string BasherAnalysis::expandVariable(const VariableReference& reference, bool isInDoubleQuotes) {
    auto& doubts = state_->doubts;
    const auto value = variable(reference.name);
    doubts.raiseFor(reference.name);
    if (!value)
        if (auto doubt = nameDoubt(reference.name, false)) doubts.raise(std::move(*doubt));
    if (value && reference.name != quotedFilesVariable && value->find_first_of("\"'\\") != std::string::npos)
        if (auto doubt = valueDoubt(*value, "$" + reference.name, isInDoubleQuotes)) doubts.raise(std::move(*doubt));
    return value.value_or("");
}

std::optional<std::string> BasherAnalysis::expandSubstitution(const BashPipeline& pipeline, bool isInDoubleQuotes) {
    auto& doubts = state_->doubts;
    auto outer = doubts.take();
    carriedDoubts_.clear();
    CommandResult result;
    {
        OwnProcess process(*this);
        result = runPipeline(pipeline, SimString::known(""));
    }
    doubts.take();
    for (auto& sentence : outer) doubts.raise(std::move(sentence));
    for (auto& sentence : carriedDoubts_) doubts.raise(std::move(sentence));
    carriedDoubts_.clear();
    if (!result.output.isKnown()) return std::nullopt;
    std::string text(trimmedNewlines(result.output.text()));
    if (auto doubt = valueDoubt(text, "$(" + print(pipeline) + ")", isInDoubleQuotes)) doubts.raise(std::move(*doubt));
    return text;
}

std::string BasherAnalysis::expandParameter(const std::string& name, const ParameterOperation& operation) {
    const std::string value = variable(name).value_or("");
    const auto replacedAllBy = [&](const std::string& regex, const std::string& replacement) {
        return Regex(regex).replacedAll(value, replacement);
    };
    const ParameterOperation::variant& cases = operation;
    std::string result = std::visit(
        Overloaded{
            [&](const RemoveShortestMatchEnd& remove) {
                return withoutMatch(value, remove.pattern, End::end, MatchLength::shortest);
            },
            [&](const RemoveLongestMatchEnd& remove) {
                return withoutMatch(value, remove.pattern, End::end, MatchLength::longest);
            },
            [&](const RemoveShortestMatchStart& remove) {
                return withoutMatch(value, remove.pattern, End::start, MatchLength::shortest);
            },
            [&](const RemoveLongestMatchStart& remove) {
                return withoutMatch(value, remove.pattern, End::start, MatchLength::longest);
            },
            [&](const Substring& cut) { return substringOf(value, cut); },
            [&](const DefaultIfEmpty& use) { return value.empty() ? use.text : value; },
            [&](const DefaultSetIfEmpty& use) {
                if (!value.empty()) return value;
                setVariable(name, use.text);
                return use.text;
            },
            [&](const DefaultIfNonEmpty& use) { return value.empty() ? value : use.text; },
            [&](const ErrorIfEmpty& use) {
                if (value.empty()) throw BasherAnalysisExpansionError{use.text};
                return value;
            },
            [&](const ReplaceFirst& replace) {
                return Regex(regexOf(replace.pattern)).replacedFirst(value, replace.replacement);
            },
            [&](const ReplaceAll& replace) { return replacedAllBy(regexOf(replace.pattern), replace.replacement); },
            [&](const ReplaceAtStart& replace) {
                return replacedAllBy("^" + regexOf(replace.pattern), replace.replacement);
            },
            [&](const ReplaceAtEnd& replace) {
                return replacedAllBy(regexOf(replace.pattern) + "$", replace.replacement);
            },
            [&](const Length&) { return std::to_string(characterCount(value)); },
            [&](const Upper&) { return uppercased(value); },
            [&](const Lower&) { return lowercased(value); },
            [&](const UpperFirstChar&) { return withFirst(value, uppercased); },
            [&](const LowerFirstChar&) { return withFirst(value, lowercased); },
        },
        cases);
    checkSize(result.size());
    auto& doubts = state_->doubts;
    doubts.raiseFor(name);
    if (value.empty())
        if (auto doubt = nameDoubt(name, variable(name).has_value())) doubts.raise(std::move(*doubt));
    if (auto doubt = operationDoubt(name, operation, value, result)) doubts.raise(std::move(*doubt));
    return result;
}

std::vector<std::string> BasherAnalysis::expandGlob(const std::string& token) {
    if (token.empty()) return {};
    if (!mayBePattern(token)) return {token};
    const FilePath folder = currentDirectoryURL();
    const auto& real = state_->overlay.realNames(folder);
    if (!real) return {token};
    std::optional<Pattern> pattern;
    try {
        pattern.emplace(token);
    } catch (const InvalidPatternError& error) {
        logInfo(std::string("WARNING: Error expanding glob: ") + error.what());
        if (auto doubt = globDoubt(token)) state_->doubts.raise(std::move(*doubt));
        return {token};
    }
    if (pattern->isConstant()) return {token};
    if (auto doubt = globDoubt(token)) state_->doubts.raise(std::move(*doubt));
    std::vector<std::string> matches = matchingNames(*pattern, folder, *real);
    if (matches.empty()) return {token};
    return matches;
}

// The real names without those that are gone, then those of the simulation that are not real names.
std::vector<std::string> BasherAnalysis::matchingNames(const Pattern& pattern, const FilePath& folder,
                                                       const std::vector<std::string>& real) {
    std::unordered_set<std::string_view> gone;
    std::vector<std::string_view> present;
    for (const auto* history : state_->overlay.touchedIn(folder)) {
        const auto name = history->currentExactPath.name();
        if (history->exists())
            present.push_back(name);
        else
            gone.insert(name);
    }
    std::vector<std::string> matches;
    for (const auto& name : real)
        if (!gone.count(name) && pattern.match(name)) matches.push_back(name);
    if (!present.empty()) {
        const std::unordered_set<std::string_view> realNames(real.begin(), real.end());
        for (const auto name : present)
            if (!realNames.count(name) && pattern.match(name)) matches.emplace_back(name);
    }
    noteStaleNames(pattern, folder, matches, gone);
    return matches;
}

// After a move the names above are not quite those that a shell finds: the old one may still be among them, and one
// that was moved onto may be missing.
void BasherAnalysis::noteStaleNames(const Pattern& pattern, const FilePath& folder,
                                    const std::vector<std::string>& matches,
                                    const std::unordered_set<std::string_view>& gone) {
    const auto stands = [&](std::string_view name, bool ifUntouched) {
        const FileHistory* history = state_->overlay.known(folder.child(name));
        return history == nullptr ? ifUntouched : history->exists();
    };
    const bool hasStale =
        std::any_of(matches.begin(), matches.end(), [&](const auto& name) { return !stands(name, true); });
    const bool lacksMoved = std::any_of(
        gone.begin(), gone.end(), [&](std::string_view name) { return stands(name, false) && pattern.match(name); });
    if (hasStale || lacksMoved)
        state_->doubts.raise("A pattern behind a move may match other files than this prediction shows");
}

}  // namespace brindlet
