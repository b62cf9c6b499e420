// The first-run pages, one after the other, and what the window that they are in does when it is to be closed.
//
//     OnboardingModel pages({.permissions = ..., .finished = [&] { shell.onboardingFinished(); }, ...});
//     pages.open(OnboardingPage::welcome);   // and show the window
#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/linux/context_menu_actions.h"
#include "desktop/permission_page.h"
#include "ui/application_shell.h"
#include "ui/errands.h"

namespace brindlet {

struct OnboardingParts {
    Permissions& permissions;
    MainLoop& loop;
    Workers& workers;
    // By which a file manager hands over its selection.
    std::vector<ContextMenuAction> actions{};
    std::function<void()> finished = [] {};  // the last page is done: the window is to be closed
    std::function<void()> closed = [] {};    // it is
    std::function<void()> quit = [] {};
    std::function<void(const QString& url)> openUrl{};  // none: the desktop's own way
};

class OnboardingModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString page READ page NOTIFY pageChanged)
    Q_PROPERTY(int pageIndex READ pageIndex NOTIFY pageChanged)
    Q_PROPERTY(QVariantMap texts READ texts NOTIFY pageChanged)
    Q_PROPERTY(QString state READ state NOTIFY changed)
    Q_PROPERTY(bool canContinue READ canContinue NOTIFY changed)
    Q_PROPERTY(QVariantList items READ items NOTIFY changed)
    Q_PROPERTY(QVariantList actions READ actions NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)
    Q_PROPERTY(bool isQuitAsked READ isQuitAsked NOTIFY quitAskedChanged)

  public:
    explicit OnboardingModel(OnboardingParts parts);
    ~OnboardingModel() override;

    // From the first page on, or from one that has to be gone through again.
    void open(OnboardingPage page);

    QString page() const;  // "welcome", "privacy", "accessibilityPermission", "appleEventsPermission"
    int pageIndex() const { return static_cast<int>(page_); }
    QVariantMap texts() const;     // those of the page: {title, text, link} or {title, step, name, text, button, help}
    QString state() const;         // of a page of permissions: "initial", "requested", ...; else ""
    bool canContinue() const;      // to the next page
    QVariantList items() const;    // the check list: {title, remedy, holds, canMend, isRequired}
    QVariantList actions() const;  // {title, isInstalled}; only on the last page
    QString problem() const { return problem_; }
    bool isQuitAsked() const { return isQuitAsked_; }

    Q_INVOKABLE void goOn();
    Q_INVOKABLE void enableAccess();
    Q_INVOKABLE void mend(int item);
    Q_INVOKABLE void installAction(int action);
    Q_INVOKABLE void openLink();
    // Before the last page is done the user is asked instead.
    Q_INVOKABLE bool mayClose();
    Q_INVOKABLE void hasClosed();
    Q_INVOKABLE void answerQuit(bool isAgreed);

  signals:
    void pageChanged();
    void changed();
    void quitAskedChanged();

  private:
    void askForQuit(bool isAsked);
    void lookAtActions();

    OnboardingParts parts_;
    OnboardingPage page_ = OnboardingPage::welcome;
    bool isComplete_ = false;
    bool isQuitAsked_ = false;
    std::vector<bool> areActionsInstalled_;
    QString problem_;
    std::unique_ptr<PermissionPage> permission_;  // while such a page stands
    Errands errands_;
};

}  // namespace brindlet
