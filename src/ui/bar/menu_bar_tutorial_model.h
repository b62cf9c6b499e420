// What is said once, when the bar was closed by its own button: how it is brought back.
#pragma once

#include <QObject>
#include <QString>

#include "ui/bar/shortcut_model.h"

namespace brindlet {

class MenuBarTutorialModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString text READ text CONSTANT)
    Q_PROPERTY(QString shortcutLabel READ shortcutLabel CONSTANT)
    Q_PROPERTY(brindlet::ShortcutModel* shortcut READ shortcut CONSTANT)

  public:
    explicit MenuBarTutorialModel(ShortcutParts shortcut) : shortcut_(std::move(shortcut)) {}

    static QString title();
    static QString text();
    static QString shortcutLabel();
    ShortcutModel* shortcut() { return &shortcut_; }

    // The window has appeared, or has gone.
    Q_INVOKABLE void setShown(bool isShown);

  private:
    ShortcutModel shortcut_;
};

}  // namespace brindlet
