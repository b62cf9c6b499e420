#include "analysis/models/tool_options.h"

#include <algorithm>
#include <cstddef>

namespace brindlet {

namespace {

using Words = std::vector<std::string>;

class Reader {
  public:
    Reader(const Words& words, std::span<const ToolOption> rows, OptionsStand stand)
        : words_(words), rows_(rows), stand_(stand) {}

    ToolReading read() {
        while (at_ < words_.size()) {
            const std::string& word = words_[at_++];
            if (word == "--") {
                takeRest();
            } else if (word.starts_with("--")) {
                takeLong(std::string_view(word).substr(2));
            } else if (word.size() > 1 && word.starts_with('-')) {
                takeCluster(std::string_view(word).substr(1));
            } else {
                reading_.operands.push_back(word);
                if (stand_ == OptionsStand::beforeOperands) takeRest();
            }
        }
        return std::move(reading_);
    }

  private:
    void takeRest() {
        reading_.operands.insert(reading_.operands.end(), words_.begin() + static_cast<std::ptrdiff_t>(at_),
                                 words_.end());
        at_ = words_.size();
    }

    std::optional<std::string> nextWord() {
        if (at_ == words_.size()) return std::nullopt;
        return words_[at_++];
    }

    const ToolOption* longRow(std::string_view name) const {
        const auto isExact = [&](const ToolOption& row) { return row.name == name; };
        const auto begins = [&](const ToolOption& row) { return !name.empty() && row.name.starts_with(name); };
        auto row = std::find_if(rows_.begin(), rows_.end(), isExact);
        if (row == rows_.end()) row = std::find_if(rows_.begin(), rows_.end(), begins);
        return row == rows_.end() ? nullptr : &*row;
    }

    void takeLong(std::string_view text) {
        const std::size_t equals = text.find('=');
        const std::string_view name = text.substr(0, equals);
        std::optional<std::string> value;
        if (equals != std::string_view::npos) value = text.substr(equals + 1);
        const ToolOption* row = longRow(name);
        if (row == nullptr) {
            reading_.options.push_back({0, std::string(name), std::move(value), false});
            return;
        }
        if (!value && row->takes == Takes::value) value = nextWord();
        reading_.options.push_back({row->letter, std::string(row->name), std::move(value)});
    }

    void takeCluster(std::string_view letters) {
        for (std::size_t at = 0; at < letters.size(); ++at) {
            const auto isRow = [&](const ToolOption& row) { return row.letter == letters[at]; };
            const auto row = std::find_if(rows_.begin(), rows_.end(), isRow);
            if (row == rows_.end()) {
                reading_.options.push_back({letters[at], "", std::nullopt, false});
                continue;
            }
            std::optional<std::string> value;
            const std::string_view rest = letters.substr(at + 1);
            if (row->takes != Takes::nothing && !rest.empty())
                value = rest;
            else if (row->takes == Takes::value)
                value = nextWord();
            reading_.options.push_back({row->letter, std::string(row->name), std::move(value)});
            if (row->takes != Takes::nothing) return;
        }
    }

    const Words& words_;
    const std::span<const ToolOption> rows_;
    const OptionsStand stand_;
    std::size_t at_ = 0;
    ToolReading reading_;
};

}  // namespace

bool ToolReading::has(char letter) const {
    return std::any_of(options.begin(), options.end(), [&](const Option& option) { return option.letter == letter; });
}

bool ToolReading::hasLong(std::string_view name) const {
    return std::any_of(options.begin(), options.end(), [&](const Option& option) { return option.name == name; });
}

std::optional<std::string> ToolReading::value(char letter) const {
    const auto option =
        std::find_if(options.rbegin(), options.rend(), [&](const Option& each) { return each.letter == letter; });
    return option == options.rend() ? std::nullopt : option->value;
}

bool ToolReading::knowsAll() const {
    return std::all_of(options.begin(), options.end(), [](const Option& option) { return option.isKnown; });
}

ToolReading readAsTool(const Words& words, std::span<const ToolOption> rows, OptionsStand stand) {
    return Reader(words, rows, stand).read();
}

}  // namespace brindlet
