#include "analysis/models/xargs_plan.h"

#include <algorithm>

#include "text/characters.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

constexpr std::string_view nul("\0", 1);

// --- the simulation's reading ---

Words blankSeparated(std::string_view text) {
    Words words;
    std::string word;
    for (std::size_t at = 0; at < text.size();) {
        const Scalar scalar = decodeScalar(text, at);
        if (!isWhitespaceOrNewline(scalar.value))
            word.append(text.substr(at, scalar.length));
        else if (!word.empty())
            words.push_back(std::exchange(word, {}));
        at += scalar.length;
    }
    if (!word.empty()) words.push_back(std::move(word));
    return words;
}

// The pieces before the first that `isEnd`, joined again.
template <class IsEnd>
std::string cutBefore(std::string_view input, std::string_view delimiter, IsEnd isEnd) {
    Words pieces = split(input, delimiter);
    pieces.erase(std::find_if(pieces.begin(), pieces.end(), isEnd), pieces.end());
    return joined(pieces, delimiter);
}

Words tokensOf(const XargsOptions& options, std::string_view input) {
    const std::string_view delimiter = options.isNulDelimited ? nul : "\n";
    std::string kept(input);
    if (options.endText)
        kept = cutBefore(input, delimiter, [&](const std::string& piece) { return piece == *options.endText; });
    return options.isNulDelimited ? splitNonEmpty(kept, nul) : blankSeparated(kept);
}

std::vector<Words> inRunsOf(std::size_t count, const Words& words) {
    std::vector<Words> runs;
    for (std::size_t at = 0; at < words.size(); ++at) {
        if (at % count == 0) runs.emplace_back();
        runs.back().push_back(words[at]);
    }
    return runs;
}

// One word a run with a replace text, a number of words, or all at once.
std::vector<Words> inRunsAsAsked(const XargsOptions& options, const Words& words) {
    if (options.replaceText) return inRunsOf(1, words);
    return inRunsOf(options.wordCount.value_or(std::max<std::size_t>(words.size(), 1)), words);
}

// Lines are counted in the input as it came.
std::vector<Words> groupedByLine(const XargsOptions& options, std::string_view input) {
    std::string kept(input);
    if (options.endText)
        kept = cutBefore(input, "\n", [&](const std::string& line) { return contains(line, *options.endText); });
    std::vector<Words> groups;
    for (const auto& lines : inRunsOf(*options.lineCount, splitNonEmpty(kept, "\n")))
        groups.push_back(blankSeparated(joined(lines, "\n")));
    return groups;
}

// --- the real tool's reading ---

struct Item {
    std::string text;
    bool endsLine = false;
};

bool isBlankByte(char byte) {
    return byte == ' ' || byte == '\t';
}

// Reads the items of an input that isn't NUL-delimited.
class ItemReader {
  public:
    ItemReader(std::string_view input, const XargsOptions& options) : input_(input), options_(options) {}

    // None for a quote that isn't closed on its line, where the tool gives up.
    std::optional<std::vector<Item>> read() {
        while (!hasEnded_ && at_ < input_.size()) {
            if (isBlankByte(input_[at_]) || input_[at_] == '\n') {
                ++at_;
                continue;
            }
            if (!readItem()) return std::nullopt;
        }
        return std::move(items_);
    }

  private:
    bool readItem() {
        std::string text;
        while (at_ < input_.size() && !isEnd(input_[at_])) {
            const char byte = input_[at_++];
            if (byte == '\'' || byte == '"') {
                const std::size_t close = input_.find_first_of(std::string(1, byte) + "\n", at_);
                if (close == std::string_view::npos || input_[close] == '\n') return false;
                text += input_.substr(at_, close - at_);
                at_ = close + 1;
            } else if (byte == '\\') {
                if (at_ == input_.size()) return false;
                text += input_[at_++];
            } else {
                text += byte;
            }
        }
        text.resize(std::min(text.size(), text.find('\0')));  // it ends there for the tool
        hasEnded_ = options_.endText == text;
        const bool endsLine = at_ == input_.size() || input_[at_] == '\n';
        if (!hasEnded_) items_.push_back({std::move(text), endsLine});
        return true;
    }

    bool isEnd(char byte) const { return byte == '\n' || (isBlankByte(byte) && !options_.replaceText); }

    std::string_view input_;
    const XargsOptions& options_;
    std::size_t at_ = 0;
    bool hasEnded_ = false;
    std::vector<Item> items_;
};

std::vector<Item> nulDelimitedItems(std::string_view input) {
    std::vector<Item> items;
    Words pieces = split(input, nul);
    if (pieces.back().empty()) pieces.pop_back();
    for (auto& piece : pieces) items.push_back({std::move(piece), true});
    return items;
}

std::vector<Words> inRunsOfLines(std::size_t count, const std::vector<Item>& items) {
    std::vector<Words> groups;
    std::size_t left = 0;
    for (const auto& item : items) {
        if (left == 0) {
            groups.emplace_back();
            left = count;
        }
        groups.back().push_back(item.text);
        if (item.endsLine) --left;
    }
    return groups;
}

std::optional<std::size_t> count(std::string_view text) {
    const auto number = parsedInteger(text);
    if (!number || *number < 1) return std::nullopt;
    return static_cast<std::size_t>(*number);
}

// Takes an option with its value; false where there is none such. Of -I, -L and -n the last one counts.
bool takeOption(XargsOptions& options, char letter, const std::string& value) {
    const auto keepAlone = [&](auto& kept, auto taken) {
        options.replaceText.reset();
        options.lineCount.reset();
        options.wordCount.reset();
        kept = std::move(taken);
        return kept.has_value();
    };
    switch (letter) {
        case 'E':
            options.endText = value;
            return true;
        case 'I':
            return !value.empty() && keepAlone(options.replaceText, std::optional(value));
        case 'L':
            return keepAlone(options.lineCount, count(value));
        case 'n':
            if (options.replaceText && value == "1") return true;
            return keepAlone(options.wordCount, count(value));
        default:
            return false;
    }
}

}  // namespace

XargsPlan simulatedPlan(const XargsOptions& options, std::string_view input) {
    XargsPlan plan{options.command, options.replaceText, {}};
    if (options.lineCount && !options.replaceText) {
        plan.groups = groupedByLine(options, input);
    } else {
        Words tokens = tokensOf(options, input);
        if (options.replaceText && tokens.empty()) tokens.emplace_back();
        plan.groups = inRunsAsAsked(options, tokens);
    }
    if (plan.groups.empty()) plan.groups.emplace_back();
    return plan;
}

std::optional<XargsOptions> realOptions(const Words& words) {
    XargsOptions options;
    std::size_t at = 0;
    for (; at < words.size() && isFlagCluster(words[at]); ++at) {
        const std::string& word = words[at];
        const std::size_t letter = word.find_first_not_of('0', 1);
        if (letter != 1) options.isNulDelimited = true;
        if (letter == std::string::npos) continue;
        std::string value = word.substr(letter + 1);
        if (value.empty()) {
            if (++at == words.size()) return std::nullopt;
            value = words[at];
        }
        if (!takeOption(options, word[letter], value)) return std::nullopt;
    }
    if (at < words.size() && words[at].starts_with("--") && words[at++] != "--") return std::nullopt;
    if (at < words.size()) options.command.assign(words.begin() + static_cast<std::ptrdiff_t>(at), words.end());
    return options;
}

std::optional<XargsPlan> realPlan(const XargsOptions& options, std::string_view input) {
    const auto items = options.isNulDelimited ? nulDelimitedItems(input) : ItemReader(input, options).read();
    if (!items) return std::nullopt;
    XargsPlan plan{options.command, options.replaceText, {}};
    if (options.lineCount) {
        plan.groups = inRunsOfLines(*options.lineCount, *items);
    } else {
        Words words;
        for (const auto& item : *items) words.push_back(item.text);
        plan.groups = inRunsAsAsked(options, words);
    }
    if (plan.groups.empty() && !options.replaceText) plan.groups.emplace_back();
    return plan;
}

}  // namespace brindlet
