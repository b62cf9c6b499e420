#include "desktop/permission_page.h"

#include <chrono>
#include <utility>

#include "platform/log.h"

namespace brindlet {

namespace {

constexpr std::chrono::milliseconds recheckInterval{200};

constexpr PermissionPageTexts accessibilityTexts{
    .title = "Permissions Setup",
    .step = "Step 1 of 2",
    .name = "Accessibility",
    .text =
        "Please allow Brindlet to use Accessibility features by what is listed here. This allows the app to dock "
        "itself to the bottom of Finder windows.",
    .button = "Enable Access...",
    .help = "Having issues? Nothing happening? Try this:",
};
constexpr PermissionPageTexts automationTexts{
    .title = "Permissions Setup",
    .step = "Step 2 of 2",
    .name = "Automation",
    .text =
        "Please allow Brindlet to use Automation features by what is listed here. This allows the app to know which "
        "files and folders you have selected in Finder.",
    .button = "Enable Access...",
    .help = "Having issues? Nothing happening? Try this:",
};

}  // namespace

const PermissionPageTexts& textsOf(Permission permission) {
    return permission == Permission::accessibility ? accessibilityTexts : automationTexts;
}

struct PermissionPage::State : std::enable_shared_from_this<PermissionPage::State> {
    State(MainLoop& mainLoop, Workers& threads, Permissions& all, Permission shown)
        : loop(mainLoop), workers(threads), permissions(all), permission(shown) {
        for (const PermissionItem& item : permissions.items(permission))
            items.push_back({.title = item.title,
                             .remedy = item.remedy,
                             .canMend = static_cast<bool>(item.mend),
                             .isRequired = item.isRequired});
    }

    MainLoop& loop;
    Workers& workers;
    Permissions& permissions;
    Permission permission;
    PermissionPageState state = PermissionPageState::initial;
    std::vector<PermissionPageItem> items{};
    std::function<void()> observer{};
    bool isChecking = false;
    bool isRequestWaiting = false;
    bool isGone = false;

    // A worker uses the permissions: they outlive it, as workers are waited for before what they use goes.
    void check(bool isRequest) {
        isChecking = true;
        workers.start([self = shared_from_this(), isRequest] {
            if (isRequest) self->permissions.mend(self->permission);
            std::vector<bool> answers;
            for (const PermissionItem& item : self->permissions.items(self->permission))
                answers.push_back(item.check());
            self->loop.post([self, isRequest, answers] { self->take(answers, isRequest); });
        });
    }

    void take(const std::vector<bool>& answers, bool isRequest) {
        if (isGone) return;
        isChecking = false;
        auto newItems = items;
        bool isGranted = true;
        for (std::size_t at = 0; at < answers.size(); ++at) {
            newItems[at].holds = answers[at];
            isGranted = isGranted && (answers[at] || !newItems[at].isRequired);
        }
        permissions.note(permission, isGranted);
        // Once granted the page stays so: the user is on the way to the next one.
        auto newState = state;
        if (isGranted) {
            newState = PermissionPageState::granted;
        } else if (isRequest && state != PermissionPageState::granted) {
            newState = PermissionPageState::requestedMaybeNeedsHelp;
        }
        publish(newState, std::move(newItems));
        if (std::exchange(isRequestWaiting, false) && !isGranted) check(true);
    }

    void publish(PermissionPageState newState, std::vector<PermissionPageItem> newItems) {
        if (state == newState && items == newItems) return;
        state = newState;
        items = std::move(newItems);
        if (observer) observer();
    }

    void tickLater() {
        loop.postAfter(recheckInterval, [self = shared_from_this()] {
            if (self->isGone) return;
            if (!self->isChecking) self->check(false);
            self->tickLater();
        });
    }

    void enableAccess() {
        if (state == PermissionPageState::granted) return;
        publish(PermissionPageState::requested, items);
        if (isChecking) {
            isRequestWaiting = true;
        } else {
            check(true);
        }
    }
};

PermissionPage::PermissionPage(MainLoop& loop, Workers& workers, Permissions& permissions, Permission permission)
    : state_(std::make_shared<State>(loop, workers, permissions, permission)) {
    state_->tickLater();
}

PermissionPage::~PermissionPage() {
    state_->isGone = true;
}

void PermissionPage::mend(std::size_t item) {
    state_->workers.start([state = state_, item] {
        const PermissionItem& chosen = state->permissions.items(state->permission).at(item);
        if (!chosen.mend) return;
        if (const auto failure = chosen.mend()) logError(failure->description);
    });
}

void PermissionPage::enableAccess() {
    state_->enableAccess();
}

PermissionPageState PermissionPage::state() const {
    return state_->state;
}

const std::vector<PermissionPageItem>& PermissionPage::items() const {
    return state_->items;
}

void PermissionPage::onChange(std::function<void()> observer) {
    state_->observer = std::move(observer);
}

}  // namespace brindlet
