#include "exec/file_presenting.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/scratch_folder.h"

namespace brindlet {

namespace file_presenting_tests {

struct FakePresenter final : FilePresenter {
    std::vector<FilePath> selected;
    std::vector<FilePath> opened;
    void selectInFileManager(const std::vector<FilePath>& items) override { selected = items; }
    void openFolder(const FilePath& folder) override { opened.push_back(folder); }
};

TEST(FilePresenting, TheEndIsCutOffOnlyWhereItIsTheEnd) {
    struct Case {
        std::string_view command;
        PipelineEnd end;
        std::string_view rest;
    };
    const Case cases[] = {
        {"find . | finderSelect", PipelineEnd::finderSelect, "find . "},
        {"which gs| presentFiles", PipelineEnd::presentFiles, "which gs"},
        {"ls | finderSelect ", PipelineEnd::none, "ls | finderSelect "},
        {"ls |finderSelect", PipelineEnd::none, "ls |finderSelect"},
        {"ls | finderSelect | presentFiles", PipelineEnd::presentFiles, "ls | finderSelect "},
    };
    for (const auto& [command, end, rest] : cases) {
        SCOPED_TRACE(command);
        EXPECT_EQ(pipelineEnd(command), end);
        EXPECT_EQ(withoutPipelineEnd(command), rest);
    }
}

TEST(FilePresenting, WhatIsSelectedAndSaid) {
    struct Case {
        PipelineEnd end;
        std::string output;
        CommandRunResult result;
        std::vector<FilePath> selected;
    };
    const Case cases[] = {
        {PipelineEnd::finderSelect, "", {"", "Zero files to select", 1}, {}},
        {PipelineEnd::presentFiles, "\n", {"", "Zero files returned from command", 1}, {}},
        {PipelineEnd::finderSelect,
         "./a\n\n \tb \xFF\t\n",
         {"Selected 2 items in Finder", "", 0},
         {FilePath("/w/a"), FilePath("/w/b \xFF")}},
        {PipelineEnd::presentFiles, "/usr/bin/gs\n", {"Presented 1 items in Finder", "", 0}, {FilePath("/usr/bin/gs")}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.output);
        FakePresenter presenter;
        EXPECT_EQ(presentPaths(each.end, each.output, FilePath("/w"), &presenter), each.result);
        EXPECT_EQ(presenter.selected, each.selected);
        EXPECT_TRUE(presenter.opened.empty());
        EXPECT_EQ(presentPaths(each.end, each.output, FilePath("/w"), nullptr), each.result);
    }
}

TEST(FilePresenting, WhatIsTooManyOrFromElsewhereGoesIntoTheResultsFolder) {
    const auto lines = [](int count) {
        std::string text;
        for (int number = 0; number < count; ++number) text += std::to_string(number) + "\n";
        return text;
    };
    struct Case {
        PipelineEnd end;
        std::string output;
        bool isSelectedInPlace;
    };
    const Case cases[] = {
        {PipelineEnd::finderSelect, lines(99), true},   {PipelineEnd::finderSelect, lines(100), false},
        {PipelineEnd::finderSelect, "a\nb/c\n", false}, {PipelineEnd::finderSelect, "a\n../w/b/../c\n", true},
        {PipelineEnd::finderSelect, ".\n", false},      {PipelineEnd::presentFiles, "b/c\n", true},
        {PipelineEnd::presentFiles, lines(2), false},
    };
    const ScratchFolder scratch;
    const FilePath results = scratch.path("Brindlet/Results");
    for (const auto& [end, output, isSelectedInPlace] : cases) {
        SCOPED_TRACE(output);
        FakePresenter presenter;
        presentPaths(end, output, FilePath("/w"), &presenter, results);
        EXPECT_EQ(!presenter.selected.empty(), isSelectedInPlace);
        EXPECT_EQ(presenter.opened, isSelectedInPlace ? std::vector<FilePath>{} : std::vector<FilePath>{results});
    }
}

TEST(FilePresenting, AResultsFolderHoldsLinksAndIsMadeAnew) {
    const ScratchFolder scratch;
    const FilePath results = scratch.path("made/Results");
    scratch.write("made/Results/left over/a", "");

    FakePresenter presenter;
    presentInResultsFolder({FilePath("/one/a"), FilePath("/two/a"), FilePath("/two/b")}, results, presenter);

    EXPECT_EQ(presenter.opened, std::vector<FilePath>{results});
    EXPECT_FALSE(scratch.exists("made/Results/left over"));
    EXPECT_EQ(std::filesystem::read_symlink(results.child("a").text()), "/one/a");  // the second "a" is left out
    EXPECT_EQ(std::filesystem::read_symlink(results.child("b").text()), "/two/b");
}

}  // namespace file_presenting_tests
}  // namespace brindlet
