#include "exec/file_variables.h"

#include <gtest/gtest.h>

namespace brindlet {

TEST(FileVariables, HowOftenACommandRuns) {
    struct Case {
        std::string_view command;
        std::string_view mode;
    };
    const Case cases[] = {
        {"ls", "once"},
        {"mv \"$FILE_NAME\" b", "oncePerFile"},
        {"mv a ${FILE_BASENAME%x}", "oncePerFile"},
        {"echo '$FILE_EXTENSION'", "oncePerFile"},  // no quoting is looked at
        {"echo $FILE_NAMES", "oncePerFile"},
        {"echo FILE_NAME $FILE", "once"},
        {"zip a $SPACE_SEPARATED_FILE_NAMES", "onceOnAllFiles"},
        {"zip \"$FILE_NAME\" \"${SPACE_SEPARATED_FILE_NAMES[@]}\"", "onceOnAllFiles"},
    };
    for (const auto& [command, mode] : cases) {
        EXPECT_EQ(caseName(runMode(command)), mode) << command;
    }
}

TEST(FileVariables, ValuesOfTheFirstFileAndOfAll) {
    struct Case {
        std::vector<FilePath> files;
        std::string name, extension, baseName, all;
    };
    const Case cases[] = {
        {{}, "", "", "", ""},
        {{FilePath("/w/a.tar.gz")}, "a.tar.gz", "gz", "a.tar", "\"a.tar.gz\""},
        {{FilePath("/w/.bashrc")}, ".bashrc", "", ".bashrc", "\".bashrc\""},
        {{FilePath("/w/sub/n.txt"), FilePath("/n b")}, "sub/n.txt", "txt", "n", "\"sub/n.txt\" \"../n b\""},
        // Only double quotes are marked here: the simulator reads this value.
        {{FilePath("/w/-a\"$`\\")}, "-a\"$`\\", "", "-a\"$`\\", "\"-a\\\"$`\\\""},
    };
    const Environment base{{"FILE_NAME", "of the parent"}, {"OTHER", "kept"}};
    for (const Case& each : cases) {
        const Environment expected{{"FILE_NAME", each.name},
                                   {"FILE_EXTENSION", each.extension},
                                   {"FILE_BASENAME", each.baseName},
                                   {"SPACE_SEPARATED_FILE_NAMES", each.all},
                                   {"OTHER", "kept"}};
        EXPECT_EQ(environmentWithFiles(base, each.files, FilePath("/w")), expected);
    }
}

TEST(FileVariables, EnvironmentsOfARequest) {
    const std::vector<FilePath> files(101, FilePath("/w/a"));
    const auto count = [](std::string_view command, const std::vector<FilePath>& selection) {
        return runEnvironments(command, selection, FilePath("/w"), {}).size();
    };
    EXPECT_EQ(count("cat \"$FILE_NAME\"", files), 101U);
    EXPECT_EQ(count("cat \"$FILE_NAME\"", {}), 0U);
    EXPECT_EQ(count("ls", files), 1U);
    EXPECT_EQ(count("cat $SPACE_SEPARATED_FILE_NAMES", {}), 1U);
}

}  // namespace brindlet
