#include "ui/predict_report.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <tuple>
#include <vector>

#include "exec/package_table.h"
#include "text/enum_rows.h"
#include "text/strings.h"
#include "ui/prediction_rows.h"
#include "ui/terminal/shown_text.h"

namespace brindlet {

namespace {

struct GlyphRow {
    std::string_view symbolName;
    std::string_view unicode;  // one column wide in a terminal
    std::string_view ascii;
};
constexpr GlyphRow glyphRows[] = {
    {"apple.terminal", "❯", "$"},
    {"applescript", "§", "S"},
    {"arrow.down.circle.fill", "↓", "D"},
    {"arrow.right", "→", ">"},
    {"character.cursor.ibeam", "⌶", "I"},
    {"checkmark", "✓", "v"},
    {"clock", "◷", "@"},
    {"delete.left", "⌫", "x"},
    {"exclamationmark", "!", "!"},
    {"eye", "◉", "o"},
    {"gearshape", "⚙", "*"},
    {"list.clipboard", "▤", "="},
    {"network", "⇅", "^"},
    {"pencil", "✎", "~"},
    {"play", "▸", "&"},
    {"plus", "+", "+"},
    {"power", "⏻", "P"},
    {"printer", "⎙", "p"},
    {"shippingbox", "▣", "#"},
    {"trash", "♲", "T"},
    {"xmark.octagon", "⊗", "X"},
};
constexpr GlyphRow unknownGlyph{"", "•", "-"};

struct ColorRow {
    std::string_view name;
    std::string_view escape;
};
// ECMA-48, 8.3.117; orange from the palette of 256.
constexpr ColorRow colorRows[] = {
    {"red", "\x1b[31m"},  {"green", "\x1b[32m"},        {"yellow", "\x1b[33m"},
    {"blue", "\x1b[34m"}, {"orange", "\x1b[38;5;208m"}, {"bold", "\x1b[1m"},
};
constexpr std::string_view colorEnd = "\x1b[0m";

struct RiskRow {
    RiskSummary key;
    std::string_view color;
};
constexpr RiskRow riskRows[] = {
    {RiskSummary::low, "green"},
    {RiskSummary::medium, "orange"},
    {RiskSummary::high, "red"},
};
static_assert(rowsCover(riskRows, RiskSummary::high));

std::string colored(std::string_view text, std::string_view color, const TerminalStyle& style) {
    const auto row = std::ranges::find(colorRows, color, &ColorRow::name);
    if (!style.hasColor || row == std::end(colorRows)) return std::string(text);
    return std::string(row->escape).append(text).append(colorEnd);
}

std::string glyph(const ChangesViewIcon& icon, const TerminalStyle& style) {
    const auto found = std::ranges::find(glyphRows, icon.symbolName, &GlyphRow::symbolName);
    const GlyphRow& row = found == std::end(glyphRows) ? unknownGlyph : *found;
    return colored(style.hasUnicode ? row.unicode : row.ascii, icon.color, style);
}

// What the rows say of their own has at most one further line, at the end. Any line end before that is part of a name
// or a message, and escaped, so that no name can push the rest off the screen.
std::vector<std::string> subtitleLines(std::string_view subtitle) {
    subtitle = trimmedNewlines(subtitle);
    const std::size_t lastEnd = subtitle.rfind('\n');
    if (lastEnd == std::string_view::npos) return {shownText(subtitle)};
    return {shownText(subtitle.substr(0, lastEnd)), shownText(subtitle.substr(lastEnd + 1))};
}

std::string rowText(const ChangesViewIconAndText& row, const TerminalStyle& style) {
    std::string text = "  ";
    if (row.icon) text += glyph(*row.icon, style) + ' ';
    text += shownText(row.text) + '\n';
    if (row.subtitle)
        for (const std::string& line : subtitleLines(*row.subtitle)) text += "    " + line + '\n';
    return text;
}

std::string titles(const std::set<CommandEffect>& effects) {
    std::vector<std::string> rawValues;
    for (const CommandEffect effect : effects) rawValues.emplace_back(rawValue(effect));
    return joined(rawValues, ", ");
}

std::vector<ChangesViewIconAndText> rowsOf(const PredictReport& report) {
    return predictionRows(report.result, report.folder, report.home, report.predictionNeedsInstall);
}

// What has to be installed first; nothing where all is there.
std::string requirementsText(const PredictReport& report, const TerminalStyle& style) {
    const auto packages = availablePackages();
    const auto package = std::ranges::find(packages, report.missingPackage.value_or(""), &PackageInfo::name);
    if (package == packages.end()) return "";
    const std::string name(package->name);
    std::string text = colored("Requirements:", "bold", style) + '\n';
    if (report.needsHomebrew)
        text +=
            rowText({ChangesViewIcon{"red", "exclamationmark"},
                     "Manual Homebrew installation is required, then Brindlet can automatically install Homebrew & " +
                         name + ".",
                     std::nullopt},
                    style);
    const bool isFromHomebrew = package->source == PackageSource::homebrew;
    const std::string installs = isFromHomebrew ? "Installs with Homebrew" : "Installs locally to Brindlet";
    text += rowText({ChangesViewIcon{"blue", "arrow.down.circle.fill"}, "Downloads " + name,
                     std::string(package->description) + "\n" + installs + ": brindlet tools install " + name},
                    style);
    return text;
}

// Ordered by path and then by type, so that two runs print the same text.
std::vector<PredictedChange> sortedChanges(std::vector<PredictedChange> changes) {
    std::ranges::stable_sort(changes, {}, [](const PredictedChange& predicted) {
        return std::tie(predicted.change.url, predicted.change.type);
    });
    return changes;
}

}  // namespace

Json toJson(const PredictReport& report) {
    const AnalysisResult& result = report.result;
    const auto effects = commandEffects(result, report.folder);
    return recordJson({
        {"command", report.command},
        {"rewrittenCommand", result.rewrittenCommand},
        {"runs", report.runs},
        {"exitCode", optionalJson(result.exitCode)},
        {"output", toJson(result.output)},
        {"changes", jsonList(sortedChanges(result.changes))},
        {"sideEffects", jsonList(result.sideEffects)},
        {"commandErrors", jsonList(result.commandErrors)},
        {"analysisError", result.analysisError ? toJson(*result.analysisError) : Json()},
        {"requiredPackages", result.requiredPackages},
        {"missingPackage", optionalJson(report.missingPackage)},
        {"effects", toJson(effects)},
        {"risk", caseName(riskSummary(effects))},
        {"reasons", toJson(reasonsToAsk(effects, report.toggles))},
        {"rows", jsonList(rowsOf(report))},
    });
}

std::string predictionText(const PredictReport& report, const TerminalStyle& style) {
    const auto effects = commandEffects(report.result, report.folder);
    const RiskSummary highest = riskSummary(effects);
    const auto reasons = reasonsToAsk(effects, report.toggles);

    std::string text = requirementsText(report, style) + colored("Brindlet predicts:", "bold", style) + '\n';
    for (const auto& row : rowsOf(report)) text += rowText(row, style);
    text += "Risk: " + colored(caseName(highest), rowOf(riskRows, highest).color, style) + '\n';
    if (!reasons.empty()) text += "Asks before running: " + titles(reasons) + '\n';
    return text;
}

}  // namespace brindlet
