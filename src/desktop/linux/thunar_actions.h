// The two files in which Thunar keeps what users add to its menus, as texts: an action is put in and taken out again,
// and every other byte stays.
//
//     auto merged = withThunarAction(text, {.id = "brindlet-ask", .xml = "<action>...</action>"});
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brindlet {

struct ThunarAction {
    std::string_view id;  // the text of its <unique-id>
    std::string xml;      // the whole element
};

// uca.xml. None where the text isn't such a list, in which case it had better be left alone.
std::optional<std::string> withThunarAction(std::string_view list, const ThunarAction& action);
std::optional<std::string> withoutThunarAction(std::string_view list, std::string_view id);
bool hasThunarAction(std::string_view list, std::string_view id);

// accels.scm: the key of an action, as GTK 3 writes it. Nothing is changed where the action has a key already, be it
// the user's, or the key is taken.
std::string withThunarKey(std::string_view keys, std::string_view id, std::string_view key);
// The user's own choice of a key stays.
std::string withoutThunarKey(std::string_view keys, std::string_view id, std::string_view key);

}  // namespace brindlet
