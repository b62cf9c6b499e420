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

// Keys that were held down or typed quickly come together: the first that says something counts.
std::optional<Answer> answerOf(std::string_view keys) {
    constexpr std::string_view yesKeys = "\r\nyY";
    constexpr std::string_view noKeys = "nNqQ\x03\x04";
    if (keys.empty() || keys == escape) return Answer::no;
    for (const char key : keys) {
        if (key == escape.front()) return std::nullopt;
        if (yesKeys.find(key) != std::string_view::npos) return Answer::yes;
        if (noKeys.find(key) != std::string_view::npos) return Answer::no;
    }
    return std::nullopt;
}

// Where the question is read. Asked once: at the end the terminal may have gone, and a file must not get its line.
int screen() {
    return isTerminal(STDERR_FILENO) ? STDERR_FILENO : STDOUT_FILENO;
}

}  // namespace

bool canAsk() {
    return isTerminal(STDIN_FILENO) && (isTerminal(STDERR_FILENO) || isTerminal(STDOUT_FILENO));
}

Answer ask(std::string_view question, const Interruption& interruption) {
    const int shownOn = screen();
    std::optional<Answer> answer;
    {
        const RawTerminal raw;
        writeTo(shownOn, question);
        while (!answer) answer = answerOf(nextKeys(interruption));
    }
    writeTo(shownOn, "\n");
    return *answer;
}

}  // namespace brindlet
