#include "ui/terminal/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "ui/terminal/shown_text.h"

namespace brindlet {

namespace {

constexpr std::size_t bufferBytes = 64 * 1024;

// 0, or the error that ended the writing.
int writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

}  // namespace

void StandardOutput::write(std::string_view text) {
    buffer_ += text;
    if (buffer_.size() >= bufferBytes) flush();
}

void StandardOutput::flush() {
    const int error = writeAll(STDOUT_FILENO, buffer_);
    buffer_.clear();
    if (error != 0) throw OutputError{error};
}

void prepareStandardStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) != -1) continue;
        // The lowest number that is free, which is this one. For reading only: a write must still fail.
        [[maybe_unused]] const int opened = ::open("/dev/null", O_RDONLY);
    }
    // A handler, since what is ignored stays ignored in children.
    struct sigaction action {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGPIPE, &action, nullptr);
    // A file that may not grow further is to be reported like a full disk.
    ::sigaction(SIGXFSZ, &action, nullptr);
}

void writeTo(int descriptor, std::string_view text) {
    writeAll(descriptor, text);
}

void reportProblem(std::string_view sentence) {
    writeTo(STDERR_FILENO, "brindlet: " + shownText(sentence) + "\n");
}

bool isTerminal(int descriptor) {
    return ::isatty(descriptor) == 1;
}

bool wantsColour(int descriptor) {
    const char* noColour = std::getenv("NO_COLOR");
    return isTerminal(descriptor) && (noColour == nullptr || *noColour == '\0');
}

}  // namespace brindlet
