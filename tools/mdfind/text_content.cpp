#include "text_content.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <vector>

#include "text/characters.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet::tools {

namespace fs = std::filesystem;

struct Extractor {
    std::string_view endings;  // separated by blanks
    std::string_view program, package;
    std::string_view members;  // of a zipped document; "" for pdftotext
};

namespace {

constexpr std::uintmax_t mostTextBytes = std::uintmax_t{32} << 20;
constexpr std::size_t probeBytes = 8192;
constexpr std::string_view engineSeconds = "10";

constexpr Extractor extractors[] = {
    {".pdf", "pdftotext", "poppler-utils", ""},
    {".docx .docm", "unzip", "unzip", "word/document.xml word/footnotes.xml"},
    {".xlsx .xlsm", "unzip", "unzip", "xl/sharedStrings.xml"},
    {".pptx .pptm", "unzip", "unzip", "ppt/slides/slide*.xml"},
    {".odt .ods .odp", "unzip", "unzip", "content.xml"},
    {".epub", "unzip", "unzip", "*.xhtml *.html *.htm"},
};
constexpr std::string_view markupEndings[] = {".html", ".htm", ".xhtml"};

// Elements that stand inside a word; all others end one.
constexpr std::string_view inlineElements[] = {"a",   "b",   "em",     "i",      "span",      "strong",    "u",
                                               "w:r", "w:t", "w:rPr",  "a:r",    "a:t",       "t",         "r",
                                               "w:b", "w:i", "text:a", "w:lang", "text:span", "w:proofErr"};

struct Entity {
    std::string_view name;
    char meaning;
};
constexpr Entity entities[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}, {"nbsp", ' '}};

bool isAmong(std::string_view words, const std::string& word) {
    const std::vector<std::string> all = splitNonEmpty(words, " ");
    return !word.empty() && std::find(all.begin(), all.end(), word) != all.end();
}

std::string singleSpaced(std::string_view text) {
    std::string spaced;
    spaced.reserve(text.size());
    for (const char byte : text) {
        const bool isSpace = byte == ' ' || (byte >= '\t' && byte <= '\r');
        if (!isSpace) {
            spaced += byte;
        } else if (!spaced.empty() && spaced.back() != ' ') {
            spaced += ' ';
        }
    }
    return spaced;
}

bool isInline(std::string_view tag) {
    if (tag.starts_with('/')) tag.remove_prefix(1);
    const std::string_view name = tag.substr(0, tag.find_first_of(" \t\n/"));
    return std::find(std::begin(inlineElements), std::end(inlineElements), name) != std::end(inlineElements);
}

// Goes past an entity where one begins, and appends what it means; else past the ampersand.
void takeEntity(std::string_view markup, std::size_t& at, std::string& text) {
    const std::size_t end = markup.substr(0, at + 12).find(';', at);
    const std::string_view name = end == std::string_view::npos ? "" : markup.substr(at + 1, end - at - 1);
    const auto* entity =
        std::find_if(std::begin(entities), std::end(entities), [&](const Entity& each) { return each.name == name; });
    if (entity != std::end(entities)) {
        text += entity->meaning;
    } else if (const auto number = name.starts_with('#') ? parsedInteger(name.substr(1)) : std::nullopt;
               number && *number > 0 && *number <= 0x10FFFF) {
        appendScalar(text, static_cast<char32_t>(*number));
    } else {
        text += markup[at++];
        return;
    }
    at = end + 1;
}

std::string withoutMarkup(std::string_view markup) {
    std::string text;
    for (std::size_t at = 0; at < markup.size();) {
        if (markup[at] == '<') {
            const std::size_t end = std::min(markup.find('>', at), markup.size());
            if (!isInline(markup.substr(at + 1, end - at - 1))) text += ' ';
            at = end + 1;
        } else if (markup[at] == '&') {
            takeEntity(markup, at, text);
        } else {
            text += markup[at++];
        }
    }
    return text;
}

std::string plainTextOf(const fs::path& file) {
    std::error_code error;
    if (fs::file_size(file, error) > mostTextBytes || error) return "";
    std::ifstream stream(file, std::ios::binary);
    std::string text(probeBytes, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    if (text.find('\0') != std::string::npos) return "";
    text.append(std::istreambuf_iterator<char>(stream), {});
    return text;
}

// unzip reads patterns in the name of the archive too.
std::string unzipName(const fs::path& file) {
    std::string name;
    for (const char byte : file.filename().string())
        name += byte == '[' || byte == '*' || byte == '?' ? std::string("[") + byte + "]"
                : byte == '\\'                            ? std::string("\\\\")
                                                          : std::string(1, byte);
    return (file.parent_path() / name).string();
}

}  // namespace

std::string TextReader::extractedBy(const Extractor& extractor, const fs::path& file) {
    std::string program;
    try {
        program = neededProgram(extractor.program, extractor.package);
    } catch (const ToolFailure& failure) {
        if (!missing_) missing_ = failure;
        return "";
    }
    std::vector<std::string> words{neededProgram("timeout", "coreutils"), std::string(engineSeconds), program};
    if (extractor.members.empty()) {
        words.insert(words.end(), {"-q", "-enc", "UTF-8", file.string(), "-"});
        return capture(words).output;
    }
    words.insert(words.end(), {"-p", "-qq", unzipName(file)});
    for (std::string& member : splitNonEmpty(extractor.members, " ")) words.push_back(std::move(member));
    return withoutMarkup(capture(words).output);
}

std::string TextReader::textOf(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(file, error))) return "";  // what a link names has its own turn
    const std::string ending = lowercased(file.extension().string());
    try {
        for (const Extractor& each : extractors)
            if (isAmong(each.endings, ending)) return singleSpaced(extractedBy(each, file));
    } catch (const ToolFailure&) {
        return "";  // more text than anybody reads
    }
    const bool isMarkup =
        std::find(std::begin(markupEndings), std::end(markupEndings), ending) != std::end(markupEndings);
    const std::string text = plainTextOf(file);
    return singleSpaced(isMarkup ? withoutMarkup(text) : text);
}

}  // namespace brindlet::tools
