#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/models/system_commands.h"
#include "text/characters.h"
#include "text/regex.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

// --- defaults ---

constexpr std::string_view changingVerbs[] = {"write", "delete", "delete-all", "rename"};
constexpr std::string_view readingVerbs[] = {"read", "read-type", "exists", "domains", "find"};

// By the number of words behind the verb; `most` 0 is no limit.
struct DescriptionRow {
    std::string_view verb;
    std::size_t least, most;
    std::string_view text;  // {0} the app, {1} and {2} the second and the third word, {3} the last
};
constexpr DescriptionRow descriptionRows[] = {
    {"write", 3, 0, "Changes {1} setting to {3}"},
    {"write", 2, 2, "Changes {0} settings"},
    {"delete", 1, 1, "Resets {0} settings"},
    {"delete", 2, 2, "Resets {0}'s {1} setting"},
    {"delete-all", 1, 1, "Reset all {0} settings"},
    {"delete-all", 2, 2, "Resets all {0} settings"},
    {"rename", 3, 3, "Renames {0}'s {1} setting to {2}"},
};

// Verbs that the model takes for a domain to read, and the tool for what they are (macOS 14, man defaults).
struct OtherVerbRow {
    std::string_view verb;
    PlainSideEffect effect;
    std::string_view description;
};
constexpr OtherVerbRow otherVerbRows[] = {
    {"import", PlainSideEffect::modifiesSystemSetting, "Replaces settings by those of a file"},
    {"export", PlainSideEffect::unknownFileChanges, "'defaults export' writes a file, which isn't shown here"},
};

bool joinsWord(std::string_view character) {
    const char32_t scalar = decodeScalar(character, 0).value;
    return isLetter(scalar) || isDecimalDigit(scalar);
}

std::string capitalisedWords(std::string_view text) {
    std::string capitalised;
    bool isInWord = false;
    for (const auto character : characters(text)) {
        capitalised += isInWord ? lowercased(character) : uppercased(character);
        isInWord = joinsWord(character) || (isInWord && (character == "'" || character == "." || character == "_"));
    }
    return capitalised;
}

std::string appName(const std::string& domain) {
    static const Regex bundle(R"(^com\.[^.]+\.(.*)$)");
    const auto match = bundle.find(domain);
    return match && match->end() == domain.size() ? capitalisedWords(*match->group(1)) : domain;
}

std::optional<std::string> descriptionOf(std::string_view verb, const Words& words) {
    const auto fits = [&](const DescriptionRow& row) {
        return row.verb == verb && words.size() >= row.least && (row.most == 0 || words.size() <= row.most);
    };
    const auto row = std::find_if(std::begin(descriptionRows), std::end(descriptionRows), fits);
    if (row == std::end(descriptionRows)) return std::nullopt;
    const auto word = [&](std::size_t at) { return at < words.size() ? words[at] : std::string(); };
    return fmt::format(fmt::runtime(row->text), appName(words.front()), word(1), word(2), words.back());
}

void noteOtherVerb(BasherAnalysis& analysis, const std::string& word) {
    for (const auto& row : otherVerbRows)
        if (word == row.verb) analysis.addSideEffect({row.effect, std::string(row.description)});
    if (word.starts_with('-'))
        analysis.addSideEffect(
            {PlainSideEffect::partialSupport, fmt::format("'defaults {}' isn't known, it may change settings", word)});
}

// --- sysctl ---

// procps 4.0, man sysctl, and FreeBSD's: options with which a name that gets no value is only read.
constexpr std::string_view readingLetters = "aAbdehiIlnNoqrtVwxX";
constexpr std::string_view readingOptions[] = {"--all",   "--binary", "--deprecated", "--ignore",  "--names",
                                               "--quiet", "--values", "--help",       "--version", "--write"};

bool isReadingOption(std::string_view word) {
    if (word.starts_with("--")) return word == "--" || isAmong(word, readingOptions) || word.starts_with("--pattern=");
    return std::all_of(word.begin() + 1, word.end(), [](char letter) {
        return contains(readingLetters, {&letter, 1});
    });
}

// The names that are given values, and the first option with which the tool may write.
struct SysctlWords {
    Words settings;
    std::optional<std::string> otherOption;
};

SysctlWords readSysctlWords(const Words& words) {
    SysctlWords read;
    bool takesOptions = true;
    for (const auto& word : words) {
        if (takesOptions && word.starts_with('-')) {
            if (!read.otherOption && !isReadingOption(word)) read.otherOption = word;
            takesOptions = word != "--";
        } else if (const auto equals = word.find('='); equals != std::string::npos) {
            read.settings.push_back(word.substr(0, equals));
        }
    }
    return read;
}

}  // namespace

CommandResult changeDefaults(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    args.removeArgIfFirst("-currentHost");
    if (args.removeArgIfFirst("-host") && !args.extractFirst())
        return analysis.addCommandError("Defaults command incorrectly written",
                                        "defaults: -host option requires an argument");
    const auto verb = args.extractFirst();
    if (!verb) return analysis.addCommandError("Defaults command missing parameters", "defaults: Nothing to do");
    if (!isAmong(*verb, changingVerbs)) {
        if (!isAmong(*verb, readingVerbs)) noteOtherVerb(analysis, *verb);
        return {0, SimString::unknown()};
    }
    analysis.addSideEffect({PlainSideEffect::modifiesSystemSetting, descriptionOf(*verb, args.remainingArgs())});
    return CommandResult::success();
}

CommandResult kernelSettings(BasherAnalysis& analysis, const ModelInput& input) {
    const auto [settings, otherOption] = readSysctlWords(input.args);
    // -p and -f take settings from a file.
    if (otherOption)
        analysis.addSideEffect({PlainSideEffect::partialSupport,
                                fmt::format("'sysctl {}' may change settings, which isn't shown here", *otherOption)});
    if (settings.empty()) {
        if (otherOption) return CommandResult::unpredictable();
        return analysis.runRealCommand("sysctl", SimString::known(""), input.args);
    }
    const std::string_view form = settings.size() == 1 ? "Changes {} value" : "Changes {} values";
    analysis.addSideEffect(
        {PlainSideEffect::modifiesSystemSetting, fmt::format(fmt::runtime(form), joined(settings, ", "))});
    return CommandResult::success();
}

}  // namespace brindlet
