#include "ui/bar/shortcut_model.h"

#include <QKeySequence>

namespace brindlet {

namespace {

constexpr Qt::KeyboardModifiers shortcutModifiers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

bool isModifier(int key) {
    switch (key) {
        case Qt::Key_Shift:
        case Qt::Key_Control:
        case Qt::Key_Alt:
        case Qt::Key_AltGr:
        case Qt::Key_Meta:
        case Qt::Key_Super_L:
        case Qt::Key_Super_R:
        case Qt::Key_Hyper_L:
        case Qt::Key_Hyper_R:
        case Qt::Key_CapsLock:
        case Qt::Key_NumLock:
        case Qt::Key_ScrollLock:
        case Qt::Key_unknown:
        case 0:
            return true;
        default:
            return false;
    }
}

}  // namespace

void ShortcutModel::beginRecording() {
    if (isRecording_) return;
    isRecording_ = true;
    problem_.clear();
    if (parts_.recording) parts_.recording(true);
    emit changed();
}

void ShortcutModel::endRecording() {
    if (!isRecording_) return;
    isRecording_ = false;
    if (parts_.recording) parts_.recording(false);
    emit changed();
}

void ShortcutModel::press(int key, int modifiers) {
    if (!isRecording_ || isModifier(key)) return;
    const auto held = Qt::KeyboardModifiers(modifiers);
    const bool isPlain = !(held & shortcutModifiers);
    if (key == Qt::Key_Escape && isPlain) return endRecording();
    if ((key == Qt::Key_Backspace || key == Qt::Key_Delete) && isPlain) return store({});
    if (isPlain) {
        problem_ = QStringLiteral("Hold Ctrl, Alt or Super along with the key.");
        emit changed();
        return;
    }
    const auto kept = held & (shortcutModifiers | Qt::ShiftModifier);
    store(QKeySequence(QKeyCombination(kept, static_cast<Qt::Key>(key))).toString(QKeySequence::PortableText));
}

void ShortcutModel::store(const QString& keys) {
    endRecording();
    problem_ = parts_.store ? parts_.store(keys) : QString();
    emit changed();
}

}  // namespace brindlet
