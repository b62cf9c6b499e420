#include "ui/bar/hot_key.h"

#include <QGuiApplication>
#include <QKeySequence>
#include <algorithm>
#include <cstdlib>
#include <utility>

namespace brindlet {

namespace {

// Caps Lock and Num Lock count as modifiers of a press, so that the key is wanted with each mix of them.
constexpr std::uint16_t lockMixes[] = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

struct ModifierRow {
    Qt::KeyboardModifier modifier;
    std::uint16_t mask;
};
// Of the usual keyboard tables: Alt is the first of the free ones and the Windows key the fourth.
constexpr ModifierRow modifierRows[] = {{Qt::ShiftModifier, XCB_MOD_MASK_SHIFT},
                                        {Qt::ControlModifier, XCB_MOD_MASK_CONTROL},
                                        {Qt::AltModifier, XCB_MOD_MASK_1},
                                        {Qt::MetaModifier, XCB_MOD_MASK_4}};

struct KeysymRow {
    Qt::Key key;
    xcb_keysym_t keysym;  // X11/keysymdef.h
};
constexpr KeysymRow keysymRows[] = {{Qt::Key_Escape, 0xff1b}, {Qt::Key_Tab, 0xff09},     {Qt::Key_Backspace, 0xff08},
                                    {Qt::Key_Return, 0xff0d}, {Qt::Key_Enter, 0xff8d},   {Qt::Key_Insert, 0xff63},
                                    {Qt::Key_Delete, 0xffff}, {Qt::Key_Pause, 0xff13},   {Qt::Key_Print, 0xff61},
                                    {Qt::Key_Home, 0xff50},   {Qt::Key_End, 0xff57},     {Qt::Key_Left, 0xff51},
                                    {Qt::Key_Up, 0xff52},     {Qt::Key_Right, 0xff53},   {Qt::Key_Down, 0xff54},
                                    {Qt::Key_PageUp, 0xff55}, {Qt::Key_PageDown, 0xff56}};
constexpr xcb_keysym_t firstFunctionKeysym = 0xffbe;

// 0 for what no keyboard has.
xcb_keysym_t keysymOf(Qt::Key key) {
    const auto row = std::ranges::find(keysymRows, key, &KeysymRow::key);
    if (row != std::end(keysymRows)) return row->keysym;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35) return firstFunctionKeysym + static_cast<unsigned>(key - Qt::Key_F1);
    if (key >= Qt::Key_A && key <= Qt::Key_Z) return static_cast<unsigned>(key) + ('a' - 'A');
    return key < 0x100 ? static_cast<xcb_keysym_t>(key) : 0;  // Latin-1 stands for itself
}

}  // namespace

HotKey::HotKey(std::function<void()> pressed) : pressed_(std::move(pressed)) {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    connection_ = x11 != nullptr ? x11->connection() : nullptr;
    if (connection_ == nullptr) return;
    symbols_.reset(xcb_key_symbols_alloc(connection_));
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    qGuiApp->installNativeEventFilter(this);
}

HotKey::~HotKey() {
    if (connection_ == nullptr) return;
    grab(false);
    qGuiApp->removeNativeEventFilter(this);
}

QString HotKey::set(const QString& keys) {
    if (connection_ == nullptr)
        return keys.isEmpty() ? QString()
                              : QStringLiteral(
                                    "This desktop keeps its keys to itself: bind \"brindlet bar --toggle\" "
                                    "to a key in its keyboard settings.");
    grab(false);
    keys_ = keys;
    codes_.clear();
    if (keys.isEmpty()) return {};
    const QKeySequence sequence(keys, QKeySequence::PortableText);
    const xcb_keysym_t keysym = sequence.count() == 1 ? keysymOf(sequence[0].key()) : 0;
    if (keysym == 0) return QStringLiteral("\"%1\" can't be used everywhere: choose another key.").arg(keys);
    modifiers_ = 0;
    for (const auto& [modifier, mask] : modifierRows)
        if (sequence[0].keyboardModifiers() & modifier) modifiers_ = static_cast<std::uint16_t>(modifiers_ | mask);
    xcb_keycode_t* found = xcb_key_symbols_get_keycode(symbols_.get(), keysym);
    for (const xcb_keycode_t* code = found; code != nullptr && *code != XCB_NO_SYMBOL; ++code) codes_.push_back(*code);
    std::free(found);
    if (codes_.empty()) return QStringLiteral("This keyboard has no \"%1\": choose another key.").arg(keys);
    return grab(true);
}

QString HotKey::grab(bool grabs) {
    bool isTaken = false;
    for (const xcb_keycode_t code : codes_) {
        for (const std::uint16_t locks : lockMixes) {
            const auto mask = static_cast<std::uint16_t>(modifiers_ | locks);
            if (!grabs) {
                xcb_ungrab_key(connection_, code, root_, mask);
                continue;
            }
            const auto asked =
                xcb_grab_key_checked(connection_, 1, root_, mask, code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
            xcb_generic_error_t* error = xcb_request_check(connection_, asked);
            isTaken = isTaken || error != nullptr;
            std::free(error);
        }
    }
    xcb_flush(connection_);
    if (!isTaken) return {};
    return QStringLiteral("Another program has taken \"%1\": choose another key, or free it there.").arg(keys_);
}

bool HotKey::nativeEventFilter(const QByteArray& kind, void* message, qintptr*) {
    if (kind != "xcb_generic_event_t") return false;
    auto* event = static_cast<xcb_generic_event_t*>(message);
    const int type = event->response_type & ~0x80;
    if (type == XCB_MAPPING_NOTIFY) {  // another layout, on which the key may lie elsewhere
        xcb_refresh_keyboard_mapping(symbols_.get(), reinterpret_cast<xcb_mapping_notify_event_t*>(event));
        set(QString(keys_));
        return false;
    }
    if (type != XCB_KEY_PRESS) return false;
    const auto* press = reinterpret_cast<xcb_key_press_event_t*>(event);
    constexpr std::uint16_t counted = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
    const bool isOurs = press->event == root_ && (press->state & counted) == modifiers_ &&
                        std::ranges::find(codes_, press->detail) != codes_.end();
    if (isOurs) pressed_();
    return isOurs;
}

}  // namespace brindlet
