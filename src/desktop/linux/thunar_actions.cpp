#include "desktop/linux/thunar_actions.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view emptyList = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<actions>\n</actions>\n";

struct Span {
    std::size_t begin = 0;
    std::size_t end = 0;
};

// What the list is made of, as far as that matters here: where its end tag begins, and the elements right inside it.
struct ActionList {
    std::size_t endTag = 0;
    std::vector<Span> actions;
};

// A piece that is no markup to look into: it begins with the one text and ends with the other.
struct Opaque {
    std::string_view begin;
    std::string_view end;
};
constexpr Opaque opaquePieces[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

// Behind the piece that begins at `at`, which is a '<'; none where it has no end.
std::optional<std::size_t> behindMarkup(std::string_view text, std::size_t at) {
    for (const auto& [begin, end] : opaquePieces) {
        if (!text.substr(at).starts_with(begin)) continue;
        const std::size_t found = text.find(end, at + begin.size());
        return found == std::string_view::npos ? std::nullopt : std::optional(found + end.size());
    }
    // A document type has declarations in brackets; attributes and entities may have any of these in quotes.
    char quote = 0;
    int depth = 0;
    while (++at < text.size()) {
        const char byte = text[at];
        if (quote != 0) {
            if (byte == quote) quote = 0;
        } else if (byte == '"' || byte == '\'') {
            quote = byte;
        } else if (byte == '[') {
            ++depth;
        } else if (byte == ']') {
            --depth;
        } else if (byte == '>' && depth <= 0) {
            return at + 1;
        }
    }
    return std::nullopt;
}

// "action" of "<action>", "</action>" and "<action name='a'/>"; empty for what is no tag.
std::string_view tagName(std::string_view tag) {
    tag.remove_prefix(tag.starts_with("</") ? 2 : 1);
    return tag.substr(0, std::min(tag.find_first_of(" \t\r\n/>!?"), tag.size()));
}

std::optional<ActionList> parsed(std::string_view text) {
    ActionList list;
    std::vector<Span> open;
    std::vector<std::string_view> names;
    for (std::size_t at = 0; (at = text.find('<', at)) != std::string_view::npos;) {
        const auto end = behindMarkup(text, at);
        if (!end) return std::nullopt;
        const std::string_view tag = text.substr(at, *end - at);
        const std::string_view name = tagName(tag);
        if (name.empty()) {
        } else if (tag.starts_with("</")) {
            if (names.empty() || names.back() != name) return std::nullopt;
            if (names.size() == 1) {
                list.endTag = at;
                return name == "actions" ? std::optional(list) : std::nullopt;
            }
            if (names.size() == 2) list.actions.push_back({open.back().begin, *end});
            names.pop_back();
            open.pop_back();
        } else if (!tag.ends_with("/>")) {
            names.push_back(name);
            open.push_back({at, *end});
        }
        at = *end;
    }
    return std::nullopt;
}

// Ids need no escapes.
bool hasId(std::string_view action, std::string_view id) {
    constexpr std::string_view begin = "<unique-id>";
    const std::size_t at = action.find(begin);
    if (at == std::string_view::npos) return false;
    const std::string_view rest = action.substr(at + begin.size());
    return trimmed(rest.substr(0, rest.find('<'))) == id;
}

std::optional<Span> actionOf(std::string_view text, const ActionList& list, std::string_view id) {
    for (const Span& action : list.actions)
        if (hasId(text.substr(action.begin, action.end - action.begin), id)) return action;
    return std::nullopt;
}

std::string keyPath(std::string_view id) {
    return fmt::format("\"<Actions>/ThunarActions/uca-action-{}\"", id);
}
std::string keyLine(std::string_view id, std::string_view key) {
    return fmt::format("(gtk_accel_path {} \"{}\")\n", keyPath(id), key);
}

}  // namespace

bool hasThunarAction(std::string_view list, std::string_view id) {
    const auto known = parsed(list);
    return known && actionOf(list, *known, id);
}

std::optional<std::string> withThunarAction(std::string_view list, const ThunarAction& action) {
    if (trimmed(list).empty()) list = emptyList;
    const auto known = parsed(list);
    if (!known) return std::nullopt;
    std::string text(list);
    if (!actionOf(list, *known, action.id)) text.insert(known->endTag, action.xml + "\n");
    return text;
}

std::optional<std::string> withoutThunarAction(std::string_view list, std::string_view id) {
    const auto known = parsed(list);
    if (!known) return std::nullopt;
    std::string text(list);
    if (const auto action = actionOf(list, *known, id)) {
        const bool hasLineEnd = text.substr(action->end, 1) == "\n";
        text.erase(action->begin, action->end - action->begin + (hasLineEnd ? 1 : 0));
    }
    return text;
}

std::string withThunarKey(std::string_view keys, std::string_view id, std::string_view key) {
    const std::string quotedKey = fmt::format("\"{}\"", key);
    for (const std::string& line : split(keys, "\n")) {
        if (trimmed(line).starts_with(';')) continue;
        if (contains(line, keyPath(id)) || contains(line, quotedKey)) return std::string(keys);
    }
    return keyLine(id, key).append(keys);
}

std::string withoutThunarKey(std::string_view keys, std::string_view id, std::string_view key) {
    return replacedAll(keys, keyLine(id, key), "");
}

}  // namespace brindlet
