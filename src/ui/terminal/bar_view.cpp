#include "ui/terminal/bar_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "exec/file_variables.h"
#include "text/characters.h"
#include "text/enum_rows.h"
#include "text/strings.h"
#include "ui/terminal/progress_line.h"
#include "ui/terminal/shown_text.h"

namespace brindlet {

namespace {

using enum PromptState;

constexpr std::size_t margin = 2;
constexpr std::size_t rowsAroundBody = 5;  // title, blank, field, blank, keys

struct StateRow {
    PromptState key;
    std::string_view placeholder;  // of its field
    std::string_view keys;         // "%" stands for what confirms
};
constexpr StateRow stateRows[] = {
    {enteringPrompt, "Enter query or command", "Enter ask   Up/Down history   Tab select items   Ctrl-C leave"},
    {sendingRequest, "", "Esc cancel"},
    {responseReceived, "", ""},
    {awaitingConfirmation, "", "Enter %   Ctrl-R refine   Esc back   Tab select items   PgDn more"},
    {enteringFollowUpPrompt, "Refine your request...", "Enter ask   Esc back to the prediction   Tab select items"},
    {runningCommand, "", "Esc cancel"},
    {installingPackage, "", "Esc cancel"},
    {completeButInterprettingResult, "", "Esc cancel"},
    {question, "Respond...", "Enter reply   Esc back   Tab select items"},
    {complete, "", "Enter new request   Ctrl-R follow up   Ctrl-O full output"},
    {presentingError, "", "Enter new request   Ctrl-R refine request"},
};
static_assert(rowsCover(stateRows, presentingError));
constexpr std::string_view pickerKeys = "Space mark   Ctrl-A all   letters find   Enter done";
constexpr std::string_view outputKeys = "Ctrl-O back to the summary   PgUp/PgDn scroll   Esc back";

constexpr std::string_view exampleRequests[] = {"to png", "how big is this", "zip", "find all pdfs"};

class Composer {
  public:
    Composer(const BarContent& content, const BarSize& size)
        : content_(content),
          view_(content.view),
          rows_(std::max<std::size_t>(size.rows, 3)),
          columns_(std::max<std::size_t>(size.columns, 20) - 1) {}  // some terminals wrap when the last one is filled

    BarFrame frame() {
        BarFrame frame;
        frame.lines.push_back(title());
        add(frame, {});
        addField(frame);
        add(frame, {});
        const std::vector<StyledLine> whole = body();
        const std::size_t room = rows_ > rowsAroundBody ? rows_ - rowsAroundBody : 0;
        const std::size_t first = std::min(content_.scrolled, whole.size() > room ? whole.size() - room : 0);
        for (std::size_t at = first; at < std::min(whole.size(), first + room); ++at) add(frame, whole[at]);
        if (whole.size() > first + room && !frame.lines.empty())
            frame.lines.back() = {{fmt::format("  {} more lines", whole.size() - first - room + 1), TextStyle::dim}};
        while (frame.lines.size() + 1 < rows_) add(frame, {});
        frame.lines.resize(rows_ - 1);
        add(frame, {{keys(), TextStyle::dim}});
        return frame;
    }

  private:
    void add(BarFrame& frame, StyledLine line) const {
        frame.lines.push_back(fitted(std::move(line), columns_, content_.hasUnicode));
    }

    StyledLine title() const {
        const std::size_t count = content_.selection.size();
        const std::string_view dot = content_.hasUnicode ? " · " : " - ";
        std::string selected = count == 0 ? "This folder" : count == 1 ? "1 item" : fmt::format("{} items", count);
        if (count > 0) selected += ": " + joined(content_.selection, ", ");
        return fitted({{"Brindlet", TextStyle::bold},
                       {"  " + shownText(content_.folder), TextStyle::blue},
                       {std::string(dot) + shownText(selected), TextStyle::dim}},
                      columns_, content_.hasUnicode);
    }

    std::string keys() const {
        if (content_.picker != nullptr) return std::string(pickerKeys);
        if (content_.isOutputShown) return std::string(outputKeys);
        return replacedAll(rowOf(stateRows, view_.promptState).keys, "%", lowercased(content_.confirmTitle));
    }

    // The field, or what stands in its place: the request that is being worked on, or the line that runs.
    void addField(BarFrame& frame) const {
        const std::string_view sign = content_.hasUnicode ? "❯ " : "> ";
        if (content_.picker != nullptr) return addEdited(frame, content_.picker->filter(), "Find items", sign);
        if (hasField(view_.promptState) && !content_.isOutputShown)
            return addEdited(frame, content_.field, rowOf(stateRows, view_.promptState).placeholder,
                             view_.promptState == awaitingConfirmation ? "$ " : sign);
        const bool isLine = view_.command && view_.promptState != sendingRequest;
        add(frame, {{isLine ? "$ " : std::string(sign), TextStyle::dim},
                    {shownText(isLine ? view_.command->bashCommand : view_.prompt), TextStyle::dim}});
    }

    // A text that is wider than the row shows the part around the cursor.
    void addEdited(BarFrame& frame, const TextField& field, std::string_view placeholder, std::string_view sign) const {
        const std::size_t room = columns_ - margin - 1;
        const std::string before = shownText(std::string_view(field.text()).substr(0, field.cursor()));
        const std::string behind = shownText(std::string_view(field.text()).substr(field.cursor()));
        std::string_view left = before;
        while (columnsOf(left) > room) left.remove_prefix(characterLength(left, 0));
        StyledLine line = {{std::string(sign), TextStyle::blue}, {std::string(left) + behind}};
        if (field.text().empty()) line.back() = {std::string(placeholder), TextStyle::dim};
        frame.hasCursor = true;
        frame.cursorRow = frame.lines.size();
        frame.cursorColumn = margin + columnsOf(left);
        add(frame, std::move(line));
    }

    std::vector<StyledLine> body() const {
        std::vector<StyledLine> lines;
        if (content_.picker != nullptr) {
            addItems(lines);
        } else if (content_.isOutputShown) {
            addText(lines, view_.fullCommandOutput, TextStyle::plain);
        } else {
            addState(lines);
        }
        return lines;
    }

    void addState(std::vector<StyledLine>& lines) const {
        switch (view_.promptState) {
            case enteringPrompt:
                if (view_.prompt.empty()) addHelp(lines);
                break;
            case sendingRequest:
            case responseReceived:
                addLine(lines, {{spinner() + " Asking " + view_.selectedModel.friendlyName + "...", TextStyle::dim}});
                break;
            case awaitingConfirmation:
            case enteringFollowUpPrompt:
                addPrediction(lines);
                break;
            case runningCommand:
            case installingPackage:
            case completeButInterprettingResult:
                addProgress(lines);
                break;
            case question:
            case complete:
                addResult(lines);
                break;
            case presentingError:
                addText(lines, view_.error, TextStyle::red);
                break;
        }
        if (!content_.note.empty()) addText(lines, content_.note, TextStyle::dim);
    }

    void addHelp(std::vector<StyledLine>& lines) const {
        std::vector<std::string> examples;
        for (const std::string_view request : exampleRequests) examples.push_back('"' + std::string(request) + '"');
        addText(lines, "Say what should happen to the selected items, such as " + joined(examples, ", ") + ".",
                TextStyle::dim);
        addText(lines, "What it would do is shown before it is done.", TextStyle::dim);
    }

    void addPrediction(std::vector<StyledLine>& lines) const {
        constexpr std::string_view runsTexts[] = {
            "Runs once:", "Runs once per file selected:", "Runs once on all selected files:"};
        if (!view_.command || !content_.prediction) return;
        if (view_.promptState == enteringFollowUpPrompt)
            addLine(lines, {{"$ " + shownText(view_.command->bashCommand), TextStyle::dim}});
        if (!view_.command->prompt.empty())
            addLine(lines, {{"\"" + shownText(view_.command->prompt) + "\"", TextStyle::dim}});
        const auto mode = static_cast<std::size_t>(runMode(view_.command->bashCommand));
        addLine(lines, {{std::string(runsTexts[mode]), TextStyle::dim}});
        lines.emplace_back();
        for (const StyledLine& line : predictionLines(*content_.prediction, content_.hasUnicode)) addLine(lines, line);
    }

    void addProgress(std::vector<StyledLine>& lines) const {
        addLine(lines,
                {{ProgressLine::row(view_.progressNorm, "", content_.turn, columns_ - margin), TextStyle::green}});
        addLine(lines, {{shownText(statusText(view_)), TextStyle::dim}});
    }

    void addResult(std::vector<StyledLine>& lines) const {
        if (!view_.result.empty())
            addText(lines, view_.result, TextStyle::bold);
        else
            addText(lines, view_.fullCommandOutput.empty() ? "Done." : view_.fullCommandOutput, TextStyle::plain);
        for (const std::string& message : view_.failureMessages) addText(lines, message, TextStyle::red);
    }

    void addItems(std::vector<StyledLine>& lines) const {
        const ItemPicker& picker = *content_.picker;
        const std::size_t room = rows_ > rowsAroundBody ? rows_ - rowsAroundBody : 1;
        const std::size_t first = picker.cursor() < room ? 0 : picker.cursor() - room + 1;
        for (std::size_t at = first; at < std::min(picker.shown().size(), first + room); ++at) {
            const std::string& name = picker.shown()[at];
            const bool isMarked = picker.isMarked(name);
            const std::string_view box = content_.hasUnicode ? (isMarked ? "● " : "○ ") : (isMarked ? "[x] " : "[ ] ");
            lines.push_back({{at == picker.cursor() ? "> " : "  "},
                             {std::string(box), isMarked ? TextStyle::green : TextStyle::dim},
                             {shownText(name), at == picker.cursor() ? TextStyle::marked : TextStyle::plain}});
        }
        if (lines.empty()) addText(lines, "No item has that in its name.", TextStyle::dim);
    }

    std::string spinner() const {
        constexpr std::string_view turning[] = {"|", "/", "-", "\\"};
        return std::string(turning[content_.turn % std::size(turning)]);
    }

    void addLine(std::vector<StyledLine>& lines, StyledLine line) const {
        constexpr std::size_t indentOfRest = 4;
        for (StyledLine& piece : wrapped(line, columns_ - margin, indentOfRest)) lines.push_back(std::move(piece));
    }

    void addText(std::vector<StyledLine>& lines, std::string_view text, TextStyle style) const {
        for (const std::string& line : split(trimmedNewlines(text), "\n"))
            for (StyledLine& piece : wrapped({{shownText(line), style}}, columns_ - margin, 0))
                lines.push_back(std::move(piece));
    }

    const BarContent& content_;
    const PromptFlowView& view_;
    std::size_t rows_;
    std::size_t columns_;
};

}  // namespace

bool hasField(PromptState state) {
    return state == enteringPrompt || state == enteringFollowUpPrompt || state == question ||
           state == awaitingConfirmation;
}

BarFrame composeBar(const BarContent& content, const BarSize& size) {
    return Composer(content, size).frame();
}

}  // namespace brindlet
