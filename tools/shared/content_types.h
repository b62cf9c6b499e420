// The types of files as their search attributes name them ("public.jpeg"), by the endings of their names.
//
//     contentTypeOf("a/photo.JPG").identifier == "public.jpeg"
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brindlet::tools {

struct ContentType {
    std::string_view identifier;
    std::string_view kind;       // as people call it: "JPEG image"
    std::string_view ancestors;  // what it also is, the nearest first, separated by blanks

    bool operator==(const ContentType&) const = default;
};

// Of a file by its name; "public.data" where the ending says nothing.
const ContentType& contentTypeOf(std::string_view name);
const ContentType& folderContentType();

// The identifier and its ancestors.
std::vector<std::string> contentTypeTree(const ContentType& type);

}  // namespace brindlet::tools
