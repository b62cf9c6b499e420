// How a real tool takes its words: the GNU way, with values glued on or in the next word and long names cut short. The
// models read a line by rules of their own; where the tool would read it otherwise, that has to be said.
//
//     constexpr ToolOption uniqOptions[] = {{'f', "skip-fields", Takes::value}};
//     readAsTool({"--skip-f", "1", "in", "out"}, uniqOptions).operands  // in, out
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet {

enum class Takes {
    nothing,
    value,       // "-fv", "-f v", "--name=v", "--name v"
    gluedValue,  // "-fv", "--name=v", or no value at all
};

struct ToolOption {
    char letter;            // 0 where there is only a long name
    std::string_view name;  // "" where there is only a letter
    Takes takes = Takes::nothing;
};

struct ToolReading {
    struct Option {
        char letter = 0;   // of the row, or of an unknown letter
        std::string name;  // of the row, or of an unknown long name
        std::optional<std::string> value;
        bool isKnown = true;
    };
    std::vector<Option> options;  // in the order written
    std::vector<std::string> operands;

    bool has(char letter) const;
    bool hasLong(std::string_view name) const;
    std::optional<std::string> value(char letter) const;  // of the last one
    bool knowsAll() const;
};

enum class OptionsStand { anywhere, beforeOperands };

// A long name cut short stands for the first row that begins with it, so what matters most goes first in `rows`. An
// option without a row takes no value.
ToolReading readAsTool(const std::vector<std::string>& words, std::span<const ToolOption> rows,
                       OptionsStand stand = OptionsStand::anywhere);

}  // namespace brindlet
