// The program's item among those that the desktop's panel shows, with its menu.
//
//     Tray tray([&] { return menuEntries(); });
#pragma once

#include <QIcon>
#include <QMenu>
#include <QString>
#include <QSystemTrayIcon>
#include <QTimer>
#include <functional>
#include <vector>

namespace brindlet {

struct TrayEntry {
    QString title{};  // empty: a line between entries
    QString keys{};   // shown beside it
    bool isEnabled = true;
    std::function<void()> choose{};
};

// Waits for a panel that shows such items where there is none yet.
class Tray final {
  public:
    // Asked each time that the menu opens.
    explicit Tray(std::function<std::vector<TrayEntry>()> entries);

    void showMessage(const QString& title, const QString& text);

  private:
    void fill();
    void appear();

    std::function<std::vector<TrayEntry>()> entries_;
    QMenu menu_;
    QSystemTrayIcon item_;
    QTimer retry_;
};

// The program's sign, drawn.
QIcon programIcon();

}  // namespace brindlet
