// What the page of the bar knows of the window that it is in: how far it is folded open, what it may draw with, and
// what people do there that isn't the flow's.
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <functional>

namespace brindlet {

struct BarFrameActions {
    std::function<void()> pressCloseButton{};
    std::function<void()> windowShouldClose{};
    std::function<void()> returnToFinder{};
    std::function<void(const QString& tab)> openSettings{};
    std::function<void(const QList<QUrl>& urls)> dropped{};
};

struct BarFrameLook {
    double foldDegrees = 0;  // about the x axis, at the middle of the upper edge
    double foldOpacity = 1;
    double overhang = 0;        // left empty at both sides, and below
    bool hasCompositor = true;  // else what is transparent would be black: the window is cut to the bar's shape
    bool isTranslucent = true;
    bool knowsSelection = true;  // else the file manager doesn't tell what is selected in its front window
    bool isActive = true;

    bool operator==(const BarFrameLook&) const = default;
};

class BarFrame final : public QObject {
    Q_OBJECT
    Q_PROPERTY(double foldDegrees READ foldDegrees NOTIFY changed)
    Q_PROPERTY(double foldOpacity READ foldOpacity NOTIFY changed)
    Q_PROPERTY(double overhang READ overhang NOTIFY changed)
    Q_PROPERTY(bool hasCompositor READ hasCompositor NOTIFY changed)
    Q_PROPERTY(bool isTranslucent READ isTranslucent NOTIFY changed)
    Q_PROPERTY(bool knowsSelection READ knowsSelection NOTIFY changed)
    Q_PROPERTY(bool isActive READ isActive NOTIFY changed)

  public:
    explicit BarFrame(BarFrameActions actions) : actions_(std::move(actions)) {}

    const BarFrameLook& look() const { return look_; }
    void setLook(const BarFrameLook& look);

    double foldDegrees() const { return look_.foldDegrees; }
    double foldOpacity() const { return look_.foldOpacity; }
    double overhang() const { return look_.overhang; }
    bool hasCompositor() const { return look_.hasCompositor; }
    bool isTranslucent() const { return look_.isTranslucent; }
    bool knowsSelection() const { return look_.knowsSelection; }
    bool isActive() const { return look_.isActive; }

    Q_INVOKABLE void pressCloseButton();
    Q_INVOKABLE void windowShouldClose();
    Q_INVOKABLE void returnToFinder();
    Q_INVOKABLE void openSettings(const QString& tab = {});
    Q_INVOKABLE void dropped(const QList<QUrl>& urls);

  signals:
    void changed();

  private:
    BarFrameActions actions_;
    BarFrameLook look_;
};

}  // namespace brindlet
