// The control that records the hot key: what it shows, and what becomes of the keys pressed in it.
//
//     ShortcutModel shortcut({.stored = [] { return "Ctrl+Space"; }, .store = ...});
//     shortcut.beginRecording();
//     shortcut.press(Qt::Key_B, Qt::ControlModifier | Qt::AltModifier);  // stores "Ctrl+Alt+B"
#pragma once

#include <QObject>
#include <QString>
#include <functional>

namespace brindlet {

struct ShortcutParts {
    std::function<QString()> stored;                      // as "Ctrl+Space"; empty where there is none
    std::function<QString(const QString& keys)> store{};  // empty keys take it away; answers a problem in a sentence
    // The hot key must not act while it is pressed to be recorded.
    std::function<void(bool isRecording)> recording{};
};

class ShortcutModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY changed)

  public:
    explicit ShortcutModel(ShortcutParts parts) : parts_(std::move(parts)) {}

    QString text() const { return parts_.stored ? parts_.stored() : QString(); }
    QString problem() const { return problem_; }
    bool isRecording() const { return isRecording_; }
    // As it may have been changed elsewhere.
    void refresh() { emit changed(); }

    Q_INVOKABLE void beginRecording();
    // Escape leaves things as they were, Backspace takes the shortcut away, a modifier alone is waited upon.
    Q_INVOKABLE void press(int key, int modifiers);
    Q_INVOKABLE void endRecording();

  signals:
    void changed();

  private:
    void store(const QString& keys);

    ShortcutParts parts_;
    QString problem_;
    bool isRecording_ = false;
};

}  // namespace brindlet
