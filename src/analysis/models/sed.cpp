#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/filter_support.h"
#include "analysis/models/sed_script.h"
#include "analysis/models/text_filters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using ErrorKind = BasherAnalysisError::Kind;

// --- what the real tool would do ---

// GNU sed 4.9.
constexpr ToolOption sedOptions[] = {{'i', "in-place", Takes::gluedValue},
                                     {'e', "expression", Takes::value},
                                     {'f', "file", Takes::value},
                                     {'l', "line-length", Takes::value},
                                     {'n', "quiet"},
                                     {'n', "silent"},
                                     {'s', "separate"},
                                     {'E', "regexp-extended"},
                                     {'u', "unbuffered"},
                                     {'z', "null-data"}};

struct RealSed {
    std::string script;
    Words scriptFiles;
    Words files;
    bool isInPlace = false;
    std::string backupSuffix;
};

RealSed realSed(const Words& words) {
    ToolReading reading = readAsTool(words, sedOptions);
    RealSed sed{.script = "", .scriptFiles = {}, .files = std::move(reading.operands), .backupSuffix = ""};
    Words pieces;
    for (const auto& option : reading.options) {
        if (option.letter == 'e') pieces.push_back(option.value.value_or(""));
        if (option.letter == 'f') sed.scriptFiles.push_back(option.value.value_or(""));
        if (option.letter == 'i') {
            sed.isInPlace = true;
            sed.backupSuffix = option.value.value_or(sed.backupSuffix);
        }
    }
    if (pieces.empty() && sed.scriptFiles.empty() && !sed.files.empty()) {
        pieces.push_back(std::move(sed.files.front()));
        sed.files.erase(sed.files.begin());
    }
    sed.script = joined(pieces, "\n");
    return sed;
}

void noteScript(BasherAnalysis& analysis, const RealSed& sed, const SedScript& script) {
    if (!sed.scriptFiles.empty())
        analysis.addSideEffect({PlainSideEffect::runningUnknownScript, sed.scriptFiles.front()});
    noteUnlistedWrites(analysis, "sed", script.writtenFiles);
    if (script.runsCommands) noteUnlistedCommands(analysis, "sed");
    noteFilesSeenOtherwise(analysis, "sed", script.readFiles);
    if (!sed.isInPlace) noteFilesSeenOtherwise(analysis, "sed", realFilesAmong(sed.files));
}

bool isShownAs(BasherAnalysis& analysis, const std::string& path, FileStateType state) {
    return analysis.fileHistory(analysis.resolveURL(path)).lastState() == state;
}

// A suffix with a star makes a name of its own, and one with a slash a place.
std::optional<std::string> plainBackup(const RealSed& sed, const std::string& file) {
    if (contains(sed.backupSuffix, "*") || contains(sed.backupSuffix, "/")) return std::nullopt;
    return file + sed.backupSuffix;
}

// What is changed in place besides what the model has, once it has recorded that.
void noteInPlace(BasherAnalysis& analysis, const RealSed& sed) {
    if (!sed.isInPlace) return;
    Words unlisted;
    for (const auto& file : sed.files) {
        if (file.empty() || !isThere(analysis, "sed", file)) continue;
        if (!isShownAs(analysis, file, FileStateType::modified)) unlisted.push_back(file);
        if (sed.backupSuffix.empty()) continue;
        const auto backup = plainBackup(sed, file);
        if (!backup || !isShownAs(analysis, *backup, FileStateType::created))
            unlisted.push_back(file + sed.backupSuffix);
    }
    noteUnlistedWrites(analysis, "sed", unlisted);
}

// --- the model ---

constexpr std::string_view unfollowedOptions[] = {"-f", "--file", "-r", "--read", "-w", "--write", "-s", "--separate"};

bool isGluedInPlace(std::string_view word) {
    return word.size() > 2 && word.starts_with("-i");
}

struct InPlace {
    bool isOn = false;
    std::string backupSuffix;
};

InPlace takeInPlace(ArgExtractor& args) {
    InPlace inPlace;
    const auto& words = args.remainingArgs();
    if (const auto glued = std::find_if(words.begin(), words.end(), isGluedInPlace); glued != words.end()) {
        inPlace = {true, glued->substr(2)};
        args.removeArg(std::string(*glued));
    }
    for (const auto option : unfollowedOptions)
        if (args.extractOptionsAnywhere({{option, 1}}))
            throw BasherAnalysisError{ErrorKind::simulationError,
                                      "sed: script files, read/write operations not supported in simulation"};
    if (const auto apart = args.extractOptionsAnywhere({{"-i", 1}})) {
        inPlace.isOn = true;
        if (!apart->front().args.empty()) inPlace.backupSuffix = apart->front().args.front();
    }
    return inPlace;
}

std::optional<CommandResult> sourceMissing(BasherAnalysis& analysis, const std::string& path) {
    if (isThere(analysis, "sed", path)) return std::nullopt;
    return analysis.addCommandError("Text modification expects file",
                                    fmt::format("sed: {}: No such file or directory", path));
}

CommandResult sedIncorrectlyWritten(BasherAnalysis& analysis, std::string technical) {
    return analysis.addCommandError("Text modification command written wrong", std::move(technical));
}

CommandResult editInPlace(BasherAnalysis& analysis, const Words& files, const std::string& backupSuffix) {
    if (files.empty()) return sedIncorrectlyWritten(analysis, "sed: can't do in-place editing on standard input");
    const auto edit = [&](const std::string& path) -> std::optional<CommandResult> {
        if (auto failure = sourceMissing(analysis, path)) return failure;
        if (!backupSuffix.empty()) analysis.addFileChange(creation(analysis.resolveURL(path + backupSuffix)), false);
        analysis.addFileChange(modification(analysis.resolveURL(path)), std::nullopt);
        return std::nullopt;
    };
    return firstFailure(files, edit).value_or(unknownText());
}

CommandResult runModel(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const InPlace inPlace = takeInPlace(args);
    args.extractAllFlagsAtStart({"i", "f", "r", "w", "s"});
    Words files = args.extractLeadingOperands();
    if (files.empty()) return sedIncorrectlyWritten(analysis, "sed: missing script argument");
    files.erase(files.begin());  // the script

    if (inPlace.isOn) return editInPlace(analysis, files, inPlace.backupSuffix);
    if (!input.standardInput.isKnown()) return unknownText();
    const auto check = [&](const auto& path) { return sourceMissing(analysis, path); };
    if (const auto failure = firstFailure(files, check)) return *failure;
    return saidIfStopped(analysis, input, analysis.runRealCommand("sed", input.standardInput, input.args));
}

bool onlyPrints(const SedScript& script) {
    return script.isUnderstood && !script.runsCommands && script.writtenFiles.empty();
}

// With the escapes in place that double quotes are taken to resolve.
std::string withEscapes(std::string_view script) {
    return replacedAll(replacedAll(replacedAll(script, "\n", "\\n"), "\t", "\\t"), "\r", "\\r");
}

}  // namespace

bool onlyPrintsEdited(const Words& args) {
    const RealSed sed = realSed(args);
    return !sed.isInPlace && sed.scriptFiles.empty() && onlyPrints(readSedScript(sed.script)) &&
           onlyPrints(readSedScript(withEscapes(sed.script)));
}

CommandResult editStream(BasherAnalysis& analysis, const ModelInput& input) {
    const RealSed sed = realSed(input.args);
    const SedScript script = readSedScript(sed.script);
    noteScript(analysis, sed, script);
    const CommandResult result = runModel(analysis, input);
    noteInPlace(analysis, sed);
    // The real tool refuses what is no script, and then nothing happens.
    if (!script.isUnderstood && result.exitCode != 1) noteUnlistedCommands(analysis, "sed");
    return result;
}

}  // namespace brindlet
