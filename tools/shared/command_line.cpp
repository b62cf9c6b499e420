#include "shared/command_line.h"

#include <algorithm>

#include "shared/tool.h"

namespace brindlet::tools {

namespace {

class LineReader {
  public:
    LineReader(const std::vector<std::string>& words, std::span<const OptionRow> table)
        : words_(words), table_(table) {}

    CommandLine read(Operands operands) {
        for (; at_ < words_.size(); ++at_) {
            const std::string& word = words_[at_];
            const bool endsOptions = word == "--";
            if (endsOptions || (operands == Operands::endOptions && !isOption(word))) {
                const auto rest = words_.begin() + static_cast<std::ptrdiff_t>(at_) + (endsOptions ? 1 : 0);
                line_.operands.insert(line_.operands.end(), rest, words_.end());
                break;
            }
            if (isOption(word)) {
                takeOption(word);
            } else {
                line_.operands.push_back(word);
            }
        }
        return std::move(line_);
    }

  private:
    static bool isOption(std::string_view word) { return word.size() > 1 && word.front() == '-'; }

    const OptionRow* rowOf(std::string_view name) const {
        const auto row =
            std::find_if(table_.begin(), table_.end(), [&](const OptionRow& each) { return each.name == name; });
        return row == table_.end() ? nullptr : &*row;
    }

    std::string nextWord(const std::string& option) {
        if (++at_ >= words_.size()) throw ToolFailure{"the option '" + option + "' needs a value", statusWrongUsage};
        return words_[at_];
    }

    void takeOption(const std::string& word) {
        if (const OptionRow* row = rowOf(word)) {
            line_.options.emplace_back(word, row->takesValue ? nextWord(word) : "");
            return;
        }
        for (std::size_t letter = 1; letter < word.size(); ++letter) {
            const std::string name{'-', word[letter]};
            const OptionRow* row = rowOf(name);
            if (!row) throw ToolFailure{"the option '" + word + "' is not known here", statusWrongUsage};
            if (row->takesValue) {
                const std::string rest = word.substr(letter + 1);
                line_.options.emplace_back(name, rest.empty() ? nextWord(word) : rest);
                return;
            }
            line_.options.emplace_back(name, "");
        }
    }

    const std::vector<std::string>& words_;
    std::span<const OptionRow> table_;
    std::size_t at_ = 0;
    CommandLine line_;
};

}  // namespace

bool CommandLine::has(std::string_view name) const {
    return value(name).has_value();
}

std::optional<std::string> CommandLine::value(std::string_view name) const {
    const std::vector<std::string> all = values(name);
    return all.empty() ? std::nullopt : std::optional<std::string>(all.back());
}

std::vector<std::string> CommandLine::values(std::string_view name) const {
    std::vector<std::string> found;
    for (const auto& [option, value] : options)
        if (option == name) found.push_back(value);
    return found;
}

CommandLine readCommandLine(const std::vector<std::string>& words, std::span<const OptionRow> table,
                            Operands operands) {
    return LineReader(words, table).read(operands);
}

}  // namespace brindlet::tools
