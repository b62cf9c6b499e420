// The file managers that the bar hangs under, and this program itself, by the identifiers of applications.
//
//     fileManagerOfClass("Thunar")->identifier == "org.xfce.Thunar"
//     isFinderOrBrindlet("com.fenwold.brindlet") == true
#pragma once

#include <string_view>

namespace brindlet {

inline constexpr std::string_view brindletIdentifier = "com.fenwold.brindlet";

struct FileManager {
    std::string_view windowClass;  // the second text of WM_CLASS, as seen with the versions of Debian 12
    std::string_view identifier;   // its application's, which is its name on the session bus where it has one
    std::string_view name;
    bool isOfQt = false;  // it is on the accessibility bus only while assistive programs are in use
};

// Nullptr for every other class.
const FileManager* fileManagerOfClass(std::string_view windowClass);
const FileManager* fileManagerOfIdentifier(std::string_view identifier);

bool isFinderOrBrindlet(std::string_view identifier);
// The same where several identifiers are joined by commas.
bool namesFinderOrBrindlet(std::string_view identifiers);

}  // namespace brindlet
