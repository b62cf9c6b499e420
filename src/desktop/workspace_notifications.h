// What happens to the desktop as a whole, told to whoever wants to know for as long as they keep their token.
//
//     auto token = workspace.observe([](WorkspaceEvent event) { ... });
//     workspace.post(WorkspaceEvent::didWake);
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace brindlet {

enum class WorkspaceEvent {
    didActivateApplication,
    didDeactivateApplication,
    activeSpaceDidChange,
    willSleep,
    didWake,
    screensDidWake,
    screensDidSleep,
};

// The window tracker posts the first three, the front end the others. All on the loop's thread.
class WorkspaceNotifications {
  public:
    using Observer = std::function<void(WorkspaceEvent)>;
    using Token = std::shared_ptr<const Observer>;

    // The observer is forgotten with the last copy of its token, which may be dropped from within the call as well.
    Token observe(Observer observer) {
        auto token = std::make_shared<const Observer>(std::move(observer));
        observers_.emplace(++lastKey_, token);
        return token;
    }

    void post(WorkspaceEvent event) {
        std::erase_if(observers_, [](const auto& entry) { return entry.second.expired(); });
        for (const auto& [key, observer] : std::map(observers_))
            if (const Token standing = observer.lock()) (*standing)(event);
    }

  private:
    std::size_t lastKey_ = 0;
    std::map<std::size_t, std::weak_ptr<const Observer>> observers_;
};

}  // namespace brindlet
