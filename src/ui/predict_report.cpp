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

struct RiskRow {
    RiskSummary key;
    TextStyle style;
};
constexpr RiskRow riskRows[] = {
    {RiskSummary::low, TextStyle::green},
    {RiskSummary::medium, TextStyle::orange},
    {RiskSummary::high, TextStyle::red},
};
static_assert(rowsCover(riskRows, RiskSummary::high));

StyledSpan glyph(const ChangesViewIcon& icon, bool hasUnicode) {
    const auto found = std::ranges::find(glyphRows, icon.symbolName, &GlyphRow::symbolName);
    const GlyphRow& row = found == std::end(glyphRows) ? unknownGlyph : *found;
    return {std::string(hasUnicode ? row.unicode : row.ascii), styleNamed(icon.color)};
}

void addRow(std::vector<StyledLine>& lines, const ChangesViewIconAndText& row, bool hasUnicode) {
    StyledLine line = {{"  "}};
    if (row.icon) {
        line.push_back(glyph(*row.icon, hasUnicode));
        line.push_back({" "});
    }
    line.push_back({shownText(row.text)});
    lines.push_back(std::move(line));
    if (!row.subtitle) return;
    for (const std::string& text : subtitleLines(*row.subtitle)) lines.push_back({{"    "}, {text, TextStyle::dim}});
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
void addRequirements(std::vector<StyledLine>& lines, const PredictReport& report, bool hasUnicode) {
    const auto packages = availablePackages();
    const auto package = std::ranges::find(packages, report.missingPackage.value_or(""), &PackageInfo::name);
    if (package == packages.end()) return;
    const std::string name(package->name);
    lines.push_back({{"Requirements:", TextStyle::bold}});
    if (report.needsHomebrew)
        addRow(lines,
               {ChangesViewIcon{"red", "exclamationmark"},
                "Manual Homebrew installation is required, then Brindlet can automatically install Homebrew & " + name +
                    ".",
                std::nullopt},
               hasUnicode);
    const bool isFromHomebrew = package->source == PackageSource::homebrew;
    const std::string installs = isFromHomebrew ? "Installs with Homebrew" : "Installs locally to Brindlet";
    addRow(lines,
           {ChangesViewIcon{"blue", "arrow.down.circle.fill"}, "Downloads " + name,
            std::string(package->description) + "\n" + installs + ": brindlet tools install " + name},
           hasUnicode);
}

// Ordered by path and then by type, so that two runs print the same text.
std::vector<PredictedChange> sortedChanges(std::vector<PredictedChange> changes) {
    std::ranges::stable_sort(changes, {}, [](const PredictedChange& predicted) {
        return std::tie(predicted.change.url, predicted.change.type);
    });
    return changes;
}

}  // namespace

// What the rows say of their own has at most one further line, at the end. Any line end before that is part of a name
// or a message, and escaped, so that no name can push the rest off the screen.
std::vector<std::string> subtitleLines(std::string_view subtitle) {
    subtitle = trimmedNewlines(subtitle);
    const std::size_t lastEnd = subtitle.rfind('\n');
    if (lastEnd == std::string_view::npos) return {shownText(subtitle)};
    return {shownText(subtitle.substr(0, lastEnd)), shownText(subtitle.substr(lastEnd + 1))};
}

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

std::vector<StyledLine> predictionLines(const PredictReport& report, bool hasUnicode) {
    const auto effects = commandEffects(report.result, report.folder);
    const RiskSummary highest = riskSummary(effects);
    const auto reasons = reasonsToAsk(effects, report.toggles);

    std::vector<StyledLine> lines;
    addRequirements(lines, report, hasUnicode);
    lines.push_back({{"Brindlet predicts:", TextStyle::bold}});
    for (const auto& row : rowsOf(report)) addRow(lines, row, hasUnicode);
    lines.push_back({{"Risk: "}, {std::string(caseName(highest)), rowOf(riskRows, highest).style}});
    if (!reasons.empty()) lines.push_back({{"Asks before running: " + titles(reasons)}});
    return lines;
}

std::string predictionText(const PredictReport& report, const TerminalStyle& style) {
    std::string text;
    for (const StyledLine& line : predictionLines(report, style.hasUnicode))
        text += ansiText(line, style.hasColor) + '\n';
    return text;
}

}  // namespace brindlet
