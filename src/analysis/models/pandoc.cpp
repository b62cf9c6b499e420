#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/document_support.h"
#include "analysis/models/documents.h"
#include "text/strings.h"

namespace brindlet {

namespace {

const ArgExtractor::OptionArities pandocOptions = {
    {"o", 1}, {"d", 1}, {"F", 1}, {"L", 1}, {"M", 1}, {"V", 1}, {"D", 1}, {"H", 1},
    {"B", 1}, {"A", 1}, {"T", 1}, {"t", 1}, {"f", 1}, {"r", 1}, {"w", 1}, {"c", 1},
};

// --- how pandoc itself reads its words (2.17 and 3, `pandoc --help`), for what the prediction's reading misses ---

enum class Concern { writesOutput, readsOptions, runsProgram, writesFiles, choosesFormat, choosesEngine };

struct PandocOption {
    std::string_view longName;
    char letter;  // '\0': none
    Concern concern;
};

constexpr PandocOption watchedOptions[] = {
    {"output", 'o', Concern::writesOutput},        {"defaults", 'd', Concern::readsOptions},
    {"filter", 'F', Concern::runsProgram},         {"lua-filter", 'L', Concern::runsProgram},
    {"from", 'f', Concern::choosesFormat},         {"read", 'r', Concern::choosesFormat},
    {"to", 't', Concern::choosesFormat},           {"write", 'w', Concern::choosesFormat},
    {"pdf-engine", '\0', Concern::choosesEngine},  {"pdf-engine-opt", '\0', Concern::runsProgram},
    {"extract-media", '\0', Concern::writesFiles}, {"log", '\0', Concern::writesFiles},
};

// Letters that take a value: the rest of the word, or the next word.
constexpr std::string_view pandocLettersWithValue = "odFLMVDHBATtfrwc";

// One option as pandoc sees it.
struct PandocUse {
    const PandocOption* option = nullptr;
    std::string word;  // as written
    std::string value;
};

class PandocReading {
  public:
    explicit PandocReading(const Words& args) : args_(args) {
        for (; at_ < args_.size() && args_[at_] != "--"; ++at_) {
            const std::string& word = args_[at_];
            if (word.starts_with("--"))
                readLong(word);
            else if (isFlagCluster(word))
                readCluster(word);
            else if (word.starts_with("+RTS"))
                hasRuntimeOptions = true;
        }
    }

    std::vector<PandocUse> uses;
    bool hasRuntimeOptions = false;  // of the language it is written in; some of them write files

  private:
    std::string nextWord() const { return at_ + 1 < args_.size() ? args_[at_ + 1] : ""; }

    // Long names may be cut short as long as they stay clear.
    void readLong(const std::string& word) {
        const std::size_t equals = word.find('=');
        const std::string_view name =
            std::string_view(word).substr(2, equals == std::string::npos ? equals : equals - 2);
        const PandocOption* option = nullptr;
        for (const auto& row : watchedOptions) {
            if (row.longName.starts_with(name) && !option) option = &row;
            if (row.longName == name) option = &row;
        }
        if (option) uses.push_back({option, word, equals == std::string::npos ? nextWord() : word.substr(equals + 1)});
    }

    void readCluster(const std::string& word) {
        const std::size_t place = word.find_first_of(pandocLettersWithValue, 1);
        if (place == std::string::npos) return;
        const bool isGlued = place + 1 < word.size();
        const std::string value = isGlued ? word.substr(place + 1) : nextWord();
        for (const auto& row : watchedOptions)
            if (row.letter == word[place]) uses.push_back({&row, word, value});
        if (!isGlued) ++at_;
    }

    const Words& args_;
    std::size_t at_ = 0;
};

std::optional<std::string_view> sentenceFor(const PandocUse& use) {
    switch (use.option->concern) {
        case Concern::writesOutput:
            return std::nullopt;
        case Concern::readsOptions:
            return "pandoc reads more options from the file in {}, which aren't shown here";
        case Concern::runsProgram:
            return "pandoc runs a program with {}, whose effects aren't shown here";
        case Concern::writesFiles:
            return "pandoc may write more files with {}, which aren't shown here";
        // A format may be a script; an engine may be any program of a well-known name.
        case Concern::choosesFormat:
            if (!contains(use.value, ".lua")) return std::nullopt;
            return "pandoc runs a script with {}, whose effects aren't shown here";
        case Concern::choosesEngine:
            if (!contains(use.value, "/")) return std::nullopt;
            return "pandoc runs a program with {}, whose effects aren't shown here";
    }
    return std::nullopt;
}

// `shown` is the output that the prediction has made a change of.
void noteUnshown(BasherAnalysis& analysis, const Words& args, const std::optional<std::string>& shown) {
    const PandocReading reading(args);
    std::optional<std::string> output;
    for (const auto& use : reading.uses) {
        if (use.option->concern == Concern::writesOutput) output = use.value;
        const std::string written = contains(use.word, use.value) ? use.word : use.word + " " + use.value;
        if (const auto sentence = sentenceFor(use))
            notePartialSupport(analysis, fmt::format(fmt::runtime(*sentence), quotedForSentence(written)));
    }
    if (output && !output->empty() && !isStandardStream(*output) && output != shown)
        noteUnshownWrite(analysis, "pandoc", *output);
    if (reading.hasRuntimeOptions) notePartialSupport(analysis, "pandoc may write more files with '+RTS'");
    if (!args.empty() && (args.front() == "lua" || args.front() == "server"))
        notePartialSupport(analysis,
                           fmt::format("'pandoc {}' may run scripts, whose effects aren't shown here", args.front()));
}

}  // namespace

CommandResult convertMarkup(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.requirePackage("Pandoc");
    ArgExtractor args = wordsOf(input, ArgExtractor::Style::doubleHyphenEquals);
    const auto options = args.extractFlagsAndOptions(pandocOptions);
    if (const auto missing = firstMissingDocument(analysis, args.remainingArgs()))
        return analysis.addCommandError("Input file doesn't exist: " + *missing, notFound("pandoc", *missing));
    auto output = options.value("o");
    if (!output) output = options.value("output");
    if (output && !isStandardStream(*output)) createDocument(analysis, *output);
    noteUnshown(analysis, input.args, output);
    return {0, SimString::unknown()};
}

}  // namespace brindlet
