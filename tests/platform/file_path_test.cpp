#include "platform/file_path.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace brindlet {
namespace file_path_tests {

TEST(FilePath, StandardForm) {
    struct Case {
        std::string_view path, base, text;
    };
    const Case cases[] = {
        {"/", "/w", "/"},
        {"", "/w/a", "/w/a"},
        {".", "/w/a", "/w/a"},
        {"..", "/", "/"},
        {"../../../b", "/w/a", "/b"},
        {"../b.txt", "/w/a", "/w/b.txt"},
        {"b//c///", "/", "/b/c"},
        {"/a/./b/../c/", "/w", "/a/c"},
        {"/a/..", "/w", "/"},
        {"//a", "/w", "/a"},
        {"/..", "/w", "/"},
        {"/.../..a/.b", "/w", "/.../..a/.b"},  // names that only begin like "." and ".."
        {"~/a", "/w", "/w/~/a"},
        {"a b\n\xff", "/w", "/w/a b\n\xff"},
    };
    for (const auto& [path, base, text] : cases) {
        SCOPED_TRACE(path);
        const FilePath resolved = FilePath::resolve(path, FilePath(base));
        EXPECT_EQ(resolved.text(), text);
        EXPECT_EQ(FilePath(resolved.text()), resolved);
        EXPECT_EQ(resolved.isRoot() ? resolved : resolved.parent().child(resolved.name()), resolved);
    }
    EXPECT_EQ(FilePath("a/../b").text(), "/b");
    EXPECT_EQ(FilePath("").text(), "/");
    EXPECT_EQ(FilePath("/").parent().text(), "/");
    EXPECT_EQ(FilePath("/").name(), "/");
    EXPECT_EQ(FilePath("/a").parent().text(), "/");
}

TEST(FilePath, LongHostilePathsTakeLinearTime) {
    std::string path;
    for (int count = 0; count < 300'000; ++count) path += "a/b/../../";
    EXPECT_EQ(FilePath::resolve(path, FilePath("/w")).text(), "/w");
}

TEST(FilePath, LiesInside) {
    EXPECT_TRUE(FilePath("/w/a").isInside(FilePath("/w")));
    EXPECT_TRUE(FilePath("/w").isInside(FilePath()));
    EXPECT_FALSE(FilePath("/w").isInside(FilePath("/w")));
    EXPECT_FALSE(FilePath("/wa").isInside(FilePath("/w")));
    EXPECT_FALSE(FilePath().isInside(FilePath()));
}

TEST(FilePath, NamesAsWritten) {
    struct Case {
        std::string_view path, last, base, extension;
    };
    const Case cases[] = {
        {"x/a.tar.gz", "a.tar.gz", "a.tar", "gz"},
        {"a/b/", "b", "b", ""},
        {"dir/..", "..", "..", ""},
        {"x.d/a", "a", "a", ""},
        {"x/a.txt//", "a.txt", "a", "txt"},
        {".bashrc", ".bashrc", ".bashrc", ""},
        {".a.b", ".a.b", ".a", "b"},
        {"a.", "a.", "a.", ""},
        {"/", "/", "/", ""},
        {"//", "/", "/", ""},
        {"", "", "", ""},
    };
    for (const auto& [path, last, base, extension] : cases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(lastPathComponent(path), last);
        EXPECT_EQ(pathBaseName(path), base);
        EXPECT_EQ(pathExtension(path), extension);
    }
}

TEST(FilePath, SeenFromAFolder) {
    struct Case {
        std::string_view path, folder, relative;
    };
    const Case cases[] = {
        {"/w/a.txt", "/w", "a.txt"},
        {"/w/sub/a.txt", "/w", "sub/a.txt"},
        {"/a.txt", "/w", "../a.txt"},
        {"/w/ab", "/w/a", "../ab"},  // a common beginning that is no common component
        {"/w/a", "/w/ab", "../a"},
        {"/w", "/w/a/b", "../.."},
        {"/w", "/w", "."},
        {"/", "/w/a", "../.."},
        {"/w/a", "/", "w/a"},
        {"/", "/", "."},
    };
    for (const auto& [path, folder, relative] : cases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(relativePath(FilePath(path), FilePath(folder)), relative);
        EXPECT_EQ(FilePath::resolve(relative, FilePath(folder)), FilePath(path));
    }
}

TEST(FilePath, Tilde) {
    const FilePath home("/home/me");
    EXPECT_EQ(expandedTilde("~", home), "/home/me");
    EXPECT_EQ(expandedTilde("~/a", home), "/home/me/a");
    EXPECT_EQ(expandedTilde("~/a", FilePath()), "/a");
    EXPECT_EQ(expandedTilde("~root/a", home), "/root/a");
    EXPECT_EQ(expandedTilde("~no-such-user/a", home), "~no-such-user/a");
    EXPECT_EQ(expandedTilde("a~", home), "a~");
    EXPECT_EQ(expandedTilde("", home), "");
}

}  // namespace file_path_tests
}  // namespace brindlet
