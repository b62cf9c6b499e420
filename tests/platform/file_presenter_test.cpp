#include "platform/file_presenter.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/scratch_folder.h"

namespace brindlet {

namespace file_presenter_tests {

// A desktop whose helpers are scripts that note what they are asked.
class FilePresenterTest : public testing::Test {
  protected:
    FilePresenterTest() {
        environment = {{"PATH", scratch.path().text() + ":/usr/bin:/bin"},
                       {"DISPLAY", ":77"},
                       {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/none"}};
        helper("xdg-open", "echo \"open $1\" >> asked; exit 3");
    }
    void helper(const std::string& name, const std::string& script) const {
        const FilePath file = scratch.write(name, "#!/bin/sh\ncd " + scratch.path().text() + "\n" + script + "\n");
        std::filesystem::permissions(file.text(), std::filesystem::perms::owner_all);
    }
    // `running` owns a name on the bus, which no accessibility bus is behind; calls end as `status`.
    void bus(const std::string& running, int status = 0) const {
        helper("dbus-send", "case $* in *ListNames*) echo '   string \":1.4\"'; echo '      string \"" + running +
                                "\"';; *a11y*) exit 1;; *) shift 3; echo \"$*\" >> asked; exit " +
                                std::to_string(status) + ";; esac");
    }
    std::unique_ptr<FilePresenter> open() {
        std::filesystem::remove(scratch.path("asked").text());
        told.clear();
        return openFilePresenter(
            environment, [this](const std::string& sentence) { told += sentence; }, std::chrono::milliseconds(2000));
    }
    std::string asked() const { return scratch.read("asked"); }

    ScratchFolder scratch;
    Environment environment;
    std::string told;
};

const std::vector<FilePath> three{FilePath("/d/a,b.txt"), FilePath("/d/na\u00EFve \"$(x)\".md"), FilePath("/d/c")};
constexpr std::string_view first = "file:///d/a%2Cb.txt";
constexpr std::string_view others = ",file:///d/na%C3%AFve%20%22%24%28x%29%22.md,file:///d/c";
constexpr std::string_view names = "3 items: /d/a,b.txt, /d/na\u00EFve \"$(x)\".md, /d/c";

std::string call(std::string_view name, std::string_view method, const std::string& uris) {
    return "--dest=" + std::string(name) + " /org/freedesktop/FileManager1 org.freedesktop.FileManager1." +
           std::string(method) + " array:string:" + uris + " string:\n";
}

// With several items most file managers open a window for each.
TEST_F(FilePresenterTest, OnlyDolphinIsAskedForSeveralItems) {
    struct Case {
        std::string running, askedName;
        bool selectsAll;
    };
    const Case cases[] = {
        {"org.kde.dolphin-4711", "org.kde.dolphin-4711", true},
        {"org.xfce.Thunar", "org.xfce.Thunar", false},
        {"org.gnome.Nautilus", "org.gnome.Nautilus", false},
        {"org.gnome.NautilusPreviewer", "org.freedesktop.FileManager1", false},
        {"org.example", "org.freedesktop.FileManager1", false},
    };
    for (const auto& [running, name, selectsAll] : cases) {
        SCOPED_TRACE(running);
        bus(running);
        open()->selectInFileManager(three);
        EXPECT_EQ(asked(), call(name, "ShowItems", std::string(first) + std::string(selectsAll ? others : "")));
        EXPECT_EQ(told, selectsAll
                            ? ""
                            : "the file manager selects one item at a time, the first of these " + std::string(names));
        open()->selectInFileManager({three[0]});
        EXPECT_EQ(asked(), call(name, "ShowItems", std::string(first)));
        EXPECT_EQ(told, "");
        open()->openFolder(FilePath("/tmp/File Results"));
        EXPECT_EQ(asked(), call(name, "ShowFolders", "file:///tmp/File%20Results"));
        EXPECT_EQ(told, "");
    }
}

// The companion may say that no window shows the folder; after the first item was shown one does.
TEST_F(FilePresenterTest, ACompanionInThunarIsAskedFirst) {
    const std::string select =
        "--dest=com.fenwold.Brindlet.Thunar /com/fenwold/Brindlet/Companion com.fenwold.Brindlet.Companion1.Select "
        "array:string:" +
        std::string(first) + std::string(others) + "\n";
    const std::string show = call("org.xfce.Thunar", "ShowItems", std::string(first));
    const auto companion = [this](const std::string& isShown) {
        helper("dbus-send",
               "case $* in\n"
               "*ListNames*) echo 'string \"org.xfce.Thunar\" string \"com.fenwold.Brindlet.Thunar\"';;\n"
               "*a11y*) exit 1;;\n"
               "*) shift 3; echo \"$*\" >> asked\n"
               "case $* in *.Select*) " +
                   isShown +
                   " && echo 'boolean true' || echo 'boolean false';; esac;;\n"
                   "esac");
    };
    companion("true");
    open()->selectInFileManager(three);
    EXPECT_EQ(asked(), select);
    companion("grep -q ShowItems asked");
    open()->selectInFileManager(three);
    EXPECT_EQ(asked(), select + show + select);
    EXPECT_EQ(told, "");
}

TEST_F(FilePresenterTest, WhereNobodyAnswersTheFolderIsOpenedOrItIsTold) {
    const std::string wouldSelect = "a file manager would now show 1 item selected: /d/c";
    bus("org.example", 1);
    open()->selectInFileManager({three[2]});
    EXPECT_EQ(asked(), call("org.freedesktop.FileManager1", "ShowItems", "file:///d/c") + "open file:///d\n");
    EXPECT_EQ(told, wouldSelect);

    helper("dbus-send", "exec sleep 1000");  // ended, and nobody else is asked by the bus
    helper("xdg-open", "echo \"open $1\" >> asked");
    open()->selectInFileManager(three);
    EXPECT_EQ(asked(), "open file:///d\n");
    EXPECT_EQ(told, "the file manager can only show the folder of the 3 items to select: " +
                        std::string(names.substr(std::string_view("3 items: ").size())));

    for (const char* missing : {"DISPLAY", "DBUS_SESSION_BUS_ADDRESS"}) {
        SCOPED_TRACE(missing);
        const Environment whole = environment;
        environment.erase(missing);
        open()->selectInFileManager({three[2]});
        EXPECT_EQ(told, wouldSelect);
        open()->openFolder(FilePath("/d"));
        EXPECT_EQ(told, "a file manager would now open /d");
        EXPECT_EQ(asked(), "");
        environment = whole;
    }
    environment.erase("DISPLAY");
    open()->selectInFileManager(std::vector<FilePath>(99, FilePath("/d/c")));
    EXPECT_TRUE(told.ends_with(", /d/c and 79 more")) << told;
}

}  // namespace file_presenter_tests
}  // namespace brindlet
