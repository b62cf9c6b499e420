// The models of the commands that pack and unpack files. What an extraction makes is named by no line: so the archive
// is listed, with the real tool, and every entry becomes a predicted change.
//
//     tar -xf a.tar    records a create or a modify for each entry of a.tar
//     zip -m a.zip b   records a create of a.zip and a delete of b
//
// An archive that an earlier command of the line made or changed can't be listed: its entries are unknown.
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

CommandResult archiveWithTar(BasherAnalysis& analysis, const ModelInput& input);   // tar
CommandResult zipFiles(BasherAnalysis& analysis, const ModelInput& input);         // zip
CommandResult unzipFiles(BasherAnalysis& analysis, const ModelInput& input);       // unzip
CommandResult describeZip(BasherAnalysis& analysis, const ModelInput& input);      // zipinfo
CommandResult compressFiles(BasherAnalysis& analysis, const ModelInput& input);    // gzip
CommandResult decompressFiles(BasherAnalysis& analysis, const ModelInput& input);  // gunzip

}  // namespace brindlet
