#include "documents.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fmt/format.h>

#include "plain_text.h"
#include "shared/tool.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

constexpr std::uintmax_t mostDocumentBytes = std::uintmax_t{256} << 20;

constexpr DocumentFormat formats[] = {
    {"txt", DocumentKind::text, "plain text", ""},
    {"html", DocumentKind::html, "HTML", ""},
    {"rtf", DocumentKind::rtf, "rich text (RTF)", "rtf:Rich Text Format"},
    {"doc", DocumentKind::doc, "Word format", "doc:MS Word 97"},
    {"docx", DocumentKind::docx, "Office Open XML format", "docx:MS Word 2007 XML"},
    {"odt", DocumentKind::odt, "OpenDocument text format", "odt:writer8"},
};

struct Hint {
    std::string_view name, sentence;
};
constexpr Hint hints[] = {
    {"htm", "say html"},
    {"pdf", "PDF files are not read or written here; pdftotext reads them (Debian package poppler-utils)"},
    {"rtfd", "folders of rich text (rtfd) are not read or written here; rtf is"},
    {"webarchive", "web archives are not read or written here; html is"},
    {"wordml", "WordML is not read or written here; docx is"},
};

// Pictures that came with the document are put into it whole; of what it only names, by an address or a path, the text
// stays. The arrows behind the notes of a page lead nowhere in a document.
constexpr std::string_view contentFilter = R"(
local letters = 'ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/'
local function letter(number) return letters:sub(number + 1, number + 1) end
local pairs_of_letters = {}
for number = 0, 4095 do pairs_of_letters[number] = letter(number >> 6) .. letter(number & 63) end
local function base64(bytes)
  local pieces = {}
  for at = 1, #bytes, 3 do
    local a, b, c = bytes:byte(at, at + 2)
    local bits = a << 16 | (b or 0) << 8 | (c or 0)
    pieces[#pieces + 1] = pairs_of_letters[bits >> 12]
    pieces[#pieces + 1] = pairs_of_letters[bits & 4095]
  end
  local missing = (3 - #bytes % 3) % 3
  return table.concat(pieces):sub(1, -1 - missing) .. string.rep('=', missing)
end
function Image(image)
  if image.src:match('^data:') then return nil end
  local kind, bytes = pandoc.mediabag.lookup(image.src)
  if not bytes then return image.caption end
  image.src = 'data:' .. kind .. ';base64,' .. base64(bytes)
  return image
end
function Link(link)
  if link.classes:includes('footnote-back') then return {} end
end
)";

// The title of a page stands in the window's frame, not in the text.
constexpr std::string_view noTitleFilter = R"(
function Meta(meta)
  meta.title = nil
  return meta
end
)";

// The first paragraphs of a Word document, where they have the style of a title or the like, are no text to pandoc.
constexpr std::string_view titleFilter = R"(
local function add(blocks, value)
  local kind = pandoc.utils.type(value)
  if kind == 'Inlines' then blocks:insert(pandoc.Para(value))
  elseif kind == 'Blocks' then blocks:extend(value)
  elseif kind == 'List' then for _, each in ipairs(value) do add(blocks, each) end
  end
end
function Pandoc(document)
  local blocks = pandoc.List()
  for _, name in ipairs({'title', 'subtitle', 'author', 'date', 'abstract'}) do
    add(blocks, document.meta[name])
  end
  blocks:extend(document.blocks)
  return pandoc.Pandoc(blocks)
end
)";

// Short text that one program can read once as a file. A pipe, since a prediction of what is printed runs this where
// no file can be written, not even one in memory.
class TextPipe {
  public:
    explicit TextPipe(std::string_view text) {
        int ends[2];
        if (::pipe(ends) != 0) throw ToolFailure{fmt::format("no pipe can be made: {}", std::strerror(errno))};
        reading_ = ends[0];
        ::fcntl(ends[1], F_SETFL, O_NONBLOCK);
        const bool isWhole = ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
        ::close(ends[1]);
        if (isWhole) return;
        ::close(reading_);
        throw ToolFailure{"a pipe took less than it should"};
    }
    ~TextPipe() { ::close(reading_); }
    TextPipe(const TextPipe&) = delete;
    TextPipe& operator=(const TextPipe&) = delete;
    std::string path() const { return fmt::format("/proc/self/fd/{}", reading_); }

  private:
    int reading_ = -1;
};

std::string firstLineOf(std::string_view text) {
    const std::string_view line = trimmed(text.substr(0, text.find('\n')));
    return line.empty() ? "no reason was given" : std::string(line);
}

// It reads what is fed to it and prints the result, so that it never sees a name.
std::string pandoc(const Words& words, std::string_view content) {
    Words line{neededProgram("pandoc", "pandoc")};
    line.insert(line.end(), words.begin(), words.end());
    Captured captured = capture(line, content);
    if (captured.status != 0)
        throw ToolFailure{fmt::format("the document can't be converted: {}", firstLineOf(captured.errors))};
    return std::move(captured.output);
}

// What a document names is fetched by whoever reads or writes it, so pandoc reads it in its sandbox, and what it is to
// write from names nothing any more. The sandbox keeps it from its own files too, so that it can only write what needs
// none.
std::string readByPandoc(const TextDocument& document, const std::string& result, std::string_view filter) {
    const TextPipe file(filter);
    return pandoc({"--sandbox", "-f", std::string(document.format->name), "-t", result, "--wrap=none",
                   "--lua-filter=" + file.path()},
                  document.content);
}

bool isPage(const TextDocument& document) {
    return document.format->kind == DocumentKind::html;
}

std::string asText(const TextDocument& document) {
    return htmlAsText(readByPandoc(document, "html", isPage(document) ? "" : titleFilter));
}

// What it is as the body of a page.
std::string asBody(const TextDocument& document) {
    if (document.format->kind == DocumentKind::text) return textAsHtml(document.content);
    const std::string filter(isPage(document) ? "" : titleFilter);
    return readByPandoc(document, "html", std::string(contentFilter) + filter);
}

std::string byPandoc(const TextDocument& document, const DocumentFormat& format) {
    const std::string filter(isPage(document) ? noTitleFilter : "");
    const std::string content = readByPandoc(document, "json", std::string(contentFilter) + filter);
    return pandoc({"-f", "json", "-t", std::string(format.name), "-s", "-o", "-"}, content);
}

std::string fileContent(const fs::path& file) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    if (error) throw ToolFailure{fmt::format("'{}': {}", file.string(), error.message())};
    if (size > mostDocumentBytes) throw ToolFailure{fmt::format("'{}' is too large", file.string())};
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw ToolFailure{fmt::format("'{}': {}", file.string(), std::strerror(errno))};
    return {std::istreambuf_iterator<char>(stream), {}};
}

// LibreOffice takes files only, and its settings from a folder that no other one may be using.
std::string byOffice(const TextDocument& document, const DocumentFormat& format) {
    const std::string office = neededProgram("soffice", "libreoffice-writer-nogui");
    const WorkFolder work(fs::temp_directory_path());
    const fs::path input = work.path() / fmt::format("document.{}", document.format->name);
    const fs::path outputs = work.path() / "made";
    std::ofstream(input, std::ios::binary) << document.content;
    const Captured captured =
        capture({office, fmt::format("-env:UserInstallation=file://{}/settings", work.path().string()), "--headless",
                 "--norestore", "--convert-to", std::string(format.office), "--outdir", outputs, input});
    const fs::path output = outputs / fmt::format("document.{}", format.name);
    if (!fs::exists(output))
        throw ToolFailure{fmt::format("the document can't be converted: {}", firstLineOf(captured.errors))};
    return fileContent(output);
}

bool needsOffice(const DocumentFormat& format) {
    // pandoc reads rtf too, but loses letters outside ASCII (2.17, Debian 12).
    return format.kind == DocumentKind::rtf || format.kind == DocumentKind::doc;
}

// Documents lie about under each other's endings; their first bytes tell. A zipped one begins with its type or, as
// those of Word do, with any of its parts.
const DocumentFormat& formatByContent(const DocumentFormat& named, std::string_view content) {
    constexpr std::string_view zip = "PK\x03\x04", odtMark = "mimetypeapplication/vnd.oasis.opendocument.text";
    constexpr std::size_t nameInZip = 30;
    if (named.kind == DocumentKind::text || named.kind == DocumentKind::html) return named;
    if (content.starts_with("{\\rtf")) return *documentFormat("rtf");
    if (content.starts_with("\xD0\xCF\x11\xE0")) return *documentFormat("doc");
    if (!content.starts_with(zip)) return named;
    if (content.substr(std::min(nameInZip, content.size())).starts_with(odtMark)) return *documentFormat("odt");
    return named.kind == DocumentKind::odt ? named : *documentFormat("docx");
}

std::string endingOf(const std::string& name) {
    const std::string ending = fs::path(name).extension();
    return ending.empty() ? "" : lowercased(std::string_view(ending).substr(1));
}

}  // namespace

const DocumentFormat* documentFormat(std::string_view name) {
    const auto* const row = std::ranges::find(formats, name, &DocumentFormat::name);
    return row == std::end(formats) ? nullptr : row;
}

void refuseFormat(std::string_view name) {
    const auto* const hint = std::ranges::find(hints, name, &Hint::name);
    throw ToolFailure{
        hint == std::end(hints) ? fmt::format("there is no format '{}' here", name) : std::string(hint->sentence),
        statusWrongUsage};
}

const DocumentFormat& formatOfFile(const std::string& name) {
    const std::string ending = endingOf(name);
    if (ending == "htm") return *documentFormat("html");
    if (const DocumentFormat* format = documentFormat(ending)) return *format;
    if (std::ranges::find(hints, ending, &Hint::name) != std::end(hints)) refuseFormat(ending);
    return *documentFormat("txt");
}

TextDocument readDocument(const std::string& name, const ReadingOptions& options) {
    TextDocument document{.format = options.format ? options.format : &formatOfFile(name), .content = {}};
    if (fs::is_directory(name)) throw ToolFailure{fmt::format("'{}' is a folder", name)};
    document.content = fileContent(name);
    if (!options.format) document.format = &formatByContent(*document.format, document.content);
    if (document.format->kind != DocumentKind::text && document.format->kind != DocumentKind::html) return document;
    auto text = decodedText(document.content, options.encoding);
    if (!text) throw ToolFailure{fmt::format("there is no encoding '{}'", options.encoding.value_or(""))};
    document.content = std::move(*text);
    return document;
}

std::string convertedDocument(const TextDocument& document, const DocumentFormat& format, const std::string& title) {
    const bool isOfficeFormat = !format.office.empty();
    const DocumentFormat& between = *documentFormat("docx");
    if (document.format->kind == format.kind) return document.content;
    if (needsOffice(*document.format) && isOfficeFormat) return byOffice(document, format);
    if (needsOffice(*document.format)) return convertedDocument({&between, byOffice(document, between)}, format, title);
    if (format.kind == DocumentKind::html) return htmlPage(title, asBody(document));
    if (document.format->kind == DocumentKind::text)
        return convertedDocument({documentFormat("html"), htmlPage("", asBody(document))}, format, title);
    if (format.kind == DocumentKind::text) return asText(document);
    if (format.kind != DocumentKind::doc) return byPandoc(document, format);
    return isPage(document) ? byOffice({&between, byPandoc(document, between)}, format) : byOffice(document, format);
}

std::string joinedDocuments(const std::vector<TextDocument>& documents, const DocumentFormat& format,
                            const std::string& title) {
    if (documents.size() == 1) return convertedDocument(documents.front(), format, title);
    const DocumentFormat& between = *documentFormat("docx");
    std::string whole;
    for (const TextDocument& document : documents) {
        if (format.kind == DocumentKind::text) {
            whole += convertedDocument(document, format, title);
        } else {
            whole +=
                asBody(needsOffice(*document.format) ? TextDocument{&between, byOffice(document, between)} : document);
        }
    }
    if (format.kind == DocumentKind::text) return whole;
    return convertedDocument({documentFormat("html"), htmlPage(title, whole)}, format, title);
}

}  // namespace brindlet::tools
