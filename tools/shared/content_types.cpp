#include "shared/content_types.h"

#include <filesystem>
#include <unordered_map>

#include "text/characters.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

struct TypeRow {
    std::string_view endings;  // separated by blanks
    ContentType type;
};

constexpr std::string_view image = "public.image public.data public.item public.content";
constexpr std::string_view movie = "public.movie public.audiovisual-content public.data public.item public.content";
constexpr std::string_view audio = "public.audio public.audiovisual-content public.data public.item public.content";
constexpr std::string_view text = "public.text public.data public.item public.content";
constexpr std::string_view plainText = "public.plain-text public.text public.data public.item public.content";
constexpr std::string_view source =
    "public.source-code public.plain-text public.text public.data public.item public.content";
constexpr std::string_view script =
    "public.script public.source-code public.plain-text public.text public.data public.item public.content";
constexpr std::string_view composite = "public.composite-content public.content public.data public.item";
constexpr std::string_view spreadsheet = "public.spreadsheet public.content public.data public.item";
constexpr std::string_view presentation =
    "public.presentation public.composite-content public.content public.data public.item";
constexpr std::string_view archive = "public.archive public.data public.item";
constexpr std::string_view data = "public.data public.item";

constexpr ContentType folderType{"public.folder", "Folder", "public.directory public.item"};
constexpr ContentType plainData{"public.data", "Document", "public.item"};

constexpr TypeRow typeRows[] = {
    {"jpg jpeg jpe", {"public.jpeg", "JPEG image", image}},
    {"png", {"public.png", "PNG image", image}},
    {"gif", {"com.compuserve.gif", "GIF image", image}},
    {"tif tiff", {"public.tiff", "TIFF image", image}},
    {"heic", {"public.heic", "HEIC image", image}},
    {"heif", {"public.heif", "HEIF image", image}},
    {"webp", {"org.webmproject.webp", "WebP image", image}},
    {"avif", {"public.avif", "AVIF image", image}},
    {"bmp", {"com.microsoft.bmp", "Windows BMP image", image}},
    {"ico", {"com.microsoft.ico", "Windows icon image", image}},
    {"icns", {"com.apple.icns", "Icon image", image}},
    {"svg", {"public.svg-image", "SVG image", image}},
    {"psd", {"com.adobe.photoshop-image", "Photoshop image", image}},
    {"jp2", {"public.jpeg-2000", "JPEG 2000 image", image}},
    {"dng", {"com.adobe.raw-image", "Raw image", image}},
    {"mp4", {"public.mpeg-4", "MPEG-4 movie", movie}},
    {"m4v", {"com.apple.m4v-video", "Video", movie}},
    {"mov qt", {"com.apple.quicktime-movie", "QuickTime movie", movie}},
    {"avi", {"public.avi", "AVI movie", movie}},
    {"mkv", {"org.matroska.mkv", "Matroska video", movie}},
    {"webm", {"org.webmproject.webm", "WebM video", movie}},
    {"mpg mpeg", {"public.mpeg", "MPEG movie", movie}},
    {"mp3", {"public.mp3", "MP3 audio", audio}},
    {"m4a", {"com.apple.m4a-audio", "MPEG-4 audio", audio}},
    {"aac", {"public.aac-audio", "AAC audio", audio}},
    {"wav", {"com.microsoft.waveform-audio", "Waveform audio", audio}},
    {"aif aiff", {"public.aiff-audio", "AIFF audio", audio}},
    {"flac", {"org.xiph.flac", "FLAC audio", audio}},
    {"ogg oga", {"org.xiph.ogg-audio", "Ogg audio", audio}},
    {"opus", {"org.xiph.opus", "Opus audio", audio}},
    {"pdf", {"com.adobe.pdf", "PDF document", composite}},
    {"eps ps", {"com.adobe.postscript", "PostScript document", composite}},
    {"doc", {"com.microsoft.word.doc", "Word 97 document", composite}},
    {"docx", {"org.openxmlformats.wordprocessingml.document", "Word document", composite}},
    {"xls", {"com.microsoft.excel.xls", "Excel 97 workbook", spreadsheet}},
    {"xlsx", {"org.openxmlformats.spreadsheetml.sheet", "Excel workbook", spreadsheet}},
    {"ppt", {"com.microsoft.powerpoint.ppt", "PowerPoint 97 presentation", presentation}},
    {"pptx", {"org.openxmlformats.presentationml.presentation", "PowerPoint presentation", presentation}},
    {"odt", {"org.oasis-open.opendocument.text", "OpenDocument text", composite}},
    {"ods", {"org.oasis-open.opendocument.spreadsheet", "OpenDocument spreadsheet", spreadsheet}},
    {"odp", {"org.oasis-open.opendocument.presentation", "OpenDocument presentation", presentation}},
    {"rtf", {"public.rtf", "Rich text document", text}},
    {"epub", {"org.idpf.epub-container", "Electronic publication", composite}},
    {"html htm", {"public.html", "HTML text", text}},
    {"xml", {"public.xml", "XML text", text}},
    {"csv", {"public.comma-separated-values-text", "CSV document", text}},
    {"md markdown", {"net.daringfireball.markdown", "Markdown document", plainText}},
    {"json", {"public.json", "JSON document", text}},
    {"yml yaml", {"public.yaml", "YAML document", text}},
    {"txt text", {"public.plain-text", "Plain text document", text}},
    {"log", {"com.apple.log", "Log file", plainText}},
    {"c", {"public.c-source", "C source", source}},
    {"h", {"public.c-header", "C header", source}},
    {"cpp cc cxx", {"public.c-plus-plus-source", "C++ source", source}},
    {"py", {"public.python-script", "Python script", script}},
    {"rb", {"public.ruby-script", "Ruby script", script}},
    {"sh bash zsh", {"public.shell-script", "Shell script", script}},
    {"js", {"com.netscape.javascript-source", "JavaScript source", source}},
    {"java", {"com.sun.java-source", "Java source", source}},
    {"swift", {"public.swift-source", "Swift source", source}},
    {"css", {"public.css", "CSS style sheet", text}},
    {"zip", {"public.zip-archive", "ZIP archive", archive}},
    {"gz tgz", {"org.gnu.gnu-zip-archive", "gzip archive", archive}},
    {"bz2", {"public.bzip2-archive", "bzip2 archive", archive}},
    {"tar", {"public.tar-archive", "tar archive", archive}},
    {"7z", {"org.7-zip.7-zip-archive", "7-Zip archive", archive}},
    {"rar", {"com.rarlab.rar-archive", "RAR archive", archive}},
    {"iso", {"public.iso-image", "ISO disk image", "public.disk-image public.archive public.data public.item"}},
    {"dmg", {"com.apple.disk-image-udif", "Disk image", "public.disk-image public.archive public.data public.item"}},
    {"ttf", {"public.truetype-ttf-font", "TrueType font", "public.font public.data public.item"}},
    {"otf", {"public.opentype-font", "OpenType font", "public.font public.data public.item"}},
    {"ics", {"com.apple.ical.ics", "Calendar file", text}},
    {"vcf", {"public.vcard", "Contact card", text}},
    {"eml", {"com.apple.mail.email", "Mail message", data}},
};

const std::unordered_map<std::string, const ContentType*>& typesByEnding() {
    static const auto map = [] {
        std::unordered_map<std::string, const ContentType*> made;
        for (const TypeRow& row : typeRows)
            for (std::string& ending : splitNonEmpty(row.endings, " ")) made.emplace("." + ending, &row.type);
        return made;
    }();
    return map;
}

}  // namespace

const ContentType& contentTypeOf(std::string_view name) {
    const auto found = typesByEnding().find(lowercased(std::filesystem::path(name).extension().string()));
    return found == typesByEnding().end() ? plainData : *found->second;
}

const ContentType& folderContentType() {
    return folderType;
}

std::vector<std::string> contentTypeTree(const ContentType& type) {
    std::vector<std::string> tree = splitNonEmpty(type.ancestors, " ");
    tree.insert(tree.begin(), std::string(type.identifier));
    return tree;
}

}  // namespace brindlet::tools
