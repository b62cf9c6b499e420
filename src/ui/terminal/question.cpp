#include "ui/terminal/question.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <string>

#include "ui/terminal/console.h"

namespace brindlet {

namespace {

// A key that is more than one byte, such as an arrow, begins with Escape and comes in one piece; Escape itself is
// followed by nothing.
constexpr std::string_view escape = "\x1b";
constexpr std::size_t longestKeyBytes = 64;

class RawTerminal {
  public:
    RawTerminal() {
        isRaw_ = ::tcgetattr(STDIN_FILENO, &earlier_) == 0;
        if (!isRaw_) return;
        termios raw = earlier_;
        raw.c_lflag &= static_cast<tcflag_t>(~(ICANON | ECHO | ISIG));
        raw.c_cc[VMIN] = 1;
        raw.c_cc[VTIME] = 0;
        // What was typed before the question was there to be read is no answer to it.
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &raw);
    }
    ~RawTerminal() {
        if (isRaw_) ::tcsetattr(STDIN_FILENO, TCSADRAIN, &earlier_);
    }
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

  private:
    bool isRaw_ = false;
    termios earlier_{};
};

// The bytes that were typed; empty at the end of input or an interruption.
std::string nextKeys(const Interruption& interruption) {
    std::array<pollfd, 2> watched = {pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{interruption.descriptor(), POLLIN, 0}};
    while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
    }
    if (watched[1].revents != 0) return "";
    std::array<char, longestKeyBytes> bytes;
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : "";
}

constexpr std::string_view noKeys = "nNqQ\x03\x04";
constexpr char saidNo = 'n';

// Keys that were held down or typed quickly come together: the first that says something counts, one of `good` or a no.
// An escape sequence, such as an arrow's, says nothing.
std::optional<char> meaningOf(std::string_view keys, std::string_view good) {
    if (keys.empty() || keys == escape) return saidNo;
    for (const char key : keys) {
        if (key == escape.front()) return std::nullopt;
        if (good.find(key) != std::string_view::npos) return key;
        if (noKeys.find(key) != std::string_view::npos) return saidNo;
    }
    return std::nullopt;
}

// Where the question is read. Asked once: at the end the terminal may have gone, and a file must not get its line.
int screen() {
    return isTerminal(STDERR_FILENO) ? STDERR_FILENO : STDOUT_FILENO;
}

char keyFor(std::string_view question, std::string_view good, const Interruption& interruption) {
    const int shownOn = screen();
    std::optional<char> key;
    {
        const RawTerminal raw;
        writeTo(shownOn, question);
        while (!key) key = meaningOf(nextKeys(interruption), good);
    }
    writeTo(shownOn, "\n");
    return *key;
}

}  // namespace

bool canAsk() {
    return isTerminal(STDIN_FILENO) && (isTerminal(STDERR_FILENO) || isTerminal(STDOUT_FILENO));
}

Answer ask(std::string_view question, const Interruption& interruption) {
    return keyFor(question, "\r\nyY", interruption) == saidNo ? Answer::no : Answer::yes;
}

std::optional<std::size_t> askNumber(std::string_view question, std::size_t most, const Interruption& interruption) {
    const char key = keyFor(question, std::string_view("123456789").substr(0, most), interruption);
    if (key == saidNo) return std::nullopt;
    return static_cast<std::size_t>(key - '0');
}

}  // namespace brindlet
