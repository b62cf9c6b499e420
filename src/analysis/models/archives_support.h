// What the models of the archive tools share: entries that become changes, and what they say of what they don't show.
//
//     extractEntries(analysis, folder, {"dir/", "dir/a.txt"});  // create dir/, create or modify dir/a.txt
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "analysis/models/model_support.h"

namespace brindlet {

// Whether the archive is the real file that is on the disk now, so that the real tool may list it.
bool canBeListed(BasherAnalysis& analysis, const FilePath& archive);

// Takes every word of `keys` out of `words`, wherever it stands, with up to `arity` words behind it that don't begin
// with "-". Returns whether there was one.
bool takeOutEverywhere(Words& words, AcceptedFlags keys, std::size_t arity);

// Records what unpacking the entries into `folder` does, an entry being a path with a "/" behind a folder. Throws where
// they are too many to record.
void extractEntries(BasherAnalysis& analysis, const FilePath& folder, const Words& entries);

// A flag as it stands in a line: "-x", "--extract".
std::string spelt(std::string_view flag);

// The tool reads a word, or a variable that is set, that its model passes over.
void noteUnread(BasherAnalysis& analysis, std::string_view tool, std::string_view word);
void noteVariables(BasherAnalysis& analysis, std::string_view tool, AcceptedFlags variables);

}  // namespace brindlet
