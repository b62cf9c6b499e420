#include "platform/linux/accessible_selection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <thread>

#include "platform/child_process.h"
#include "platform/file_presenter.h"
#include "platform/linux/forked_task.h"
#include "support/scratch_folder.h"
#include "text/strings.h"

namespace brindlet {

namespace accessible_selection_tests {

using namespace std::chrono_literals;

// Thunar as it really is, on a display and a bus of its own. It comes up in its list: its icon view, which it would
// choose itself, has nothing to select for assistive programs.
class ThunarDesktop {
  public:
    static constexpr const char* wanted[] = {"/usr/bin/thunar", "/usr/bin/Xvfb", "/usr/bin/dbus-run-session",
                                             "/usr/share/dbus-1/services/org.a11y.Bus.service"};

    ThunarDesktop() {
        scratch_.write("config/xfce4/xfconf/xfce-perchannel-xml/thunar.xml",
                       "<channel name=\"thunar\" version=\"1.0\">"
                       "<property name=\"last-view\" type=\"string\" value=\"ThunarDetailsView\"/></channel>");
        std::filesystem::create_directory(scratch_.path("run").text());
        std::filesystem::permissions(scratch_.path("run").text(), std::filesystem::perms::owner_all);
        environment = {{"PATH", "/usr/bin:/bin"},
                       {"LC_ALL", "C.UTF-8"},
                       {"HOME", scratch_.path().text()},
                       {"XDG_CONFIG_HOME", scratch_.path("config").text()},
                       {"XDG_RUNTIME_DIR", scratch_.path("run").text()}};
        const char* script =
            "Xvfb -displayfd 3 -screen 0 1000x700x24 -nolisten tcp 3>display >/dev/null 2>&1 &\n"
            "for i in $(seq 300); do [ -s display ] && break; sleep 0.02; done\n"
            "export DISPLAY=:$(cat display)\n"
            "thunar --daemon >/dev/null 2>&1 &\n"
            "for i in $(seq 300); do\n"
            "    dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.GetNameOwner "
            "string:org.xfce.Thunar >/dev/null 2>&1 && echo \"$DISPLAY $DBUS_SESSION_BUS_ADDRESS $!\" && break\n"
            "    sleep 0.02\n"
            "done\n"
            "wait\n";
        auto session = ChildProcess::start(
            {.arguments = {"/bin/sh", "-c", "exec dbus-run-session sh -c \"$1\" 2>/dev/null", "sh", script},
             .folder = scratch_.path(),
             .environment = environment});
        if (!session) return;
        session_ = std::move(*session);
        std::string line;
        for (int tries = 0; tries < 100 && !contains(line, "\n"); ++tries) session_->read(line, 100ms);
        const std::vector<std::string> words = splitNonEmpty(trimmed(line), " ");
        if (words.size() != 3) return;
        environment["DISPLAY"] = words[0];
        environment["DBUS_SESSION_BUS_ADDRESS"] = words[1];
        thunar_ = static_cast<pid_t>(parsedInteger(words[2]).value_or(0));
    }

    // What each window has selected, in words.
    std::string windows() const {
        const auto look = [this] {
            for (const auto& [name, value] : environment) ::setenv(name.c_str(), value.c_str(), 1);
            std::string all;
            if (!connectAccessibility()) return all;
            const TimeLimit limit = std::chrono::steady_clock::now() + 5s;
            for (const Accessible& window : accessibleWindows(thunar_, limit)) {
                const FolderWindow shown = readFolderWindow(window, FilePath("/home/someone"), limit);
                auto names = shown.view ? selectedNames(shown.view, limit) : std::nullopt;
                if (names) std::sort(names->begin(), names->end());
                for (const FilePath& folder : shown.folders) all += std::string(folder.name()) + ": ";
                all += names ? joined(*names, ", ") + "\n" : "nothing to select\n";
            }
            return all;
        };
        return runForked(10s, look).value_or("hangs");
    }

    Environment environment;

  private:
    ScratchFolder scratch_;
    std::unique_ptr<ChildProcess> session_;
    pid_t thunar_ = 0;
};

TEST(AccessibleSelection, ThunarSelectsSeveralItemsInOneWindow) {
    for (const char* file : ThunarDesktop::wanted)
        if (!std::filesystem::exists(file)) GTEST_SKIP() << file << " isn't installed";
    const ScratchFolder files;
    for (const char* name : {"of all/a, b.txt", "of all/folder/inside", "of all/na\u00EFve \"$(x)\".md", "of all/z"})
        files.write(name, "");
    const FilePath folder = files.path("of all");
    const ThunarDesktop desktop;
    ASSERT_TRUE(desktop.environment.contains("DISPLAY")) << "the desktop doesn't start";
    std::string told;
    const auto select = [&](const std::vector<std::string>& names) {
        std::vector<FilePath> items;
        for (const std::string& name : names) items.push_back(folder.child(name));
        openFilePresenter(desktop.environment, [&](const std::string& sentence) {
            told += sentence + "\n";
        })->selectInFileManager(items);
    };

    select({"z", "na\u00EFve \"$(x)\".md"});
    EXPECT_EQ(desktop.windows(), "of all: na\u00EFve \"$(x)\".md, z\n");
    select({"a, b.txt", "folder"});  // in the window that is there
    EXPECT_EQ(desktop.windows(), "of all: a, b.txt, folder\n");
    std::thread late([&] {
        std::this_thread::sleep_for(100ms);
        files.write("of all/late", "");
    });
    select({"z", "late"});
    late.join();
    EXPECT_EQ(desktop.windows(), "of all: late, z\n");
    EXPECT_EQ(told, "");

    select({"z", "gone"});
    EXPECT_TRUE(told.starts_with("the file manager selects one item at a time, the first of these 2 items: ")) << told;
}

}  // namespace accessible_selection_tests
}  // namespace brindlet
