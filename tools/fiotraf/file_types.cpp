#include "file_types.h"

#include <algorithm>
#include <iterator>

namespace fiotraf {

namespace {

constexpr std::string_view archives = "Archives";
constexpr std::string_view books = "Books";
constexpr std::string_view code = "Code";
constexpr std::string_view data = "Data";
constexpr std::string_view designs = "Designs";
constexpr std::string_view documents = "Documents";
constexpr std::string_view fonts = "Fonts";
constexpr std::string_view images = "Images";
constexpr std::string_view installers = "Installers";
constexpr std::string_view music = "Music";
constexpr std::string_view presentations = "Presentations";
constexpr std::string_view spreadsheets = "Spreadsheets";
constexpr std::string_view videos = "Videos";

constexpr FileType otherType = {"", "application/octet-stream", "Other"};

// Sorted by extension. The MIME types are IANA's where it has one, else those of shared-mime-info.
constexpr FileType fileTypes[] = {
    {"7z", "application/x-7z-compressed", archives},
    {"aac", "audio/aac", music},
    {"abw", "application/x-abiword", documents},
    {"ai", "application/illustrator", designs},
    {"aif", "audio/aiff", music},
    {"aiff", "audio/aiff", music},
    {"alac", "audio/mp4", music},
    {"apk", "application/vnd.android.package-archive", installers},
    {"appimage", "application/vnd.appimage", installers},
    {"arw", "image/x-sony-arw", images},
    {"asc", "application/pgp-keys", data},
    {"avi", "video/x-msvideo", videos},
    {"avif", "image/avif", images},
    {"azw", "application/vnd.amazon.ebook", books},
    {"azw3", "application/vnd.amazon.mobi8-ebook", books},
    {"bash", "application/x-sh", code},
    {"bat", "application/x-bat", code},
    {"bib", "text/x-bibtex", documents},
    {"bin", "application/octet-stream", data},
    {"bmp", "image/bmp", images},
    {"bz2", "application/x-bzip2", archives},
    {"c", "text/x-c", code},
    {"caf", "audio/x-caf", music},
    {"cbr", "application/vnd.comicbook-rar", books},
    {"cbz", "application/vnd.comicbook+zip", books},
    {"cc", "text/x-c++", code},
    {"cpp", "text/x-c++", code},
    {"cr2", "image/x-canon-cr2", images},
    {"cs", "text/x-csharp", code},
    {"css", "text/css", code},
    {"csv", "text/csv", spreadsheets},
    {"cxx", "text/x-c++", code},
    {"db", "application/vnd.sqlite3", data},
    {"deb", "application/vnd.debian.binary-package", installers},
    {"djvu", "image/vnd.djvu", books},
    {"dmg", "application/x-apple-diskimage", installers},
    {"dng", "image/x-adobe-dng", images},
    {"doc", "application/msword", documents},
    {"docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document", documents},
    {"dot", "application/msword", documents},
    {"dwg", "image/vnd.dwg", designs},
    {"dxf", "image/vnd.dxf", designs},
    {"eml", "message/rfc822", documents},
    {"eot", "application/vnd.ms-fontobject", fonts},
    {"eps", "application/postscript", designs},
    {"epub", "application/epub+zip", books},
    {"exe", "application/vnd.microsoft.portable-executable", installers},
    {"fig", "application/x-figma", designs},
    {"flac", "audio/flac", music},
    {"flv", "video/x-flv", videos},
    {"gif", "image/gif", images},
    {"go", "text/x-go", code},
    {"gz", "application/gzip", archives},
    {"h", "text/x-c", code},
    {"heic", "image/heic", images},
    {"heif", "image/heif", images},
    {"hpp", "text/x-c++", code},
    {"htm", "text/html", documents},
    {"html", "text/html", documents},
    {"icns", "image/x-icns", images},
    {"ico", "image/vnd.microsoft.icon", images},
    {"ics", "text/calendar", data},
    {"ipynb", "application/x-ipynb+json", code},
    {"iso", "application/vnd.efi.iso", installers},
    {"java", "text/x-java", code},
    {"jfif", "image/jpeg", images},
    {"jpeg", "image/jpeg", images},
    {"jpg", "image/jpeg", images},
    {"js", "text/javascript", code},
    {"json", "application/json", data},
    {"jsx", "text/jsx", code},
    {"jxl", "image/jxl", images},
    {"key", "application/vnd.apple.keynote", presentations},
    {"kt", "text/x-kotlin", code},
    {"log", "text/plain", documents},
    {"lua", "text/x-lua", code},
    {"m4a", "audio/mp4", music},
    {"m4b", "audio/mp4", books},
    {"m4v", "video/mp4", videos},
    {"markdown", "text/markdown", documents},
    {"md", "text/markdown", documents},
    {"mid", "audio/midi", music},
    {"midi", "audio/midi", music},
    {"mjs", "text/javascript", code},
    {"mkv", "video/matroska", videos},
    {"mobi", "application/x-mobipocket-ebook", books},
    {"mov", "video/quicktime", videos},
    {"mp3", "audio/mpeg", music},
    {"mp4", "video/mp4", videos},
    {"mpeg", "video/mpeg", videos},
    {"mpg", "video/mpeg", videos},
    {"msg", "application/vnd.ms-outlook", documents},
    {"msi", "application/x-msi", installers},
    {"mts", "video/mp2t", videos},
    {"nef", "image/x-nikon-nef", images},
    {"numbers", "application/vnd.apple.numbers", spreadsheets},
    {"odp", "application/vnd.oasis.opendocument.presentation", presentations},
    {"ods", "application/vnd.oasis.opendocument.spreadsheet", spreadsheets},
    {"odt", "application/vnd.oasis.opendocument.text", documents},
    {"oga", "audio/ogg", music},
    {"ogg", "audio/ogg", music},
    {"ogv", "video/ogg", videos},
    {"opus", "audio/ogg", music},
    {"org", "text/org", documents},
    {"otf", "font/otf", fonts},
    {"pages", "application/vnd.apple.pages", documents},
    {"parquet", "application/vnd.apache.parquet", data},
    {"pdf", "application/pdf", documents},
    {"php", "application/x-httpd-php", code},
    {"pkg", "application/vnd.apple.installer+xml", installers},
    {"pl", "text/x-perl", code},
    {"png", "image/png", images},
    {"pps", "application/vnd.ms-powerpoint", presentations},
    {"ppsx", "application/vnd.openxmlformats-officedocument.presentationml.slideshow", presentations},
    {"ppt", "application/vnd.ms-powerpoint", presentations},
    {"pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation", presentations},
    {"ps", "application/postscript", documents},
    {"psd", "image/vnd.adobe.photoshop", designs},
    {"py", "text/x-python", code},
    {"r", "text/x-r", code},
    {"rar", "application/vnd.rar", archives},
    {"raw", "image/x-raw", images},
    {"rb", "text/x-ruby", code},
    {"rpm", "application/x-rpm", installers},
    {"rs", "text/rust", code},
    {"rst", "text/x-rst", documents},
    {"rtf", "application/rtf", documents},
    {"scala", "text/x-scala", code},
    {"sh", "application/x-sh", code},
    {"sketch", "application/vnd.sketch", designs},
    {"sql", "application/sql", code},
    {"sqlite", "application/vnd.sqlite3", data},
    {"srt", "application/x-subrip", videos},
    {"svg", "image/svg+xml", images},
    {"swift", "text/x-swift", code},
    {"tar", "application/x-tar", archives},
    {"tex", "application/x-tex", documents},
    {"text", "text/plain", documents},
    {"tgz", "application/gzip", archives},
    {"tif", "image/tiff", images},
    {"tiff", "image/tiff", images},
    {"toml", "application/toml", data},
    {"torrent", "application/x-bittorrent", data},
    {"ts", "text/x-typescript", code},
    {"tsv", "text/tab-separated-values", spreadsheets},
    {"tsx", "text/x-typescript", code},
    {"ttc", "font/collection", fonts},
    {"ttf", "font/ttf", fonts},
    {"txt", "text/plain", documents},
    {"vcf", "text/vcard", data},
    {"wav", "audio/wav", music},
    {"webarchive", "application/x-webarchive", documents},
    {"webm", "video/webm", videos},
    {"webp", "image/webp", images},
    {"wma", "audio/x-ms-wma", music},
    {"wmv", "video/x-ms-wmv", videos},
    {"woff", "font/woff", fonts},
    {"woff2", "font/woff2", fonts},
    {"xcf", "image/x-xcf", designs},
    {"xls", "application/vnd.ms-excel", spreadsheets},
    {"xlsm", "application/vnd.ms-excel.sheet.macroenabled.12", spreadsheets},
    {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", spreadsheets},
    {"xml", "application/xml", data},
    {"xz", "application/x-xz", archives},
    {"yaml", "application/yaml", data},
    {"yml", "application/yaml", data},
    {"zip", "application/zip", archives},
    {"zsh", "application/x-zsh", code},
    {"zst", "application/zstd", archives},
};

constexpr bool comesBefore(const FileType& left, const FileType& right) {
    return left.extension < right.extension;
}
static_assert(std::is_sorted(std::begin(fileTypes), std::end(fileTypes), comesBefore));

}  // namespace

const FileType& typeOf(std::string_view extension) {
    const auto found =
        std::lower_bound(std::begin(fileTypes), std::end(fileTypes), FileType{extension, "", ""}, comesBefore);
    const bool isListed = found != std::end(fileTypes) && found->extension == extension;
    return isListed ? *found : otherType;
}

}  // namespace fiotraf
