#include "launch.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace brindlet::tools {

namespace {

using namespace std::chrono_literals;

constexpr int cannotRun = 127;
constexpr auto trialTime = 500ms;
constexpr auto lookInterval = 10ms;

[[noreturn]] void becomeProgram(const Launch& launch, const std::vector<char*>& words) {
    if (!launch.waits) {
        ::setsid();
        const int nowhere = ::open("/dev/null", O_RDWR);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere, stream);
        if (nowhere > STDERR_FILENO) ::close(nowhere);
    }
    if (launch.folder.empty() || ::chdir(launch.folder.c_str()) == 0) ::execv(words.front(), words.data());
    ::_exit(cannotRun);
}

int shellStatus(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

int launch(const Launch& launch) {
    std::vector<char*> words;
    for (const std::string& word : launch.words) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    const pid_t process = ::fork();
    if (process < 0) return cannotRun;
    if (process == 0) becomeProgram(launch, words);
    int status = 0;
    if (launch.waits) {
        ::waitpid(process, &status, 0);
        return shellStatus(status);
    }
    for (auto waited = 0ms; waited < trialTime; waited += lookInterval) {
        if (::waitpid(process, &status, WNOHANG) == process) return shellStatus(status);
        std::this_thread::sleep_for(lookInterval);
    }
    return 0;
}

}  // namespace brindlet::tools
