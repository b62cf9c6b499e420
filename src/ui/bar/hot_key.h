// The key that brings the bar or takes it away, whatever program has the keyboard.
//
//     HotKey key([&] { shell.toggleBar(); });
//     QString error = key.set("Ctrl+Space");   // empty: it is ours now
#pragma once

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

#include <QAbstractNativeEventFilter>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace brindlet {

// On X11 only; elsewhere the desktop's own settings bind `brindlet bar --toggle`.
class HotKey final : public QAbstractNativeEventFilter {
  public:
    explicit HotKey(std::function<void()> pressed);
    ~HotKey() override;

    // As QKeySequence has it: "Ctrl+Space"; empty: none. What stands in the way, as a sentence; the former key is gone
    // then as well.
    QString set(const QString& keys);
    const QString& keys() const { return keys_; }

    bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;

  private:
    struct FreeSymbols {
        void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
    };

    QString grab(bool grabs);

    std::function<void()> pressed_;
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t root_ = XCB_NONE;
    std::unique_ptr<xcb_key_symbols_t, FreeSymbols> symbols_;
    QString keys_;
    std::vector<xcb_keycode_t> codes_;
    std::uint16_t modifiers_ = 0;
};

}  // namespace brindlet
