// What a file is, by its name.
//
//     typeOf("jpg").category == "Images"
#pragma once

#include <string_view>

namespace fiotraf {

struct FileType {
    std::string_view extension;  // in lower case, without the point
    std::string_view mime;
    std::string_view category;  // the folder for files of this type
};

// By extension, in lower case; one of the category "Other" and no known MIME type for what is in no list.
const FileType& typeOf(std::string_view extension);

}  // namespace fiotraf
