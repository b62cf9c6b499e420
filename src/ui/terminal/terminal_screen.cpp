#include "ui/terminal/terminal_screen.h"

#include <curses.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cwctype>
#include <iterator>
#include <optional>
#include <utility>

#include "text/enum_rows.h"
#include "text/utf8.h"
#include "ui/terminal/console.h"

namespace brindlet {

namespace {

constexpr int escapeDelayMilliseconds = 25;  // over ssh the bytes of one key still come together
constexpr int pasteBegins = KEY_MAX + 1;
constexpr int pasteEnds = KEY_MAX + 2;
constexpr int wordLeftKey = KEY_MAX + 3;
constexpr int wordRightKey = KEY_MAX + 4;
// Bracketed paste, as xterm's control sequences have it.
constexpr std::string_view askForPasteMarks = "\x1b[?2004h";
constexpr std::string_view endPasteMarks = "\x1b[?2004l";

struct SequenceRow {
    const char* sequence;
    int code;
};
constexpr SequenceRow sequenceRows[] = {
    {"\x1b[200~", pasteBegins},
    {"\x1b[201~", pasteEnds},
    {"\x1b[1;5D", wordLeftKey},
    {"\x1b[1;5C", wordRightKey},
    {"\x1b[1;3D", wordLeftKey},
    {"\x1b[1;3C", wordRightKey},
    {"\x1b"
     "b",
     wordLeftKey},
    {"\x1b"
     "f",
     wordRightKey},
};

struct KeyRow {
    int code;
    Key::Kind kind;
};
constexpr KeyRow namedKeys[] = {
    {KEY_UP, Key::Kind::up},
    {KEY_DOWN, Key::Kind::down},
    {KEY_LEFT, Key::Kind::left},
    {KEY_RIGHT, Key::Kind::right},
    {KEY_HOME, Key::Kind::home},
    {KEY_END, Key::Kind::end},
    {KEY_PPAGE, Key::Kind::pageUp},
    {KEY_NPAGE, Key::Kind::pageDown},
    {KEY_BACKSPACE, Key::Kind::backspace},
    {KEY_DC, Key::Kind::remove},
    {KEY_ENTER, Key::Kind::enter},
    {KEY_RESIZE, Key::Kind::resized},
    {wordLeftKey, Key::Kind::wordLeft},
    {wordRightKey, Key::Kind::wordRight},
};
constexpr KeyRow plainKeys[] = {
    {'\r', Key::Kind::enter}, {'\n', Key::Kind::enter},    {'\t', Key::Kind::tab},
    {27, Key::Kind::escape},  {127, Key::Kind::backspace}, {8, Key::Kind::backspace},
};

struct AttributeRow {
    TextStyle key;
    short color;  // -1: the terminal's own
    chtype attribute;
};
constexpr AttributeRow attributeRows[] = {
    {TextStyle::plain, -1, A_NORMAL},
    {TextStyle::bold, -1, A_BOLD},
    {TextStyle::dim, -1, A_DIM},
    {TextStyle::red, COLOR_RED, A_NORMAL},
    {TextStyle::green, COLOR_GREEN, A_NORMAL},
    {TextStyle::yellow, COLOR_YELLOW, A_NORMAL},
    {TextStyle::blue, COLOR_BLUE, A_NORMAL},
    {TextStyle::orange, COLOR_YELLOW, A_BOLD},
    {TextStyle::marked, -1, A_REVERSE},
};
static_assert(rowsCover(attributeRows, TextStyle::marked));

// A handler may do next to nothing: it writes a byte.
std::array<int, 2> sizePipe = {-1, -1};

void noteSize(int) {
    const int savedError = errno;
    [[maybe_unused]] const ssize_t written = ::write(sizePipe[1], "!", 1);
    errno = savedError;
}

// What gives the terminal back where the program can't come to its end any more.
constexpr std::array fatalSignals = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL};
termios modesBefore{};
std::string goodbye;  // not changed while the handlers are there

void giveTerminalBack(int signal) {
    [[maybe_unused]] const ssize_t written = ::write(STDOUT_FILENO, goodbye.data(), goodbye.size());
    ::tcsetattr(STDIN_FILENO, TCSANOW, &modesBefore);
    ::raise(signal);  // by now it has its usual meaning again
}

void setFatalHandlers(bool isOn) {
    struct sigaction action {};
    action.sa_handler = isOn ? giveTerminalBack : SIG_DFL;
    action.sa_flags = isOn ? static_cast<int>(SA_RESETHAND | SA_NODEFER) : 0;
    for (const int signal : fatalSignals) ::sigaction(signal, &action, nullptr);
}

std::string capability(const char* name) {
    const char* text = ::tigetstr(name);
    return text == nullptr || text == reinterpret_cast<const char*>(-1) ? "" : text;
}

std::optional<Key::Kind> kindOf(int code, const auto& rows) {
    for (const KeyRow& row : rows)
        if (row.code == code) return row.kind;
    return std::nullopt;
}

}  // namespace

struct TerminalScreen::State {
    SCREEN* screen = nullptr;
    bool hasColor = false;
    bool hasUnicode = true;
    bool isPasting = false;
    Key pasted;
    struct sigaction earlierAction {};

    chtype attributeOf(TextStyle style) const {
        const AttributeRow& row = rowOf(attributeRows, style);
        if (row.color < 0) return row.attribute;
        return hasColor ? row.attribute | static_cast<chtype>(COLOR_PAIR(row.color + 1)) : A_BOLD;
    }

    void drawLine(int at, const StyledLine& line) const {
        ::move(at, 0);
        for (const StyledSpan& span : line) {
            ::attrset(static_cast<int>(attributeOf(span.style)));
            ::addstr((hasUnicode ? span.text : withoutUnicode(span.text)).c_str());
        }
        ::attrset(A_NORMAL);
        ::clrtoeol();
    }

    static std::string withoutUnicode(const std::string& text) {
        std::string plain;
        for (std::size_t at = 0; at < text.size();) {
            const Scalar scalar = decodeScalar(text, at);
            plain += scalar.value < 0x80 ? static_cast<char>(scalar.value) : '?';
            at += scalar.length;
        }
        return plain;
    }

    // None: the key says nothing here.
    std::optional<Key> keyOf(int result, wint_t code) {
        if (result == KEY_CODE_YES) {
            const int number = static_cast<int>(code);
            if (number == pasteBegins || number == pasteEnds) return markOfPaste(number == pasteBegins);
            if (const auto kind = kindOf(number, namedKeys)) return Key{*kind};
            return std::nullopt;
        }
        if (isPasting) {
            appendScalar(pasted.text, code < ' ' ? U' ' : static_cast<char32_t>(code));
            return std::nullopt;
        }
        if (const auto kind = kindOf(static_cast<int>(code), plainKeys)) return Key{*kind};
        if (code < ' ') return Key{Key::Kind::control, std::string(1, static_cast<char>('a' + code - 1))};
        Key key{Key::Kind::text};
        appendScalar(key.text, static_cast<char32_t>(code));
        return key;
    }

    std::optional<Key> markOfPaste(bool begins) {
        isPasting = begins;
        if (begins || pasted.text.empty()) return std::nullopt;
        return std::exchange(pasted, Key{});
    }
};

TerminalScreen::TerminalScreen(bool hasColor, bool hasUnicode) : state_(std::make_unique<State>()) {
    std::setlocale(LC_CTYPE, "");
    ::tcgetattr(STDIN_FILENO, &modesBefore);
    state_->screen = ::newterm(nullptr, stdout, stdin);
    if (state_->screen == nullptr)
        throw ScreenError{"this kind of terminal can't be drawn on: set TERM to what it is, or use 'brindlet ask'"};
    state_->hasColor = hasColor && ::has_colors() && ::start_color() == OK;
    state_->hasUnicode = hasUnicode;
    if (state_->hasColor) {
        ::use_default_colors();
        for (short color = COLOR_BLACK; color <= COLOR_WHITE; ++color)
            ::init_pair(static_cast<short>(color + 1), color, -1);
    }
    ::raw();
    ::noecho();
    ::nonl();
    ::set_escdelay(escapeDelayMilliseconds);
    ::keypad(stdscr, TRUE);
    ::nodelay(stdscr, TRUE);
    for (const SequenceRow& row : sequenceRows) ::define_key(row.sequence, row.code);
    writeTo(STDOUT_FILENO, askForPasteMarks);
    goodbye = std::string(endPasteMarks) + capability("sgr0") + capability("cnorm") + capability("rmcup");
    setFatalHandlers(true);

    [[maybe_unused]] const int opened = ::pipe2(sizePipe.data(), O_CLOEXEC | O_NONBLOCK);
    struct sigaction action {};
    action.sa_handler = noteSize;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGWINCH, &action, &state_->earlierAction);
}

TerminalScreen::~TerminalScreen() {
    setFatalHandlers(false);
    ::sigaction(SIGWINCH, &state_->earlierAction, nullptr);
    writeTo(STDOUT_FILENO, endPasteMarks);
    ::endwin();
    ::delscreen(state_->screen);
    for (int& end : sizePipe) ::close(std::exchange(end, -1));
}

BarSize TerminalScreen::size() const {
    return {static_cast<std::size_t>(LINES), static_cast<std::size_t>(COLS)};
}

void TerminalScreen::draw(const BarFrame& frame) {
    ::erase();
    for (std::size_t at = 0; at < frame.lines.size() && at < size().rows; ++at)
        state_->drawLine(static_cast<int>(at), frame.lines[at]);
    ::curs_set(frame.hasCursor ? 1 : 0);
    ::move(static_cast<int>(frame.cursorRow), static_cast<int>(frame.cursorColumn));
    ::refresh();
}

std::vector<Key> TerminalScreen::keys() {
    std::vector<Key> keys;
    char ignored = 0;
    if (::read(sizePipe[0], &ignored, 1) == 1) {
        winsize window{};
        if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0) ::resizeterm(window.ws_row, window.ws_col);
        keys.push_back({Key::Kind::resized});
    }
    wint_t code = 0;
    bool hasRead = false;
    for (int result = ::get_wch(&code); result != ERR; result = ::get_wch(&code)) {
        hasRead = true;
        if (auto key = state_->keyOf(result, code)) keys.push_back(std::move(*key));
    }
    // A terminal that is readable and gives nothing has gone.
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (!hasRead && keys.empty() && ::poll(&input, 1, 0) > 0 && (input.revents & (POLLHUP | POLLERR)) != 0)
        keys.push_back({Key::Kind::closed});
    return keys;
}

void TerminalScreen::dropKeys() {
    ::flushinp();
    state_->isPasting = false;
    state_->pasted.text.clear();
}

int TerminalScreen::resizeDescriptor() const {
    return sizePipe[0];
}

}  // namespace brindlet
