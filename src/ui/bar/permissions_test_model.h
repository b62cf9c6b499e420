// The window for support that shows what is granted, and asks for it or takes it back.
#pragma once

#include <QObject>
#include <QString>

#include "desktop/permissions.h"
#include "ui/errands.h"

namespace brindlet {

class PermissionsTestModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString accessibilityText READ accessibilityText NOTIFY changed)
    Q_PROPERTY(QString appleEventsText READ appleEventsText NOTIFY changed)

  public:
    PermissionsTestModel(Permissions& permissions, MainLoop& loop, Workers& workers);

    QString accessibilityText() const;  // "Accessibility: enabled"
    QString appleEventsText() const;

    // The window has appeared: the states are read.
    Q_INVOKABLE void refresh();
    Q_INVOKABLE void resetAccessibility();
    Q_INVOKABLE void resetAppleEvents();
    Q_INVOKABLE void promptForAccessibility();
    Q_INVOKABLE void promptForAppleEvents();

  signals:
    void changed();

  private:
    void reset(Permission permission);
    void prompt(Permission permission, bool isMending);

    Permissions& permissions_;
    Errands errands_;
};

}  // namespace brindlet
