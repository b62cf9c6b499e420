#include "ui/terminal/secret_input.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "platform/secret_store.h"
#include "text/strings.h"
#include "text/utf8.h"
#include "ui/terminal/console.h"
#include "ui/terminal/exit_code.h"

namespace brindlet {

namespace {

constexpr std::size_t longestSecret = 16 * 1024;

// While it lives the terminal shows nothing of what is typed. The keys that would end or stop the program at once do
// nothing: they would leave the terminal like that.
class HiddenTyping {
  public:
    HiddenTyping() {
        isHidden_ = ::tcgetattr(STDIN_FILENO, &earlier_) == 0;
        if (!isHidden_) return;
        termios hidden = earlier_;
        hidden.c_lflag &= static_cast<tcflag_t>(~ECHO);
        for (const int key : {VSUSP, VQUIT}) hidden.c_cc[key] = _POSIX_VDISABLE;
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    ~HiddenTyping() {
        if (isHidden_) ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &earlier_);
    }
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

  private:
    bool isHidden_ = false;
    termios earlier_{};
};

// Reads up to and with the first line end, or to the end of input. None after an interruption.
std::optional<std::string> readUntil(bool stopsAtLineEnd, const Interruption& interruption) {
    std::string text;
    text.reserve(2 * longestSecret);  // growing would leave copies in memory
    std::array<char, 4096> bytes;
    std::array<pollfd, 2> watched = {pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{interruption.descriptor(), POLLIN, 0}};
    while (text.size() <= longestSecret && !(stopsAtLineEnd && contains(text, "\n"))) {
        while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
        }
        if (watched[1].revents != 0) return std::nullopt;
        const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    ::explicit_bzero(bytes.data(), bytes.size());
    return text;
}

std::optional<std::string> readHidden(std::string_view question, const Interruption& interruption) {
    std::optional<std::string> line;
    {
        const HiddenTyping hidden;
        writeTo(STDERR_FILENO, question);
        line = readUntil(/*stopsAtLineEnd=*/true, interruption);
    }
    writeTo(STDERR_FILENO, "\n");  // the one that was typed wasn't shown
    if (line && line->empty()) return std::nullopt;
    return line;
}

void checkSecret(std::string_view secret) {
    const auto isControl = [](char byte) { return static_cast<unsigned char>(byte) < ' ' || byte == 127; };
    if (secret.size() > longestSecret) throw UsageError{"what came on standard input is too long for a key"};
    if (std::ranges::any_of(secret, isControl) || !isValidUtf8(secret))
        throw UsageError{"what came on standard input is no key: it must be one line of plain text"};
}

}  // namespace

std::optional<std::string> readSecret(std::string_view question, const Interruption& interruption) {
    auto text = isTerminal(STDIN_FILENO) ? readHidden(question, interruption)
                                         : readUntil(/*stopsAtLineEnd=*/false, interruption);
    if (!text) return std::nullopt;
    std::string secret(trimmed(*text));
    wipe(*text);
    checkSecret(secret);
    return secret;
}

}  // namespace brindlet
