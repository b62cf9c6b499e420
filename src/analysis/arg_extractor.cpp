#include "analysis/arg_extractor.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "analysis/programming_error.h"
#include "text/characters.h"

namespace brindlet {

namespace {

using Words = std::vector<std::string>;
using Style = ArgExtractor::Style;

bool beginsWithHyphen(std::string_view word) {
    return word.starts_with('-');
}

Words lettersOf(std::string_view cluster) {
    const auto letters = characters(cluster.substr(1));
    return Words(letters.begin(), letters.end());
}

// What stands behind the long prefix of the style; none for other words.
std::optional<std::string_view> longName(std::string_view word, Style style) {
    const std::string_view prefix = style == Style::singleHyphenLongOptions ? "-" : "--";
    if (word.size() <= prefix.size() || !word.starts_with(prefix)) return std::nullopt;
    return word.substr(prefix.size());
}

// The option that a word at the start may be: in the default style also a single letter, or "-" alone with no name.
std::optional<std::string_view> optionName(std::string_view word, Style style) {
    if (auto name = longName(word, style)) return name;
    if (style == Style::defaultStyle && beginsWithHyphen(word)) return word.substr(1);
    return std::nullopt;
}

std::optional<int> arityOf(std::string_view name, const ArgExtractor::OptionArities& options) {
    for (const auto& [option, arity] : options)
        if (option == name) return arity;
    return std::nullopt;
}

// The values from word `at` on; moves `at` behind them.
Words takeValues(const Words& words, std::size_t& at, int arity) {
    Words values;
    for (int left = arity; left > 0 && at < words.size() && !beginsWithHyphen(words[at]); --left)
        values.push_back(words[at++]);
    return values;
}

void removeFront(Words& words, std::size_t count) {
    words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(count));
}

bool isListed(std::string_view name, const std::vector<std::string_view>& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

void append(Words& words, Words more) {
    words.insert(words.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

// The one-pass walk of extractFlagsAndOptions. What it doesn't take ends up in `operands`.
class OnePass {
  public:
    OnePass(const Words& words, Style style, const ArgExtractor::OptionArities& options)
        : words_(words), style_(style), options_(options) {}

    void walk() {
        while (at_ < words_.size()) {
            const std::string& word = words_[at_++];
            if (word == "--") break;
            if (auto name = longName(word, style_))
                takeLong(*name);
            else if (style_ != Style::singleHyphenLongOptions && isFlagCluster(word))
                takeCluster(word);
            else
                operands.push_back(word);
        }
        operands.insert(operands.end(), words_.begin() + static_cast<std::ptrdiff_t>(at_), words_.end());
    }

    ArgExtractor::FlagsAndOptions taken;
    Words operands;

  private:
    void takeLong(std::string_view name) {
        const std::size_t equals = name.find('=');
        // An empty name or value is no part: "--name=" is a flag of that spelling.
        const bool holdsValue = equals != std::string_view::npos && equals > 0 && equals + 1 < name.size();
        if (style_ == Style::doubleHyphenEquals && holdsValue)
            taken.options[std::string(name.substr(0, equals))] = {std::string(name.substr(equals + 1))};
        else if (!takeOption(name))
            taken.flags.emplace_back(name);
    }

    void takeCluster(std::string_view word) {
        Words letters = lettersOf(word);
        if (takeOption(letters.back())) letters.pop_back();
        append(taken.flags, std::move(letters));
    }

    bool takeOption(std::string_view name) {
        const auto arity = arityOf(name, options_);
        if (arity) taken.options[std::string(name)] = takeValues(words_, at_, *arity);
        return arity.has_value();
    }

    const Words& words_;
    const Style style_;
    const ArgExtractor::OptionArities& options_;
    std::size_t at_ = 0;
};

}  // namespace

bool isFlagCluster(std::string_view word) {
    return word.size() >= 2 && word[0] == '-' && word[1] != '-';
}

bool ArgExtractor::FlagsAndOptions::hasFlag(std::string_view name) const {
    return std::find(flags.begin(), flags.end(), name) != flags.end();
}

std::optional<std::string> ArgExtractor::FlagsAndOptions::value(std::string_view name) const {
    const auto option = options.find(name);
    if (option == options.end() || option->second.empty()) return std::nullopt;
    return option->second.front();
}

ArgExtractor::ArgExtractor(std::string_view commandName, Style style, std::vector<std::string> args)
    : commandName_(commandName), style_(style), remainingArgs_(std::move(args)) {}

std::vector<std::string> ArgExtractor::extractSingleLetterFlagsAtStart() {
    if (style_ != Style::defaultStyle)
        programmingError("Non-bash mode means that single character flags are not supported");
    Words flags;
    std::size_t count = 0;
    for (; count < remainingArgs_.size() && isFlagCluster(remainingArgs_[count]); ++count)
        append(flags, lettersOf(remainingArgs_[count]));
    removeFront(remainingArgs_, count);
    return flags;
}

bool ArgExtractor::removeArg(std::string_view word) {
    const auto found = std::find(remainingArgs_.begin(), remainingArgs_.end(), word);
    if (found == remainingArgs_.end()) return false;
    remainingArgs_.erase(found);
    return true;
}

bool ArgExtractor::removeArgIfFirst(std::string_view word) {
    if (remainingArgs_.empty() || remainingArgs_.front() != word) return false;
    removeFront(remainingArgs_, 1);
    return true;
}

std::vector<std::string> ArgExtractor::extractAllFlagsAtStart(const std::vector<std::string_view>& stoppingAt) {
    if (style_ == Style::doubleHyphenEquals)
        programmingError("doubleHyphenEquals style is not currently supported for extractAllFlagsAtStart");
    Words flags;
    std::size_t count = 0;
    for (; count < remainingArgs_.size() && remainingArgs_[count] != "--"; ++count) {
        const std::string& word = remainingArgs_[count];
        Words names;
        if (auto name = longName(word, style_))
            names.emplace_back(*name);
        else if (style_ == Style::defaultStyle && isFlagCluster(word))
            names = lettersOf(word);
        else
            break;
        const auto stops = [&](const std::string& name) { return isListed(name, stoppingAt); };
        if (std::any_of(names.begin(), names.end(), stops)) break;
        append(flags, std::move(names));
    }
    removeFront(remainingArgs_, count);
    return flags;
}

std::optional<std::vector<ArgExtractor::Option>> ArgExtractor::extractOptionsAtStart(const OptionArities& options) {
    if (style_ == Style::doubleHyphenEquals)
        programmingError("doubleHyphenEquals style is not currently supported for extractOptionsAtStart");
    std::vector<Option> taken;
    std::size_t at = 0;
    while (at < remainingArgs_.size() && remainingArgs_[at] != "--") {
        const auto name = optionName(remainingArgs_[at], style_);
        const auto arity = name ? arityOf(*name, options) : std::nullopt;
        if (!arity) break;
        ++at;
        taken.push_back({std::string(*name), takeValues(remainingArgs_, at, *arity)});
    }
    removeFront(remainingArgs_, at);
    if (taken.empty()) return std::nullopt;
    return taken;
}

ArgExtractor::FlagsAndOptions ArgExtractor::extractFlagsAndOptions(const OptionArities& options) {
    OnePass pass(remainingArgs_, style_, options);
    pass.walk();
    remainingArgs_ = std::move(pass.operands);
    return std::move(pass.taken);
}

std::optional<std::vector<ArgExtractor::Option>> ArgExtractor::extractOptionsAnywhere(const OptionArities& options) {
    std::vector<Option> taken;
    for (const auto& [word, arity] : options) {
        const auto found = std::find(remainingArgs_.begin(), remainingArgs_.end(), word);
        if (found == remainingArgs_.end()) continue;
        auto behind = static_cast<std::size_t>(found - remainingArgs_.begin()) + 1;
        taken.push_back({std::string(word), takeValues(remainingArgs_, behind, arity)});
        remainingArgs_.erase(found, remainingArgs_.begin() + static_cast<std::ptrdiff_t>(behind));
    }
    if (taken.empty()) return std::nullopt;
    return taken;
}

std::vector<std::string> ArgExtractor::extractLeadingOperands() {
    const auto end = std::find_if(remainingArgs_.begin(), remainingArgs_.end(), beginsWithHyphen);
    Words operands(std::make_move_iterator(remainingArgs_.begin()), std::make_move_iterator(end));
    remainingArgs_.erase(remainingArgs_.begin(), end);
    return operands;
}

std::vector<std::string> ArgExtractor::extractTrailingOperands() {
    const auto begin = std::find_if(remainingArgs_.rbegin(), remainingArgs_.rend(), beginsWithHyphen).base();
    Words operands(std::make_move_iterator(begin), std::make_move_iterator(remainingArgs_.end()));
    remainingArgs_.erase(begin, remainingArgs_.end());
    return operands;
}

std::optional<std::string> ArgExtractor::extractFirst() {
    if (remainingArgs_.empty()) return std::nullopt;
    std::string first = std::move(remainingArgs_.front());
    removeFront(remainingArgs_, 1);
    return first;
}

}  // namespace brindlet
