// A display of a test's own with a window manager on it, and a message bus if it is wanted, gone with its owner.
//
//     const DesktopSession session(DesktopSession::Bus::own);
//     ASSERT_FALSE(session.display().empty());
//     ChildProcess::start({.arguments = {"/usr/bin/thunar"}, .environment = session.environment()});
#pragma once

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/child_process.h"
#include "support/scratch_folder.h"
#include "text/strings.h"

namespace brindlet {

class DesktopSession {
  public:
    static constexpr const char* wanted[] = {"/usr/bin/Xvfb", "/usr/bin/openbox"};

    enum class Bus { none, own };

    explicit DesktopSession(Bus bus = Bus::none) {
        environment_ = {{"PATH", "/usr/bin:/bin"},
                        {"LC_ALL", "C.UTF-8"},
                        {"HOME", home_.path().text()},
                        {"XDG_CONFIG_HOME", home_.makeFolder("config").text()},
                        {"XDG_DATA_HOME", home_.makeFolder("share").text()},
                        {"XDG_CACHE_HOME", home_.makeFolder("cache").text()},
                        {"XDG_RUNTIME_DIR", home_.makeFolder("run").text()}};
        std::filesystem::permissions(home_.path("run").text(), std::filesystem::perms::owner_all);
        auto started = ChildProcess::start(
            {.arguments = {"/bin/sh", "-c", script, "sh", std::to_string(::getpid()), bus == Bus::own ? "bus" : ""},
             .folder = home_.path(),
             .environment = environment_});
        if (!started) return;
        session_ = std::move(*started);
        std::string line;
        for (int tries = 0; tries < 200 && !contains(line, "\n"); ++tries)
            session_->read(line, std::chrono::milliseconds{100});
        const std::vector<std::string> words = splitNonEmpty(trimmed(line), " ");
        if (words.size() != (bus == Bus::own ? 2u : 1u)) return;
        environment_["DISPLAY"] = words[0];
        if (bus == Bus::own) environment_["DBUS_SESSION_BUS_ADDRESS"] = words[1];
    }
    // With all that the bus has started; its leader waits, so that there is a group to end.
    ~DesktopSession() {
        if (session_) session_->terminateGroup(false);
    }

    // Empty: it didn't come up.
    std::string display() const {
        const auto found = environment_.find("DISPLAY");
        return found == environment_.end() ? "" : found->second;
    }
    const Environment& environment() const { return environment_; }
    const ScratchFolder& home() const { return home_; }

  private:
    // The first line ends it all where the test is killed.
    static constexpr const char* script =
        "(while kill -0 \"$1\" 2>/dev/null; do sleep 1; done; kill -KILL 0) >/dev/null 2>&1 &\n"
        "await() { for i in $(seq 500); do [ -s \"$1\" ] && break; sleep 0.02; done; }\n"
        "Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>display >/dev/null 2>&1 &\n"
        "await display\n"
        "export DISPLAY=:$(cat display)\n"
        "if [ \"$2\" ]; then\n"
        "    dbus-daemon --session --nofork --nopidfile --print-address=3 3>bus >/dev/null 2>&1 &\n"
        "    await bus\n"
        "    export DBUS_SESSION_BUS_ADDRESS=$(cat bus)\n"
        "fi\n"
        "openbox >/dev/null 2>&1 &\n"
        "echo \"$DISPLAY $DBUS_SESSION_BUS_ADDRESS\"\n"
        "wait\n";

    ScratchFolder home_;
    Environment environment_;
    std::unique_ptr<ChildProcess> session_;
};

}  // namespace brindlet
