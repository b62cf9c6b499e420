// A file or folder that a search looks at. What costs something is looked up when it is first asked for.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "shared/content_types.h"
#include "text_content.h"

namespace brindlet::tools {

// In seconds since 1970.
struct FileTimes {
    double changed = 0, made = 0, used = 0;
};

class Candidate {
  public:
    Candidate(std::filesystem::path path, bool isFolder, TextReader& reader)
        : path_(std::move(path)), isFolder_(isFolder), reader_(reader) {}

    std::string path() const { return path_.string(); }
    std::string name() const { return path_.filename().string(); }
    const ContentType& type() const {
        return isFolder_ ? folderContentType() : contentTypeOf(path_.filename().string());
    }
    const FileTimes& times();
    double size();
    const std::string& text();

  private:
    void look();

    std::filesystem::path path_;
    bool isFolder_;
    TextReader& reader_;
    bool hasLooked_ = false;
    FileTimes times_;
    double size_ = 0;
    std::optional<std::string> text_;
};

}  // namespace brindlet::tools
