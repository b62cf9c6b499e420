#include "ui/bar/bar_frame.h"

namespace brindlet {

void BarFrame::setLook(const BarFrameLook& look) {
    if (look == look_) return;
    look_ = look;
    emit changed();
}

void BarFrame::pressCloseButton() {
    if (actions_.pressCloseButton) actions_.pressCloseButton();
}

void BarFrame::windowShouldClose() {
    if (actions_.windowShouldClose) actions_.windowShouldClose();
}

void BarFrame::returnToFinder() {
    if (actions_.returnToFinder) actions_.returnToFinder();
}

void BarFrame::openSettings(const QString& tab) {
    if (actions_.openSettings) actions_.openSettings(tab);
}

void BarFrame::dropped(const QList<QUrl>& urls) {
    if (actions_.dropped) actions_.dropped(urls);
}

}  // namespace brindlet
