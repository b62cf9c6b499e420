// The rules of the quick commands as data: which words over which files are answered by which line of bash, and how its
// output is told. Rows are tried from the top, and the first that fits answers.
//
//     for (const quick::InformationRow& row : quick::informationRows()) ...
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "prompts/quick_summaries.h"

namespace brindlet::quick {

using Words = std::span<const std::string_view>;

inline bool contains(Words words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// The line for a selection of no file, of one and of several; empty where such a selection has no answer.
struct CommandTexts {
    constexpr CommandTexts(const char* always) : none(always), one(always), several(always) {}
    constexpr CommandTexts(const char* forNone, const char* forOne, const char* forSeveral)
        : none(forNone), one(forOne), several(forSeveral) {}

    std::string_view forCount(std::size_t fileCount) const {
        return fileCount == 0 ? none : fileCount == 1 ? one : several;
    }

    std::string_view none, one, several;
};

// The extensions that those of the selected files must be among; any selection fits where there is none, also that of
// no file.
using FileCondition = std::optional<Words>;

// In `command` and `summary` "<format>" stands for the format asked for, "<FORMAT>" for the same in capitals,
// "<extension>" and "<label>" for the parts of its `FormatName`.
struct ConversionRow {
    Words formats;
    FileCondition files;
    CommandTexts command;
    std::string_view summary;  // shown as it stands after a success
};
// ".tar.gz" is given to their conditions as "tgz".
std::span<const ConversionRow> conversionRows();

struct FolderActionRow {
    Words requests;
    bool ignoresPunctuation;
    CommandTexts command;
    std::string_view summary;
};
std::span<const FolderActionRow> folderActionRows();

struct InformationRow {
    Words requests;
    FileCondition files;
    std::string command;
    summaries::Summary summary;
};
std::span<const InformationRow> informationRows();

// "docx" for "word": the one name that the rows know.
std::string_view formatForAlias(std::string_view name);

struct FormatName {
    std::string_view format, extension, label;
};
// None: the format is its own extension, and its label is itself in capitals.
const FormatName* nameOfFormat(std::string_view format);

// Whether "select" takes it as an extension.
bool isSelectable(std::string_view noun);

}  // namespace brindlet::quick
