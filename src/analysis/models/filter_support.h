// What the models of the commands that read text and print text have in common: their files, the real tool's input, and
// what has to be said where the tool does more, or reads the line otherwise, than the model.
//
//     if (auto missing = firstMissing(analysis, "wc", files)) return ...;
//     return filterFiles(analysis, input, files);
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "analysis/models/model_support.h"
#include "analysis/models/tool_options.h"

namespace brindlet {

// Without "-", which stands for the standard input.
Words realFilesAmong(const Words& operands);

// Whether the real tool, which sees the disk as it is, would see what the simulation has at that path.
bool isUnchanged(BasherAnalysis& analysis, std::string_view path);
bool areUnchanged(BasherAnalysis& analysis, const Words& paths);

// Whether a path names something. Where it doesn't but may, inside a folder that the line has made, that is said.
bool isThere(BasherAnalysis& analysis, std::string_view command, std::string_view path);
std::optional<std::string> firstMissing(BasherAnalysis& analysis, std::string_view command, const Words& paths);
// A folder among them can't be printed.
void doubtFolders(BasherAnalysis& analysis, std::string_view command, const Words& paths);
// "head: a: No such file or directory", which only the tool's own words show.
CommandResult noSuchFile(std::string_view command, std::string_view path);

// Exit 0 with unknown output: what a filter is taken to do where nothing better can be said.
CommandResult unknownText();

// Says so where the tool, about to be launched, sees one of the files otherwise than the simulation.
void noteFilesSeenOtherwise(BasherAnalysis& analysis, std::string_view command, const Words& paths);

// On its standard input: unknown if that is.
CommandResult filterInput(BasherAnalysis& analysis, const ModelInput& input);
CommandResult filterInput(BasherAnalysis& analysis, const ModelInput& input, const Words& words);
// On files that exist; unknown if the line has changed one. With no file but "-" on its standard input.
CommandResult filterFiles(BasherAnalysis& analysis, const ModelInput& input, const Words& operands);

// Files are written, or a command run, that the prediction doesn't list. With no path nothing is said.
void noteUnlistedWrites(BasherAnalysis& analysis, std::string_view command, const Words& paths);
void noteUnlistedCommands(BasherAnalysis& analysis, std::string_view command);
// The tool takes the words otherwise than the model, so that what it prints and how it ends is in doubt. What it may
// write is said apart.
void noteMisreading(BasherAnalysis& analysis, std::string_view command);
void noteMisreadOperands(BasherAnalysis& analysis, const ModelInput& input, const Words& operands,
                         std::span<const ToolOption> options);
// For "-" among the files of a tool that the model launches with no input although there is some.
void doubtUnreadInput(BasherAnalysis& analysis, const ModelInput& input, const Words& operands);

// For a variable that the shell itself sets by its name: with a subscript that is no number, the shell would run a
// command that stands in it, which ends the analysis in `highRisk`.
void refuseSubscript(std::string_view command, std::string_view variable);

// What a command that can write comes to where the tool was not let run to its end, which is said.
CommandResult saidIfStopped(BasherAnalysis& analysis, const ModelInput& input, CommandResult result);

}  // namespace brindlet
