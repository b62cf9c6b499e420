#include "plain_text.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <vector>

#include <fmt/format.h>

#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet::tools {

namespace {

constexpr std::string_view fallbackEncoding = "windows-1252";
constexpr std::string_view noBreakSpace = "\xC2\xA0";
constexpr int spacesOfTab = 4;

// Elements that begin and end a line.
constexpr std::string_view blocks[] = {
    "blockquote", "br", "caption", "dd", "div", "dl",  "dt",      "figcaption", "figure", "h1",    "h2", "h3", "h4",
    "h5",         "h6", "hr",      "ol", "p",   "pre", "section", "tbody",      "table",  "thead", "tr", "ul"};

struct Entity {
    std::string_view name, text;
};
constexpr Entity entities[] = {{"amp", "&"},   {"lt", "<"},   {"gt", ">"},
                               {"quot", "\""}, {"apos", "'"}, {"nbsp", noBreakSpace}};

std::optional<std::string> inUtf8(std::string_view bytes, const std::string& encoding) {
    icu::UnicodeString text(bytes.data(), static_cast<std::int32_t>(bytes.size()), encoding.c_str());
    if (text.isBogus() || (text.isEmpty() && !bytes.empty())) return std::nullopt;
    std::string decoded;
    text.toUTF8String(decoded);
    return decoded;
}

// A tag taken apart: "/ol", or "ol" and ` start="3"`.
struct Tag {
    std::string_view name;
    std::string_view attributes;
    bool isEnd = false;
};

Tag tagIn(std::string_view inside) {
    Tag tag;
    tag.isEnd = inside.starts_with('/');
    if (tag.isEnd) inside.remove_prefix(1);
    tag.name = inside.substr(0, inside.find_first_of(" \t\r\n/"));
    tag.attributes = inside.substr(tag.name.size());
    return tag;
}

int startOf(std::string_view attributes) {
    constexpr std::string_view label = "start=\"";
    int start = 1;
    if (const std::size_t at = attributes.find(label); at != std::string_view::npos)
        std::from_chars(attributes.data() + at + label.size(), attributes.data() + attributes.size(), start);
    return start;
}

class TextWriter {
  public:
    std::string write(std::string_view html) {
        for (std::size_t at = 0; at < html.size();) {
            if (html[at] == '<') {
                const std::size_t end = std::min(html.find('>', at), html.size());
                at = takeTag(tagIn(html.substr(at + 1, end - at - 1)), html, end + 1);
            } else if (html[at] == '&') {
                at = takeEntity(html, at);
            } else {
                const std::size_t end = std::min(html.find_first_of("<&", at), html.size());
                takeText(html.substr(at, end - at));
                at = end;
            }
        }
        endLine();
        return std::move(text_);
    }

  private:
    struct List {
        bool isNumbered = false;
        int next = 1;
    };

    // Gives where to go on.
    std::size_t takeTag(const Tag& tag, std::string_view html, std::size_t behind) {
        if (tag.name == "a" && contains(tag.attributes, "class=\"footnote-back\"")) {
            const std::size_t end = html.find("</a>", behind);
            return end == std::string_view::npos ? html.size() : end;
        }
        if (tag.name == "ol" || tag.name == "ul") takeList(tag);
        if (tag.name == "li" && !tag.isEnd) beginItem();
        if (tag.name == "pre") isVerbatim_ = !tag.isEnd;
        if ((tag.name == "td" || tag.name == "th") && !tag.isEnd && hasText_) append("\t");
        if (std::ranges::find(blocks, tag.name) != std::end(blocks) || (tag.name == "li" && tag.isEnd)) endLine();
        return std::min(behind, html.size());
    }

    void takeList(const Tag& tag) {
        if (!tag.isEnd) {
            lists_.push_back({tag.name == "ol", startOf(tag.attributes)});
        } else if (!lists_.empty()) {
            lists_.pop_back();
        }
    }

    void beginItem() {
        endLine();
        if (lists_.empty()) return;
        mark_ = std::string(lists_.size() - 1, '\t');
        if (lists_.back().isNumbered) mark_ += fmt::format("{}. ", lists_.back().next++);
    }

    std::size_t takeEntity(std::string_view html, std::size_t at) {
        constexpr std::size_t longest = 12;
        const std::size_t end = html.substr(at, longest).find(';');
        const std::string_view name = end == std::string_view::npos ? "" : html.substr(at + 1, end - 1);
        const auto* const known = std::ranges::find(entities, name, &Entity::name);
        if (known != std::end(entities)) {
            append(known->text);
        } else if (name.starts_with('#')) {
            const bool isHex = name.size() > 1 && (name[1] == 'x' || name[1] == 'X');
            std::uint32_t scalar = 0xFFFD;
            std::from_chars(name.data() + (isHex ? 2 : 1), name.data() + name.size(), scalar, isHex ? 16 : 10);
            std::string text;
            appendScalar(text, scalar);
            append(text);
        } else {
            append("&");
            return at + 1;
        }
        return at + end + 1;
    }

    void takeText(std::string_view text) {
        if (isVerbatim_) return append(text);
        while (!text.empty()) {
            const std::size_t blanks = std::min(text.find_first_not_of(" \t\r\n"), text.size());
            if (blanks > 0 && hasText_ && !text_.ends_with(' ') && !text_.ends_with('\n')) text_ += ' ';
            text.remove_prefix(blanks);
            const std::string_view word = text.substr(0, text.find_first_of(" \t\r\n"));
            if (!word.empty()) append(word);
            text.remove_prefix(word.size());
        }
    }

    void append(std::string_view text) {
        if (text.empty()) return;
        text_ += mark_;
        mark_.clear();
        text_ += text;
        hasText_ = true;
    }

    void endLine() {
        if (!hasText_) return;
        while (text_.ends_with(' ')) text_.pop_back();
        if (!text_.ends_with('\n')) text_ += '\n';
        hasText_ = false;
    }

    std::string text_;
    std::string mark_;  // of an item that has no text yet
    std::vector<List> lists_;
    bool hasText_ = false;  // on this line
    bool isVerbatim_ = false;
};

std::string escapedForHtml(std::string_view text) {
    return replacedAll(replacedAll(replacedAll(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

}  // namespace

std::optional<std::string> decodedText(std::string_view bytes, const std::optional<std::string>& encoding) {
    constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
    if (encoding) return inUtf8(bytes, *encoding);
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return inUtf8(bytes, "UTF-16");
    if (bytes.starts_with(utf8Mark)) bytes.remove_prefix(utf8Mark.size());
    return isValidUtf8(bytes) ? std::string(bytes) : inUtf8(bytes, std::string(fallbackEncoding));
}

std::string htmlAsText(std::string_view html) {
    return TextWriter().write(html);
}

std::string textAsHtml(std::string_view text) {
    std::string html;
    for (std::string_view line : split(replacedAll(text, "\r\n", "\n"), "\n")) {
        if (trimmed(line).empty()) continue;
        html += "<p>";
        for (; line.starts_with(' ') || line.starts_with('\t'); line.remove_prefix(1))
            for (int space = line.front() == '\t' ? spacesOfTab : 1; space > 0; --space) html += noBreakSpace;
        html += escapedForHtml(line) + "</p>\n";
    }
    return html;
}

std::string htmlPage(std::string_view title, std::string_view body) {
    return fmt::format(
        "<!DOCTYPE html>\n<html>\n<head>\n<meta "
        "charset=\"utf-8\">\n<title>{}</title>\n</head>\n<body>\n{}</body>\n</html>\n",
        escapedForHtml(title), body);
}

}  // namespace brindlet::tools
