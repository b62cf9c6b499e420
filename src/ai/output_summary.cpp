#include "ai/output_summary.h"

#include <fmt/format.h>

#include <optional>
#include <string_view>

#include "platform/log.h"
#include "prompts/quick_commands.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::size_t mostShownCharacters = 10000;
constexpr std::size_t charactersKeptAtEachEnd = 5000;
constexpr std::size_t longOutputCharacters = 400;  // from here on the output comes first
constexpr std::size_t mostFailureCharacters = 500;

constexpr std::string_view emptyOutputText =
    "The command ran and produced no console output. This is normal for many commands (e.g. file conversions). "
    "Decide:\n\n1) Assume success. Reply with exactly:\n    ✅ <short two-word past-tense action "
    "summary>\nExamples:\n    ✅ PDF optimized\n    ✅ File converted\n    ✅ Gif generated\n\n2) Only if the "
    "command is one that normally prints results (e.g. find/grep/ls) and nothing appeared, reply with:\n    🤷 short "
    "summary of the empty result\n\nAlways keep it to one line, start with emoji, no extra words.";

constexpr std::string_view shortOutputText =
    "Provide a 1 line, 3-10 word summary with emoji that summarises or extracts the exact requested information from "
    "the output\nExtract the key information or identify if it's an error. Be specific with numbers, details and units "
    "- this summary is all the user will see.\n";

constexpr std::string_view echoText = "If the command was an echo with zero logic, simply repeat the output.\n";

constexpr std::string_view shortExamplesText =
    "Examples:\n- 🤔 Please can you clarify your request?\n- 🎬 Converted 3 MP4 files\n- 🤷 No images found";

constexpr std::string_view longOutputText =
    "\n\nPLEASE SUMMARIZE OR GET THE REQUESTED ANSWER FROM THE OUTPUT.\n\nFORMAT: [emoji when appropriate] [concise "
    "3-10 word summary]\n\nRULES:\n- Keep under 10 words, aim for fewer\n- The user never sees the full output; your "
    "summary is critical. So say \"15 MB\", not \"File size outputted.\"\n- If command was echo, just repeat its "
    "content\n- Include ONLY the summary in plain text, nothing else, not even a prefix like \"SUMMARY:\"\n- "
    "Examples:\n    - 🎬 Converted 3 MP4 files\n    - 🤷 No images found\n    - 15MB file size\n    - 24mm focal "
    "length";

std::string_view lastCharacters(std::string_view text, std::size_t count) {
    std::size_t begin = text.size();
    for (; count > 0 && begin > 0; --count) begin -= characterLengthBefore(text, begin);
    return text.substr(begin);
}

std::string shownOutput(std::string_view output) {
    const std::size_t count = characterCount(output);
    if (count <= mostShownCharacters) return std::string(trimmed(output));
    return fmt::format("{}\n\n... <TRUNCATED {} CHARACTERS> ...\n\n{}",
                       trimmed(firstCharacters(output, charactersKeptAtEachEnd)), count - mostShownCharacters,
                       trimmed(lastCharacters(output, charactersKeptAtEachEnd)));
}

std::string fileLine(const RunToSummarize& run, std::string_view withoutFiles) {
    return run.files.empty() ? std::string(withoutFiles)
                             : fmt::format("USER HAD {} FILE(S) SELECTED", run.files.size());
}

// Nothing where all went well.
std::string failureLine(const RunToSummarize& run) {
    if (run.allSuccess) return "";
    const std::string failures = joined(run.failures, " ");
    return fmt::format("THE COMMAND FAILED: {}", firstCharacters(failures, mostFailureCharacters));
}

std::string longPrompt(const RunToSummarize& run, std::string_view shown) {
    return fmt::format(
        "{}\n\n====\n\nTHE ABOVE IS THE OUTPUT OF THIS LLM-GENERATEDCOMMAND: {}\nORIGINAL HUMAN REQUEST: "
        "{}\n{}\n\n\n{}{}",
        shown, run.command, run.prompt, run.allSuccess ? "RETURN CODE WAS ZERO, INDICATING SUCCESS" : failureLine(run),
        fileLine(run, "NO FILES WERE SELECTED"), longOutputText);
}

std::string shortPrompt(const RunToSummarize& run, std::string_view shown) {
    std::string text = fmt::format("{}\nORIGINAL USER REQUEST: {}\nAI-GENERATED COMMAND: {}\n",
                                   fileLine(run, "USER SELECTED NO FILES AS INPUT"), run.prompt, run.command);
    if (!run.allSuccess) text += failureLine(run) + "\n";
    text += '\n';
    if (shown.empty()) return text.append(emptyOutputText);
    text += shortOutputText;
    if (run.command.starts_with("echo")) text += echoText;
    return text + fmt::format("\n{}\n\nSTDOUT TO SUMMARIZE: {}\n", shortExamplesText, shown);
}

// What was cut is long, also where nearly all that is left of it was blanks.
std::string promptFor(const RunToSummarize& run, std::string_view shown) {
    const bool isLong =
        characterCount(shown) >= longOutputCharacters || characterCount(run.output) > mostShownCharacters;
    return isLong ? longPrompt(run, shown) : shortPrompt(run, shown);
}

}  // namespace

std::string summaryPrompt(const RunToSummarize& run) {
    return promptFor(run, shownOutput(run.output));
}

std::optional<std::string> quickSummary(const RunToSummarize& run) {
    const auto quick = quickCommand(run.prompt, run.files);
    if (!quick) return std::nullopt;
    return quick->summarize({run.prompt, run.command, run.files, run.output, joined(run.failures, ""), run.allSuccess});
}

Result<OutputSummary> summarizeOutput(ModelCalling& models, const AIModel& model, const RunToSummarize& run,
                                      const std::stop_token& stop) {
    if (auto text = quickSummary(run)) return OutputSummary{std::move(*text), true};
    if (auto problem = models.whyUnusable(model)) return Failure{std::move(*problem)};
    const std::string shown = shownOutput(run.output);
    const auto answer = models.timedCall("Human readable prompt with " + model.name,
                                         {{AIRole::user, promptFor(run, shown)}}, model, stop);
    if (!answer) return answer.failure();
    std::string summary(trimmed(*answer));
    logInfo("Original command from AI: " + run.command);
    logInfo("Original command output: " + shown);
    logInfo("Human readable summary: " + summary);
    return OutputSummary{std::move(summary), false};
}

}  // namespace brindlet
