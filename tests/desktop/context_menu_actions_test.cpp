#include "desktop/linux/context_menu_actions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/file_system.h"
#include "support/scratch_folder.h"

namespace brindlet {

namespace context_menu_actions_tests {

// A home folder, and file managers that are there by their names only.
class ContextMenuActionsTest : public testing::Test {
  protected:
    void addProgram(const std::string& name) const {
        std::filesystem::permissions(scratch.write("bin/" + name, "#!/bin/sh\n").text(),
                                     std::filesystem::perms::owner_all);
    }
    ContextMenuAction actionFor(const std::string& program) const {
        addProgram(program);
        auto actions = contextMenuActions(environment);
        EXPECT_EQ(actions.size(), 1U);
        return actions.front();
    }

    ScratchFolder scratch;
    Environment environment{{"HOME", scratch.path().text()},
                            {"PATH", "bin:" + scratch.path("bin").text()},
                            {"XDG_CONFIG_DIRS", scratch.path("system").text()}};
};

TEST_F(ContextMenuActionsTest, OnlyWhatIsInstalledIsListed) {
    EXPECT_TRUE(contextMenuActions(environment).empty());
    for (const char* program : {"thunar", "nautilus", "nemo", "caja", "pcmanfm-qt", "dolphin", "xterm"})
        addProgram(program);
    std::string names;
    for (const auto& action : contextMenuActions(environment)) names += action.fileManager + " ";
    EXPECT_EQ(names, "Thunar Nautilus Nemo Caja PCManFM Dolphin ");
}

TEST_F(ContextMenuActionsTest, WholeFilesComeAndGo) {
    struct Case {
        std::string program, file;
        bool isProgram;
    };
    const Case cases[] = {
        {"nautilus", ".local/share/nautilus/scripts/Ask Brindlet", true},
        {"caja", ".config/caja/scripts/Ask Brindlet", true},
        {"nemo", ".local/share/nemo/actions/brindlet.nemo_action", false},
        {"pcmanfm", ".local/share/file-manager/actions/brindlet.desktop", false},
        {"dolphin", ".local/share/kio/servicemenus/brindlet.desktop", true},
    };
    for (const auto& [program, file, isProgram] : cases) {
        SCOPED_TRACE(program);
        const ContextMenuAction action = actionFor(program);
        EXPECT_FALSE(action.isInstalled());
        EXPECT_FALSE(action.install());
        EXPECT_TRUE(action.isInstalled());
        EXPECT_EQ(openFileSystem()->isExecutableFile(scratch.path(file)), isProgram);
        scratch.write(file, "of an older version");
        EXPECT_FALSE(action.isInstalled());
        EXPECT_FALSE(action.install());
        const auto once = scratch.snapshot();
        EXPECT_FALSE(action.install());
        EXPECT_EQ(scratch.snapshot(), once);
        EXPECT_TRUE(action.isInstalled());
        EXPECT_FALSE(action.remove());
        EXPECT_FALSE(action.isInstalled());
        EXPECT_FALSE(scratch.exists(file));
        EXPECT_FALSE(action.remove());
        std::filesystem::remove_all(scratch.path("bin").text());
    }
}

// Lists as Thunar and people write them: each gets the action once, at the end, and is itself again afterwards.
TEST_F(ContextMenuActionsTest, AThunarListKeepsAllElse) {
    const std::string lists[] = {
        "<actions></actions>",
        "<?xml version=\"1.0\"?>\r\n<actions>\r\n  <!-- </actions> <unique-id>brindlet-ask</unique-id> "
        "-->\r\n</actions >\r\n",
        "<!DOCTYPE actions [\n  <!ELEMENT actions (action)+>\n  <!ATTLIST name xml:lang CDATA "
        "#IMPLIED>\n]>\n<actions>\n"
        "<action><name a=\"</actions>\">x</name><unique-id>1-2</unique-id><command>echo '</command></action></actions>",
        "\xEF\xBB\xBF<actions>\n\t<action>\n\t\t<name><![CDATA[</actions>]]></name><directories/>\n\t</action>\n\t</"
        "actions>"
        "<!-- <actions></actions> -->",
    };
    const ContextMenuAction action = actionFor("thunar");
    for (const std::string& list : lists) {
        SCOPED_TRACE(list);
        scratch.write(".config/Thunar/uca.xml", list);
        scratch.write(".config/Thunar/accels.scm", "; (gtk_accel_path \"<Primary><Shift>b\" \"\")");
        const auto before = scratch.read(".config/Thunar/accels.scm");
        EXPECT_FALSE(action.isInstalled());
        EXPECT_FALSE(action.install());
        EXPECT_TRUE(action.isInstalled());
        const std::string merged = scratch.read(".config/Thunar/uca.xml");
        const std::size_t at = merged.find("<action>\n\t<icon>com.fenwold.Brindlet");
        EXPECT_TRUE(merged.substr(at).find("</action>\n</actions") != std::string::npos) << merged;
        EXPECT_FALSE(action.install());
        EXPECT_EQ(scratch.read(".config/Thunar/uca.xml"), merged);
        EXPECT_TRUE(scratch.read(".config/Thunar/accels.scm").starts_with("(gtk_accel_path"));
        EXPECT_FALSE(action.remove());
        EXPECT_EQ(scratch.read(".config/Thunar/uca.xml"), list);
        EXPECT_EQ(scratch.read(".config/Thunar/accels.scm"), before);
    }
}

// Thunar looks at its system's list only where the user has none.
TEST_F(ContextMenuActionsTest, AFirstThunarListBeginsAsTheSystemHasIt) {
    scratch.write("system/Thunar/uca.xml", "<actions><action><name>Terminal</name></action></actions>");
    const ContextMenuAction action = actionFor("thunar");
    const auto before = scratch.snapshot();
    EXPECT_FALSE(action.install());
    EXPECT_TRUE(
        scratch.read(".config/Thunar/uca.xml").starts_with("<actions><action><name>Terminal</name></action><action>"));
    EXPECT_FALSE(action.remove());
    EXPECT_FALSE(scratch.exists(".config/Thunar/uca.xml"));
    EXPECT_FALSE(scratch.exists(".config/Thunar/accels.scm"));
}

TEST_F(ContextMenuActionsTest, TheUsersOwnChoicesStay) {
    // Thunar writes an action anew when the user has changed it; and a key that is taken is not ours to take.
    const std::string own =
        "<actions><action><unique-id> brindlet-ask\n</unique-id><name>Mine</name></action></actions>";
    scratch.write(".config/Thunar/uca.xml", own);
    for (const std::string keys : {"(gtk_accel_path \"<Actions>/ThunarActions/uca-action-brindlet-ask\" \"F4\")\n",
                                   "(gtk_accel_path \"<Actions>/x\" \"<Primary><Shift>b\")"}) {
        scratch.write(".config/Thunar/accels.scm", keys);
        const ContextMenuAction action = actionFor("thunar");
        EXPECT_TRUE(action.isInstalled());
        EXPECT_FALSE(action.install());
        EXPECT_EQ(scratch.read(".config/Thunar/uca.xml"), own);
        EXPECT_EQ(scratch.read(".config/Thunar/accels.scm"), keys);
    }
}

TEST_F(ContextMenuActionsTest, WhatCantBeReadOrWrittenIsToldAndLeftAlone) {
    const ContextMenuAction action = actionFor("thunar");
    const std::string file = scratch.path(".config/Thunar/uca.xml").text();
    for (const std::string list : {"<actions>", "<actions><action></actions>", "</actions>", "<list></list>",
                                   "<!-- <actions></actions>", "words", "<actions/>"}) {
        SCOPED_TRACE(list);
        scratch.write(".config/Thunar/uca.xml", list);
        for (const auto& change : {action.install, action.remove}) {
            const auto failure = change();
            ASSERT_TRUE(failure);
            EXPECT_EQ(failure->description,
                      "'" + file + "' isn't in the form that its file manager gives it, so that it was left alone.");
            EXPECT_EQ(scratch.read(".config/Thunar/uca.xml"), list);
        }
    }
    // Not even root can make a folder in a file.
    std::filesystem::remove_all(scratch.path(".config").text());
    scratch.write(".config", "");
    const auto failure = action.install();
    ASSERT_TRUE(failure);
    EXPECT_EQ(std::count(failure->description.begin(), failure->description.end(), '\n'), 0);
    EXPECT_TRUE(failure->description.starts_with("Can't ")) << failure->description;
    EXPECT_FALSE(action.isInstalled());
}

}  // namespace context_menu_actions_tests
}  // namespace brindlet
