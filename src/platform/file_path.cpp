#include "platform/file_path.h"

#include <algorithm>
#include <optional>

#include "platform/environment.h"

namespace brindlet {

namespace {

// True for the form that a FilePath keeps: "/" alone, or components that are neither empty nor "." nor "..", each
// behind one slash. Nearly every path that comes in has it already.
bool isStandard(std::string_view path) {
    if (path.size() == 1) return path[0] == '/';
    if (path.empty() || path[0] != '/') return false;
    std::size_t start = 1;
    while (true) {
        std::size_t end = path.find('/', start);
        if (end == std::string_view::npos) end = path.size();
        const std::size_t length = end - start;
        if (length == 0) return false;
        if (path[start] == '.' && (length == 1 || (length == 2 && path[start + 1] == '.'))) return false;
        if (end == path.size()) return true;
        start = end + 1;
    }
}

// Appends the components of `path` to `standard`, which has the standard form but is empty for the root.
void appendComponents(std::string& standard, std::string_view path) {
    std::size_t start = 0;
    while (start < path.size()) {
        std::size_t end = path.find('/', start);
        if (end == std::string_view::npos) end = path.size();
        const std::string_view component = path.substr(start, end - start);
        if (component == "..") {
            if (!standard.empty()) standard.resize(standard.rfind('/'));
        } else if (!component.empty() && component != ".") {
            standard += '/';
            standard += component;
        }
        start = end + 1;
    }
}

// "a/b" of "a/b//": the slashes behind the last component belong to none.
std::string_view withoutTrailingSlashes(std::string_view path) {
    const std::size_t last = path.find_last_not_of('/');
    return last == std::string_view::npos ? std::string_view() : path.substr(0, last + 1);
}

std::size_t extensionPoint(std::string_view name) {
    const std::size_t point = name.rfind('.');
    const bool parts = point != std::string_view::npos && point != 0 && point + 1 != name.size();
    return parts ? point : std::string_view::npos;
}

// The length of the longest beginning that both paths have in common and that ends where a component ends in both.
std::size_t commonLength(std::string_view first, std::string_view second) {
    std::size_t common = 0;
    std::size_t at = 0;
    while (true) {
        const bool firstEnds = at == first.size() || first[at] == '/';
        const bool secondEnds = at == second.size() || second[at] == '/';
        if (firstEnds && secondEnds) common = at;
        if (at == first.size() || at == second.size() || first[at] != second[at]) return common;
        ++at;
    }
}

}  // namespace

FilePath::FilePath(std::string_view absolute) {
    if (isStandard(absolute)) {
        text_ = absolute;
        return;
    }
    text_.reserve(absolute.size() + 1);
    appendComponents(text_, absolute);
    if (text_.empty()) text_ = "/";
}

FilePath FilePath::resolve(std::string_view path, const FilePath& base) {
    if (path.empty()) return base;
    if (path[0] == '/') return FilePath(path);
    FilePath resolved;
    resolved.text_.reserve(base.text_.size() + path.size() + 1);
    if (base.isRoot()) {
        resolved.text_.clear();
    } else {
        resolved.text_ = base.text_;
    }
    appendComponents(resolved.text_, path);
    if (resolved.text_.empty()) resolved.text_ = "/";
    return resolved;
}

std::string_view FilePath::name() const {
    if (isRoot()) return text_;
    return std::string_view(text_).substr(text_.rfind('/') + 1);
}

FilePath FilePath::parent() const {
    const std::size_t slash = text_.rfind('/');
    FilePath folder;
    if (slash != 0) folder.text_.assign(text_, 0, slash);
    return folder;
}

FilePath FilePath::child(std::string_view name) const {
    FilePath path;
    path.text_.reserve(text_.size() + name.size() + 1);
    if (!isRoot()) {
        path.text_ = text_;
        path.text_ += '/';
    }
    path.text_ += name;
    return path;
}

bool FilePath::isInside(const FilePath& folder) const {
    if (folder.isRoot()) return !isRoot();
    return text_.size() > folder.text_.size() && text_[folder.text_.size()] == '/' && text_.starts_with(folder.text_);
}

std::string_view lastPathComponent(std::string_view path) {
    if (path.empty()) return path;
    const std::string_view trimmed = withoutTrailingSlashes(path);
    if (trimmed.empty()) return path.substr(0, 1);
    const std::size_t slash = trimmed.rfind('/');
    return slash == std::string_view::npos ? trimmed : trimmed.substr(slash + 1);
}

std::string_view pathExtension(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    const std::size_t point = extensionPoint(name);
    return point == std::string_view::npos ? std::string_view() : name.substr(point + 1);
}

std::string_view pathBaseName(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    return name.substr(0, extensionPoint(name));
}

std::string relativePath(const FilePath& path, const FilePath& folder) {
    const std::string_view target = path.isRoot() ? std::string_view() : std::string_view(path.text());
    const std::string_view from = folder.isRoot() ? std::string_view() : std::string_view(folder.text());
    const std::size_t common = commonLength(target, from);

    std::string relative;
    for (const char character : from.substr(common)) {
        if (character == '/') relative += relative.empty() ? ".." : "/..";
    }
    if (common < target.size()) {
        const std::string_view rest = target.substr(common + 1);
        if (!relative.empty()) relative += '/';
        relative += rest;
    }
    return relative.empty() ? "." : relative;
}

std::string expandedTilde(std::string_view path, const FilePath& home) {
    if (path.empty() || path[0] != '~') return std::string(path);
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string_view user = path.substr(1, end - 1);
    const std::optional<FilePath> folder = user.empty() ? std::optional(home) : homeFolderOf(user);
    if (!folder) return std::string(path);
    const std::string_view rest = path.substr(end);
    if (folder->isRoot() && !rest.empty()) return std::string(rest);
    return folder->text() + std::string(rest);
}

}  // namespace brindlet
