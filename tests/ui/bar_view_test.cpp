#include "ui/terminal/bar_view.h"

#include <gtest/gtest.h>

#include "text/strings.h"

namespace brindlet {
namespace bar_view_tests {

TextField typed(std::initializer_list<Key> keys) {
    TextField field;
    for (const Key& key : keys) field.take(key);
    return field;
}

TEST(TextField, IsEditedByTheUsualKeys) {
    using enum Key::Kind;
    struct Case {
        std::initializer_list<Key> keys;
        const char* text;
        std::size_t cursor;
    };
    const Case cases[] = {
        {{{text, "ab"}, {left}, {text, "é"}}, "aéb", 3},
        {{{text, "👩‍👩‍👧x"}, {left}, {backspace}}, "x", 0},
        {{{text, "ab"}, {home}, {remove}, {end}, {backspace}, {backspace}}, "", 0},
        {{{text, "one two  "}, {control, "w"}}, "one ", 4},
        {{{text, "one two"}, {wordLeft}, {control, "k"}}, "one ", 4},
        {{{text, "one two"}, {wordLeft}, {control, "u"}}, "two", 0},
        {{{text, "one"}, {control, "a"}, {wordRight}, {text, "!"}}, "one!", 4},
        {{{left}, {right}, {remove}, {backspace}}, "", 0},
    };
    for (const auto& [keys, text_, cursor] : cases) {
        SCOPED_TRACE(text_);
        const TextField field = typed(keys);
        EXPECT_EQ(field.text(), text_);
        EXPECT_EQ(field.cursor(), cursor);
    }
}

TEST(ItemPicker, MarksAndNarrows) {
    ItemPicker picker;
    picker.open({"a.txt", "B.TXT", "sub/"}, {"sub/"});
    picker.take({Key::Kind::text, "txt"});
    EXPECT_EQ(picker.shown(), (std::vector<std::string>{"a.txt", "B.TXT"}));
    picker.take({Key::Kind::down});
    picker.take({Key::Kind::down});
    picker.take({Key::Kind::text, " "});
    EXPECT_EQ(picker.marked(), (std::vector<std::string>{"B.TXT", "sub/"}));
    picker.take({Key::Kind::control, "a"});
    EXPECT_EQ(picker.marked().size(), 3U);
    picker.take({Key::Kind::control, "a"});
    EXPECT_EQ(picker.marked(), std::vector<std::string>{"sub/"});
    picker.take({Key::Kind::text, "zz"});
    picker.take({Key::Kind::text, " "});  // nothing to mark
    EXPECT_EQ(picker.marked().size(), 1U);
}

TEST(StyledText, FitsByColumns) {
    EXPECT_EQ(columnsOf("aé日"), 4U);
    EXPECT_EQ(columnsOf("e\xCC\x81"), 1U);
    EXPECT_EQ(ansiText(fitted({{"日本語", TextStyle::red}}, 4, true), false), "日…");
    EXPECT_EQ(ansiText(fitted({{"abc"}, {"def"}}, 6, false), false), "abcdef");
    std::vector<std::string> pieces;
    for (const StyledLine& line : wrapped({{"  one two three-and-more"}}, 9, 4))
        pieces.push_back(ansiText(line, false));
    EXPECT_EQ(pieces, (std::vector<std::string>{"  one two", "    three", "    -and-", "    more"}));
    EXPECT_EQ(wrapped({}, 9, 4).size(), 1U);
}

class BarView : public testing::Test {
  protected:
    std::vector<std::string> lines(std::size_t rows, std::size_t columns) {
        const BarFrame frame = composeBar({.view = view,
                                           .prediction = prediction,
                                           .field = field,
                                           .picker = nullptr,
                                           .folder = "~/photos",
                                           .selection = selection,
                                           .confirmTitle = "Confirm",
                                           .note = "",
                                           .scrolled = scrolled},
                                          {rows, columns});
        std::vector<std::string> texts;
        for (const StyledLine& line : frame.lines) texts.push_back(ansiText(line, false));
        cursorColumn = frame.cursorColumn;
        return texts;
    }

    void predict(const std::string& line) {
        prediction.emplace();
        prediction->command = line;
        prediction->result = view.analysisResult;
    }

    PromptFlowView view;
    std::optional<PredictReport> prediction;
    TextField field;
    std::vector<std::string> selection;
    std::size_t scrolled = 0;
    std::size_t cursorColumn = 0;
};

TEST_F(BarView, IsNeverLargerThanTheTerminal) {
    field.set(std::string(300, 'x') + "日本語");
    selection = {"a\x1b[31m.txt", std::string(200, 'y'), "name \xE2\x80\xAE with a turn"};
    view.error = "first line\n" + std::string(500, 'z');
    view.command = AICommand{.bashCommand = "mv a\nb"};
    view.fullCommandOutput = view.result = std::string(5000, 'o');
    view.analysisResult.rewrittenCommand = "mv";
    for (std::size_t change = 0; change < 40; ++change)
        view.analysisResult.changes.push_back({.change = {.type = FileChange::FileChangeType::create,
                                                          .url = FilePath("/w/" + std::to_string(change)),
                                                          .sourceURL = std::nullopt}});
    predict("mv");
    for (int state = 0; state <= static_cast<int>(PromptState::presentingError); ++state) {
        view.promptState = static_cast<PromptState>(state);
        for (const std::size_t columns : {1U, 30U, 60U, 200U}) {
            for (const std::size_t rows : {1U, 5U, 24U}) {
                const auto shown = lines(rows, columns);
                EXPECT_EQ(shown.size(), std::max<std::size_t>(rows, 3));
                for (const std::string& line : shown) {
                    EXPECT_LT(columnsOf(line), std::max<std::size_t>(columns, 20)) << line;
                    EXPECT_FALSE(contains(line, "\x1b") || contains(line, "\n") || contains(line, "\xE2\x80\xAE"));
                }
                EXPECT_LT(cursorColumn, std::max<std::size_t>(columns, 20));
            }
        }
    }
}

TEST_F(BarView, LongPredictionsScroll) {
    view.promptState = PromptState::awaitingConfirmation;
    view.command = AICommand{.bashCommand = "touch"};
    for (char name = 'a'; name <= 'z'; ++name)
        view.analysisResult.sideEffects.push_back({PlainSideEffect::networkAccess, std::string(3, name)});
    predict("touch");
    auto shown = lines(16, 80);
    EXPECT_TRUE(contains(shown[14], "more lines"));
    scrolled = 1000;
    shown = lines(16, 80);
    EXPECT_TRUE(contains(joined(shown, "\n"), "zzz"));
    EXPECT_FALSE(contains(joined(shown, "\n"), "more lines"));
}

}  // namespace bar_view_tests
}  // namespace brindlet
