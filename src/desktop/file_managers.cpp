#include "desktop/file_managers.h"

#include <algorithm>
#include <iterator>

#include "text/strings.h"

namespace brindlet {

namespace {

constexpr FileManager fileManagers[] = {
    {"Thunar", "org.xfce.Thunar", "Thunar"},
    {"org.gnome.Nautilus", "org.gnome.Nautilus", "Nautilus"},
    {"Nemo", "org.Nemo", "Nemo"},
    {"Caja", "org.mate.Caja", "Caja"},
    {"Pcmanfm", "pcmanfm", "PCManFM"},
    {"dolphin", "org.kde.dolphin", "Dolphin", true},
    {"pcmanfm-qt", "pcmanfm-qt", "PCManFM-Qt", true},
};

const FileManager* fileManagerWhere(std::string_view FileManager::*field, std::string_view value) {
    const auto found = std::find_if(std::begin(fileManagers), std::end(fileManagers),
                                    [&](const FileManager& row) { return row.*field == value; });
    return found == std::end(fileManagers) ? nullptr : found;
}

}  // namespace

const FileManager* fileManagerOfClass(std::string_view windowClass) {
    return fileManagerWhere(&FileManager::windowClass, windowClass);
}

const FileManager* fileManagerOfIdentifier(std::string_view identifier) {
    return fileManagerWhere(&FileManager::identifier, identifier);
}

bool isFinderOrBrindlet(std::string_view identifier) {
    return identifier == brindletIdentifier || fileManagerOfIdentifier(identifier) != nullptr;
}

bool namesFinderOrBrindlet(std::string_view identifiers) {
    return contains(identifiers, brindletIdentifier) ||
           std::any_of(std::begin(fileManagers), std::end(fileManagers),
                       [&](const FileManager& row) { return contains(identifiers, row.identifier); });
}

}  // namespace brindlet
