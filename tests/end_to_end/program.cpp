#include "end_to_end/program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <thread>

namespace brindlet {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds patience{
    60};  // for a slow machine under sanitizers; a test that waits so long has failed

int statusOf(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void openOnto(int descriptor, const std::string& file, int flags) {
    const int opened = ::open(file.c_str(), flags, 0600);
    if (opened == descriptor) return;
    ::dup2(opened, descriptor);
    ::close(opened);
}

// What the terminal shows, until it holds `awaited` or ends.
std::string screenUntil(int terminal, std::string_view awaited) {
    std::string screen;
    const auto end = Clock::now() + patience;
    std::array<char, 4096> bytes;
    while (Clock::now() < end && (awaited.empty() || screen.find(awaited) == std::string::npos)) {
        pollfd watched{terminal, POLLIN, 0};
        if (::poll(&watched, 1, 1000) <= 0) continue;
        const ssize_t count = ::read(terminal, bytes.data(), bytes.size());
        if (count <= 0) break;
        screen.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return screen;
}

}  // namespace

Program::Program() {
    environment = {{"HOME", home.path().text()},
                   {"BRINDLET_DATA_HOME", home.path("data").text()},
                   {"BRINDLET_CONFIG_HOME", home.path("config").text()},
                   {"PATH", "/usr/local/bin:/usr/bin:/bin"},
                   {"SHELL", "/bin/false"},  // no login shell of this machine has a say
                   {"LANG", "C.UTF-8"}};
}

void Program::become(const std::vector<std::string>& words) const {
    std::vector<std::string> variables;
    for (const auto& [name, value] : environment) variables.push_back(name + "=" + value);
    const auto pointers = [](const std::vector<std::string>& texts) {
        std::vector<char*> list;
        for (const std::string& text : texts) list.push_back(const_cast<char*>(text.c_str()));
        list.push_back(nullptr);
        return list;
    };
    std::vector<std::string> all = {BRINDLET_PROGRAM};
    all.insert(all.end(), words.begin(), words.end());
    if (::chdir(disk.path().text().c_str()) == 0)
        ::execve(BRINDLET_PROGRAM, pointers(all).data(), pointers(variables).data());
    ::_exit(127);
}

pid_t Program::start(const std::vector<std::string>& words, std::string_view standardInput,
                     const std::function<void()>& prepare) const {
    home.write("in", standardInput);
    const pid_t child = ::fork();
    if (child != 0) return child;
    openOnto(0, home.path("in").text(), O_RDONLY);
    openOnto(1, home.path("out").text(), O_WRONLY | O_CREAT | O_TRUNC);
    openOnto(2, home.path("err").text(), O_WRONLY | O_CREAT | O_TRUNC);
    prepare();
    become(words);
}

Outcome Program::collect(pid_t child) const {
    const int exitCode = statusOf(child);
    return {exitCode, home.read("out"), home.read("err")};
}

Outcome Program::run(const std::vector<std::string>& words, std::string_view standardInput) const {
    return collect(start(words, standardInput, [] {}));
}

Outcome Program::runOnto(const char* outputFile, const std::vector<std::string>& words) const {
    return collect(start(words, "", [outputFile] {
        ::close(1);
        if (outputFile) openOnto(1, outputFile, O_WRONLY);
    }));
}

Outcome Program::runAtTerminal(const std::vector<std::string>& words, std::string_view awaited,
                               std::string_view keys) const {
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) become(words);
    std::string screen = screenUntil(terminal, awaited);
    if (keys.empty()) {
        ::kill(child, SIGINT);
    } else {
        [[maybe_unused]] const ssize_t written = ::write(terminal, keys.data(), keys.size());
    }
    screen += screenUntil(terminal, "");
    ::close(terminal);
    return {statusOf(child), screen, ""};
}

Outcome Program::interruptWhenExists(std::string_view sign, const std::vector<std::string>& words) const {
    const pid_t child = start(words, "", [] {});
    const auto end = Clock::now() + patience;
    while (!disk.exists(sign) && Clock::now() < end) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    ::kill(child, SIGINT);
    return collect(child);
}

std::string Program::names(std::string_view folder) const {
    std::vector<std::string> sorted;
    for (const auto& entry : std::filesystem::directory_iterator(disk.path(folder).text()))
        sorted.push_back(entry.path().filename().string());
    std::ranges::sort(sorted);
    std::string text;
    for (const std::string& name : sorted) text += (text.empty() ? "" : " ") + name;
    return text;
}

}  // namespace brindlet
