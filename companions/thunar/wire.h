// How Thunar's windows are told and chosen over D-Bus. This and the bar's end of it agree on the names.
//
//     Wire wire({.select = [](auto paths, auto reply) { reply(false); }, .barCame = tellAllWindows});
//     wire.tell(selectionMessage(number, "/w", {"/w/a.txt"}).get());
#pragma once

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace brindlet_thunar {

struct Release {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using Variant = std::unique_ptr<GVariant, Release>;

// (window, folder, files) as SelectionChanged of the bar takes them; paths are bytes, without the final NUL.
Variant selectionMessage(guint32 window, const std::string& folder, const std::vector<std::string>& files);

using Reply = std::function<void(bool isSelected)>;

struct WireEvents {
    // com.fenwold.Brindlet.Companion1.Select(paths). `reply` is to be called once, at any later time.
    std::function<void(std::vector<std::string> paths, Reply reply)> select;
    // A bar has come that knows nothing yet.
    std::function<void()> barCame;
};

// Nothing of it waits: what can't be sent is dropped. All on the main thread; stands until the program ends.
class Wire {
  public:
    explicit Wire(WireEvents events);
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    bool hasBar() const { return bar_ != nullptr; }
    // Does nothing without a bar.
    void tell(GVariant* message);

  private:
    static void offerSelect(GDBusConnection* bus, const char* name, void* self);
    static void answer(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* parameters,
                       GDBusMethodInvocation* invocation, void* self);

    WireEvents events_;
    GDBusConnection* bar_ = nullptr;  // the bus that a bar is on
};

}  // namespace brindlet_thunar
