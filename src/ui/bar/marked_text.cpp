#include "ui/bar/marked_text.h"

#include "text/strings.h"
#include "ui/bar/qt_text.h"

namespace brindlet {

QString markedText(std::string_view text) {
    QString marked;
    bool isStrong = false;
    for (const std::string& piece : split(text, "**")) {
        marked += isStrong ? "<b>" + qt(piece).toHtmlEscaped() + "</b>" : qt(piece).toHtmlEscaped();
        isStrong = !isStrong;
    }
    return marked;
}

}  // namespace brindlet
