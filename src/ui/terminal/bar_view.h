// What the bar in a terminal shows: lines composed of the flow's view, of where the keys go and of the size there is.
//
//     const BarFrame frame = composeBar({view, prediction, field, ...}, {.rows = 24, .columns = 80});
//     screen.draw(frame);
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "ui/predict_report.h"
#include "ui/prompt_flow.h"
#include "ui/styled_text.h"
#include "ui/terminal/item_picker.h"
#include "ui/terminal/text_field.h"

namespace brindlet {

struct BarSize {
    std::size_t rows = 24;
    std::size_t columns = 80;
};

struct BarFrame {
    std::vector<StyledLine> lines;  // at most as many as there are rows, none wider than the columns
    std::size_t cursorRow = 0;
    std::size_t cursorColumn = 0;
    bool hasCursor = false;
};

struct BarContent {
    const PromptFlowView& view;
    const std::optional<PredictReport>& prediction;
    const TextField& field;    // the request, or the command where the prediction is shown
    const ItemPicker* picker;  // none: nothing is being picked
    std::string folder;        // as people read it
    std::vector<std::string> selection;
    std::string confirmTitle;
    std::string note;  // what could not be shown elsewhere
    bool isOutputShown = false;
    std::size_t scrolled = 0;  // lines of the body that have gone up
    std::size_t turn = 0;      // moves what has no fraction
    bool hasUnicode = true;
};

BarFrame composeBar(const BarContent& content, const BarSize& size);

// Whether the field is there to be typed into.
bool hasField(PromptState state);

}  // namespace brindlet
