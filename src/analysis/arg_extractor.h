// Takes a command's words apart. Every operation removes what it takes, so that what stays behind is the operands.
//
//     ArgExtractor args("rm", ArgExtractor::Style::defaultStyle, {"-rf", "a", "b"});
//     args.extractAllFlagsAtStart();  // r, f
//     args.remainingArgs();           // a, b
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet {

// True for "-rf": one hyphen and at least one letter; not for "-" and "--long".
bool isFlagCluster(std::string_view word);

class ArgExtractor {
  public:
    enum class Style {
        defaultStyle,             // "--long", and clusters of letters: -rf is r and f
        singleHyphenLongOptions,  // every option has one "-" and a whole name: -vf is the option "vf"
        doubleHyphenEquals,       // as defaultStyle, and --name=value
    };

    struct Option {
        std::string name;
        std::vector<std::string> args;  // the values taken for it
        bool operator==(const Option&) const = default;
    };

    // From option name to the number of values that the option takes at most, in the order in which
    // extractOptionsAnywhere looks for them. Values never begin with "-": an option that finds fewer gets fewer.
    using OptionArities = std::vector<std::pair<std::string_view, int>>;

    struct FlagsAndOptions {
        std::vector<std::string> flags;
        std::map<std::string, std::vector<std::string>, std::less<>> options;

        bool hasFlag(std::string_view name) const;
        // The first value of an option; none where the option is missing or got none.
        std::optional<std::string> value(std::string_view name) const;
    };

    ArgExtractor(std::string_view commandName, Style style, std::vector<std::string> args);

    const std::string& commandName() const { return commandName_; }
    const std::vector<std::string>& remainingArgs() const { return remainingArgs_; }

    // The letters of the leading words such as -rf; stops at the first other word. Only for defaultStyle.
    std::vector<std::string> extractSingleLetterFlagsAtStart();
    // Removes the first word equal to `word`, wherever it stands, and says whether there was one.
    bool removeArg(std::string_view word);
    bool removeArgIfFirst(std::string_view word);
    // The flags at the start. "--", an operand, and a flag named in `stoppingAt` end the walk and stay. Not for
    // doubleHyphenEquals.
    std::vector<std::string> extractAllFlagsAtStart(const std::vector<std::string_view>& stoppingAt = {});
    // The listed options at the start with their values; none where nothing was taken. Not for doubleHyphenEquals.
    std::optional<std::vector<Option>> extractOptionsAtStart(const OptionArities& options);
    // One pass over all words: flags and options wherever they stand, up to "--", which is removed; operands stay.
    FlagsAndOptions extractFlagsAndOptions(const OptionArities& options = {});
    // The first occurrence of each listed option (spelt with its hyphen) with its values; none where nothing was taken.
    std::optional<std::vector<Option>> extractOptionsAnywhere(const OptionArities& options);
    std::vector<std::string> extractLeadingOperands();
    std::vector<std::string> extractTrailingOperands();
    std::optional<std::string> extractFirst();

  private:
    std::string commandName_;
    Style style_;
    std::vector<std::string> remainingArgs_;
};

}  // namespace brindlet
