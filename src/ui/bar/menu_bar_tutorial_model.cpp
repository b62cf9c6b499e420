#include "ui/bar/menu_bar_tutorial_model.h"

#include "ui/bar/marked_text.h"

namespace brindlet {

QString MenuBarTutorialModel::title() {
    return QStringLiteral("Brindlet bar closed");
}

QString MenuBarTutorialModel::text() {
    return markedText(
        "Next time you want to use Brindlet, you can access it the **above menubar item**, or via the global "
        "shortcut:");
}

QString MenuBarTutorialModel::shortcutLabel() {
    return QStringLiteral("Toggle Brindlet:");
}

void MenuBarTutorialModel::setShown(bool isShown) {
    if (isShown)
        shortcut_.refresh();
    else
        shortcut_.endRecording();
}

}  // namespace brindlet
