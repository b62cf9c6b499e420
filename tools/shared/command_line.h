// The words of a command line, told apart by a table, so that a word that no row names is refused and never passed on.
//
//     constexpr OptionRow options[] = {{"-onlyin", true}, {"-0"}};
//     const CommandLine line = readCommandLine(words, options);
//     for (const std::string& folder : line.values("-onlyin")) ...
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindlet::tools {

struct OptionRow {
    std::string_view name;  // with its hyphens
    bool takesValue = false;
};

struct CommandLine {
    std::vector<std::pair<std::string, std::string>> options;  // as they stand; the value is "" where there is none
    std::vector<std::string> operands;

    bool has(std::string_view name) const;
    std::optional<std::string> value(std::string_view name) const;  // the last one given
    std::vector<std::string> values(std::string_view name) const;
};

enum class Operands { anywhere, endOptions };

// A word that begins with "-" is an option of the table, or several of its one-letter options at once ("-ut60"); what
// follows "--" is an operand, and so is "-". With `endOptions`, so is whatever follows the first operand. Anything
// else is a ToolFailure of wrong usage.
CommandLine readCommandLine(const std::vector<std::string>& words, std::span<const OptionRow> table,
                            Operands operands = Operands::anywhere);

}  // namespace brindlet::tools
