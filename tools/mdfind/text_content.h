// The words in a file, whatever wraps them: plain text and markup as it stands, PDF by pdftotext, the zipped documents
// of office programs by unzip.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "shared/tool.h"

namespace brindlet::tools {

class TextReader {
  public:
    // Every run of white space is one blank. "" for what holds no text, can't be read, is far too large, or takes an
    // engine too long.
    std::string textOf(const std::filesystem::path& file);

    // The engine that some file needed and that isn't there.
    const std::optional<ToolFailure>& missingEngine() const { return missing_; }

  private:
    std::string extractedBy(const struct Extractor& extractor, const std::filesystem::path& file);

    std::optional<ToolFailure> missing_;
};

}  // namespace brindlet::tools
