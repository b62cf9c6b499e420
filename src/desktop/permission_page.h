// One of the two first-run pages on which the user grants something: its texts, its state and its check list.
//
//     PermissionPage page(loop, workers, permissions, Permission::accessibility);
//     page.onChange([&] { draw(page); });
//     page.enableAccess();   // the button
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/permissions.h"
#include "platform/main_loop.h"

namespace brindlet {

enum class PermissionPageState { initial, requested, requestedMaybeNeedsHelp, granted };

struct PermissionPageTexts {
    std::string_view title;
    std::string_view step;
    std::string_view name;
    std::string_view text;
    std::string_view button;
    std::string_view help;  // shown in `requestedMaybeNeedsHelp`, above the remedies of what doesn't hold
};
const PermissionPageTexts& textsOf(Permission permission);

struct PermissionPageItem {
    std::string title;
    std::string remedy;
    bool canMend = false;    // else only the user can
    bool isRequired = true;  // else one can go on without
    bool holds = false;      // false as well before it was first checked
    bool operator==(const PermissionPageItem&) const = default;
};

// On the loop's thread; the checks run on workers, one at a time. Rechecks five times a second for as long as it
// stands.
class PermissionPage {
  public:
    PermissionPage(MainLoop& loop, Workers& workers, Permissions& permissions, Permission permission);
    ~PermissionPage();
    PermissionPage(const PermissionPage&) = delete;
    PermissionPage& operator=(const PermissionPage&) = delete;

    void enableAccess();
    // The button of one item, which must be one that can be mended. A failure goes to the log.
    void mend(std::size_t item);

    PermissionPageState state() const;
    const std::vector<PermissionPageItem>& items() const;
    // Called when one of the two has another value.
    void onChange(std::function<void()> observer);

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace brindlet
