// Tells of the computer's sleep and of the screen's, as the login manager and the screen saver have it on the bus.
#pragma once

#include <QDBusConnection>
#include <QObject>

#include "desktop/workspace_notifications.h"

namespace brindlet {

class SleepListener final : public QObject {
    Q_OBJECT

  public:
    explicit SleepListener(WorkspaceNotifications& workspace) : workspace_(workspace) {
        QDBusConnection::systemBus().connect("org.freedesktop.login1", "/org/freedesktop/login1",
                                             "org.freedesktop.login1.Manager", "PrepareForSleep", this,
                                             SLOT(prepareForSleep(bool)));
        QDBusConnection::sessionBus().connect("org.freedesktop.ScreenSaver", "", "org.freedesktop.ScreenSaver",
                                              "ActiveChanged", this, SLOT(screenSaverChanged(bool)));
    }

  private slots:
    void prepareForSleep(bool begins) { workspace_.post(begins ? WorkspaceEvent::willSleep : WorkspaceEvent::didWake); }
    void screenSaverChanged(bool isOn) {
        workspace_.post(isOn ? WorkspaceEvent::screensDidSleep : WorkspaceEvent::screensDidWake);
    }

  private:
    WorkspaceNotifications& workspace_;
};

}  // namespace brindlet
