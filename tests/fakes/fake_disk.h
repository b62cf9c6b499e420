// A file tree in memory that keeps a log of what was asked. It lies under "/w", whose folders "/" and "/w" are there.
//
//     FakeDisk disk{"a", "folder/", "folder/x=content", "link->folder", "/usr/bin/tool=#!/bin/sh"};
//     disk.look(FilePath("/w/a"));  // ItemKind::file
//     disk.log                      // {"look /w/a"}
#pragma once

#include <algorithm>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace brindlet {

struct FakeDisk final : FileSystem {
    std::vector<std::string> log;  // "look PATH", "list PATH", "read PATH", "resolve PATH", "execute PATH"

    // Each entry is a file ("a", "a=content"), a folder ("a/") or a link ("a->target"), against `root` unless it begins
    // with "/". Parent folders come by themselves. What has one of these signs in its name is added by the methods.
    FakeDisk(std::initializer_list<std::string_view> entries = {}, std::string_view root = "/w") : root_(root) {
        addFolder(root_.text());
        for (const std::string_view entry : entries) add(entry);
    }

    void add(std::string_view entry) {
        const std::size_t sign = entry.find('=');
        const std::size_t arrow = entry.find("->");
        if (arrow < sign) return addLink(entry.substr(0, arrow), entry.substr(arrow + 2));
        if (sign != std::string_view::npos) return addFile(entry.substr(0, sign), entry.substr(sign + 1));
        if (entry.ends_with('/')) return addFolder(entry);
        addFile(entry, "");
    }
    void addFile(std::string_view path, std::string_view content) { put(path).content = content; }
    void addExecutable(std::string_view path) { put(path).isExecutable = true; }
    void addLink(std::string_view path, std::string_view target) { put(path).target = target; }
    void addFolder(std::string_view path) { ensureFolder(FilePath::resolve(path, root_)); }

    // How often the log has this line.
    std::size_t timesAsked(std::string_view line) const {
        return static_cast<std::size_t>(std::count(log.begin(), log.end(), line));
    }

    ItemKind look(const FilePath& path) override {
        log.push_back("look " + path.text());
        const Item* item = find(path);
        if (!item) return ItemKind::missing;
        return item->isFolder ? ItemKind::folder : ItemKind::file;
    }

    // In the order in which the items were added.
    std::optional<std::vector<std::string>> listNames(const FilePath& folder) override {
        log.push_back("list " + folder.text());
        const Item* item = find(folder);
        if (!item || !item->isFolder) return std::nullopt;
        return item->names;
    }

    Result<std::string> readFile(const FilePath& path, std::size_t maxBytes) override {
        log.push_back("read " + path.text());
        const Item* item = find(path);
        const std::string what = "Can't read '" + path.text() + "': ";
        if (!item) return Failure{what + "No such file or directory"};
        if (item->isFolder) return Failure{what + "Is a directory"};
        if (item->content.size() > maxBytes) return Failure{what + "File too large"};
        return item->content;
    }

    FilePath resolvingLinks(const FilePath& path) override {
        log.push_back("resolve " + path.text());
        return resolved(path, 0).value_or(path);
    }

    bool isExecutableFile(const FilePath& path) override {
        log.push_back("execute " + path.text());
        const Item* item = find(path);
        return item && !item->isFolder && item->isExecutable;
    }

  private:
    struct Item {
        bool isFolder = false;
        bool isExecutable = false;
        std::string content;
        std::string target;              // of a link
        std::vector<std::string> names;  // in a folder
    };

    Item& put(std::string_view path) {
        const FilePath place = FilePath::resolve(path, root_);
        ensureFolder(place.parent());
        return insert(place);
    }

    Item& insert(const FilePath& place) {
        const auto [found, isNew] = items_.try_emplace(place);
        if (isNew && !place.isRoot()) items_.at(place.parent()).names.emplace_back(place.name());
        return found->second;
    }

    void ensureFolder(const FilePath& folder) {
        if (!folder.isRoot()) ensureFolder(folder.parent());
        insert(folder).isFolder = true;
    }

    // None in a loop of links.
    std::optional<FilePath> resolved(const FilePath& path, int depth) const {
        if (depth > 40) return std::nullopt;
        if (path.isRoot()) return path;
        const std::optional<FilePath> folder = resolved(path.parent(), depth);
        if (!folder) return std::nullopt;
        const FilePath place = folder->child(path.name());
        const auto found = items_.find(place);
        if (found == items_.end() || found->second.target.empty()) return place;
        const std::optional<FilePath> end = resolved(FilePath::resolve(found->second.target, *folder), depth + 1);
        if (!end) return std::nullopt;
        return items_.contains(*end) ? *end : place;
    }

    const Item* find(const FilePath& path) const {
        const std::optional<FilePath> place = resolved(path, 0);
        const auto found = place ? items_.find(*place) : items_.end();
        return found == items_.end() || !found->second.target.empty() ? nullptr : &found->second;
    }

    FilePath root_;
    std::map<FilePath, Item> items_;
};

}  // namespace brindlet
