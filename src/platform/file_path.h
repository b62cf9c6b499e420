// An absolute path in its standard form: no ".", no "..", no double or trailing slash. Symbolic links are not looked
// at. Made once where a path enters, so that nobody standardises twice.
//
//     FilePath::resolve("../b.txt", FilePath("/w/a")).text() == "/w/b.txt"
#pragma once

#include <string>
#include <string_view>

namespace brindlet {

class FilePath {
  public:
    // The root.
    FilePath() : text_("/") {}
    // `absolute` begins with "/"; anything else is taken against the root.
    explicit FilePath(std::string_view absolute);

    // `path` taken against `base`: absolute paths stand for themselves, an empty path is `base`. No tilde is expanded.
    static FilePath resolve(std::string_view path, const FilePath& base);

    const std::string& text() const { return text_; }
    bool isRoot() const { return text_.size() == 1; }
    // The part behind the last slash; "/" for the root.
    std::string_view name() const;
    // The folder that holds it; the root for the root.
    FilePath parent() const;
    // This path plus one component, which is taken as it stands.
    FilePath child(std::string_view name) const;
    // True for what lies strictly below `folder`.
    bool isInside(const FilePath& folder) const;

    bool operator==(const FilePath&) const = default;
    auto operator<=>(const FilePath&) const = default;

  private:
    std::string text_;
};

// The last component of a path as written, by its text alone: "b" of "a/b/", ".." of "dir/..", "/" of "/", "" of "".
std::string_view lastPathComponent(std::string_view path);

// What stands behind the last point of the last component, without the point: "gz" of "a.tar.gz"; "" where there is no
// point, where the point is the first or the last character (".bashrc", "a.").
std::string_view pathExtension(std::string_view path);

// The last component without its extension and the point: "a.tar" of "x/a.tar.gz", ".bashrc" of ".bashrc".
std::string_view pathBaseName(std::string_view path);

// `path` seen from `folder`: "sub/a.txt", "../a.txt". The folder itself is ".".
std::string relativePath(const FilePath& path, const FilePath& folder);

// A leading "~" or "~/" replaced by `home`, "~name" by that user's home where the user database knows it; else
// unchanged.
std::string expandedTilde(std::string_view path, const FilePath& home);

}  // namespace brindlet
