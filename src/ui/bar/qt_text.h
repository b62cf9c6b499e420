// Texts on their way from the program to its pages.
#pragma once

#include <QString>
#include <string_view>

#include "ui/terminal/shown_text.h"

namespace brindlet {

inline QString qt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// From strangers: shown, never read as markup.
inline QString shown(std::string_view text) {
    return qt(shownText(text));
}

}  // namespace brindlet
