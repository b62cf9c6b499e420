#include "metadata.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "shared/content_types.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view engineSeconds = "10";
// exiftool takes the bytes that were made for it out of what it prints; this is the picture of one.
constexpr std::string_view listSeparator = "\u241F";

enum class Shape { number, moment, text, list };

// What exiftool calls the same; the first tag that a file has counts.
struct TagRow {
    std::string_view attribute;
    Shape shape;
    std::string_view tags;  // separated by blanks
};
constexpr TagRow tagRows[] = {
    {"kMDItemAcquisitionMake", Shape::text, "Make"},
    {"kMDItemAcquisitionModel", Shape::text, "Model"},
    {"kMDItemAlbum", Shape::text, "Album"},
    {"kMDItemAltitude", Shape::number, "GPSAltitude"},
    {"kMDItemAudioChannelCount", Shape::number, "AudioChannels NumChannels Channels"},
    {"kMDItemAudioSampleRate", Shape::number, "AudioSampleRate SampleRate"},
    {"kMDItemAuthors", Shape::list, "Author Artist Creator"},
    {"kMDItemBitsPerSample", Shape::number, "BitsPerSample BitDepth"},
    {"kMDItemComment", Shape::text, "Comment UserComment"},
    {"kMDItemContentCreationDate", Shape::moment, "DateTimeOriginal CreateDate CreationDate"},
    {"kMDItemCopyright", Shape::text, "Copyright"},
    {"kMDItemCreator", Shape::text, "Software CreatorTool Creator"},
    {"kMDItemDescription", Shape::text, "Description ImageDescription"},
    {"kMDItemDurationSeconds", Shape::number, "Duration"},
    {"kMDItemEncodingApplications", Shape::list, "Producer"},
    {"kMDItemExposureTimeSeconds", Shape::number, "ExposureTime"},
    {"kMDItemFNumber", Shape::number, "FNumber"},
    {"kMDItemFocalLength", Shape::number, "FocalLength"},
    {"kMDItemISOSpeed", Shape::number, "ISO"},
    {"kMDItemKeywords", Shape::list, "Keywords Subject"},
    {"kMDItemLatitude", Shape::number, "GPSLatitude"},
    {"kMDItemLongitude", Shape::number, "GPSLongitude"},
    {"kMDItemMusicalGenre", Shape::text, "Genre"},
    {"kMDItemNumberOfPages", Shape::number, "PageCount Pages"},
    {"kMDItemOrientation", Shape::number, "Orientation"},
    {"kMDItemPixelHeight", Shape::number, "ImageHeight"},
    {"kMDItemPixelWidth", Shape::number, "ImageWidth"},
    {"kMDItemResolutionHeightDPI", Shape::number, "YResolution"},
    {"kMDItemResolutionWidthDPI", Shape::number, "XResolution"},
    {"kMDItemTitle", Shape::text, "Title"},
    {"kMDItemTotalBitRate", Shape::number, "AvgBitrate AudioBitrate"},
};

// ffprobe's names for what exiftool may not find in a clip.
struct ProbeRow {
    std::string_view attribute, key;
};
constexpr ProbeRow probeRows[] = {
    {"kMDItemDurationSeconds", "duration"}, {"kMDItemPixelHeight", "height"}, {"kMDItemPixelWidth", "width"}};

constexpr std::string_view typesWithTags[] = {"public.image",       "public.movie",        "public.audio",
                                              "public.spreadsheet", "public.presentation", "public.composite-content"};
constexpr std::string_view typesWithStreams[] = {"public.image", "public.movie", "public.audio"};

template <std::size_t size>
bool isOneOf(const std::string_view (&types)[size], const ContentType& type) {
    const std::vector<std::string> tree = contentTypeTree(type);
    return std::any_of(tree.begin(), tree.end(), [&](const std::string& each) {
        return std::find(std::begin(types), std::end(types), each) != std::end(types);
    });
}

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("+-.0123456789eE") == std::string_view::npos &&
           text.find_first_of("0123456789") != std::string_view::npos;
}

std::optional<Value> shaped(Shape shape, const std::string& text) {
    switch (shape) {
        case Shape::number:
            return isNumber(text) ? std::optional<Value>(Number{text}) : std::nullopt;
        case Shape::moment: {
            const auto second = parsedInteger(text);
            return second ? std::optional<Value>(Moment{*second}) : std::nullopt;
        }
        case Shape::text:
            return replacedAll(text, listSeparator, ", ");
        case Shape::list:
            return splitNonEmpty(text, listSeparator);
    }
    return std::nullopt;
}

// The lines "Key: value" or "key=value" of an engine that may take its time over a broken file.
std::map<std::string, std::string> answersOf(std::vector<std::string> words, std::string_view separator) {
    words.insert(words.begin(), {neededProgram("timeout", "coreutils"), std::string(engineSeconds)});
    std::map<std::string, std::string> answers;
    for (const std::string& line : splitNonEmpty(capture(words).output, "\n")) {
        const std::size_t at = line.find(separator);
        if (at == std::string::npos) continue;
        const std::string_view value = trimmed(std::string_view(line).substr(at + separator.size()));
        if (!value.empty()) answers.emplace(line.substr(0, at), value);
    }
    return answers;
}

void addTags(const std::string& file, Metadata& found) {
    std::vector<std::string> words{neededProgram("exiftool", "libimage-exiftool-perl"),
                                   "-S",
                                   "-q",
                                   "-q",
                                   "-d",
                                   "%s",
                                   "-api",
                                   "QuickTimeUTC",
                                   "-sep",
                                   std::string(listSeparator)};
    for (const TagRow& row : tagRows)
        for (const std::string& tag : splitNonEmpty(row.tags, " "))
            words.push_back("-" + tag + (row.shape == Shape::number ? "#" : ""));
    words.push_back(file);
    const auto answers = answersOf(std::move(words), ": ");
    for (const TagRow& row : tagRows)
        for (const std::string& tag : splitNonEmpty(row.tags, " ")) {
            const auto answer = answers.find(tag);
            if (answer == answers.end()) continue;
            const auto value = shaped(row.shape, answer->second);
            if (!value) continue;
            found.insert_or_assign(std::string(row.attribute), *value);
            break;
        }
}

void addStreams(const std::string& file, Metadata& found) {
    const auto lacks = [&](const ProbeRow& row) { return found.count(row.attribute) == 0; };
    const auto program = programPath("ffprobe");
    if (!program || std::none_of(std::begin(probeRows), std::end(probeRows), lacks)) return;
    const auto answers = answersOf({*program, "-v", "error", "-show_entries", "format=duration:stream=width,height",
                                    "-of", "default=noprint_wrappers=1", file},
                                   "=");
    for (const ProbeRow& row : probeRows) {
        const auto answer = answers.find(std::string(row.key));
        // What it can't tell of a damaged file, it gives as 0.
        if (lacks(row) && answer != answers.end() && isNumber(answer->second) && answer->second != "0")
            found.emplace(row.attribute, Number{answer->second});
    }
}

// A file whose name has no known ending tells by its first bytes.
const ContentType& typeOf(const std::string& file) {
    if (fs::is_directory(file)) return folderContentType();
    const ContentType& byName = contentTypeOf(file);
    const auto program = programPath("file");
    if (byName != contentTypeOf("") || !program) return byName;
    const std::string mime(trimmed(capture({*program, "--brief", "--mime-type", "--", file}).output));
    const ContentType& bySubtype = contentTypeOf("x." + mime.substr(mime.find('/') + 1));
    return bySubtype == byName && mime.starts_with("text/") ? contentTypeOf("x.txt") : bySubtype;
}

Moment momentOf(const struct statx_timestamp& time) {
    return {time.tv_sec};
}

Number numberOf(std::uint64_t value) {
    return {std::to_string(value)};
}

void addStatus(const std::string& file, Metadata& found) {
    struct statx status {};
    if (::statx(AT_FDCWD, file.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0 &&
        ::statx(AT_FDCWD, file.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &status) != 0)
        throw ToolFailure{file + ": " + std::strerror(errno)};
    const bool hasBirth = (status.stx_mask & STATX_BTIME) != 0;
    const Moment changed = momentOf(status.stx_mtime), made = hasBirth ? momentOf(status.stx_btime) : changed;
    found["kMDItemContentCreationDate"] = found["kMDItemFSCreationDate"] = found["kMDItemDateAdded"] = made;
    found["kMDItemContentModificationDate"] = found["kMDItemFSContentChangeDate"] = changed;
    found["kMDItemLastUsedDate"] = momentOf(status.stx_atime);
    found["kMDItemFSOwnerUserID"] = numberOf(status.stx_uid);
    found["kMDItemFSOwnerGroupID"] = numberOf(status.stx_gid);
    if (S_ISDIR(status.stx_mode)) {
        std::error_code error;
        const auto items = std::distance(fs::directory_iterator(file, error), fs::directory_iterator());
        found["kMDItemFSNodeCount"] = numberOf(static_cast<std::uint64_t>(items));
        return;
    }
    found["kMDItemFSSize"] = found["kMDItemLogicalSize"] = numberOf(status.stx_size);
    found["kMDItemPhysicalSize"] = numberOf(status.stx_blocks * 512);
}

void addNames(const std::string& file, const ContentType& type, Metadata& found) {
    const std::string name = fs::path(file).filename().string();
    found["kMDItemDisplayName"] = found["kMDItemFSName"] = name;
    found["kMDItemPath"] = file;
    found["kMDItemFSInvisible"] = Number{name.starts_with('.') ? "1" : "0"};
    found["kMDItemKind"] = std::string(type.kind);
    found["kMDItemContentType"] = std::string(type.identifier);
    found["kMDItemContentTypeTree"] = contentTypeTree(type);
}

// The attributes in which browsers keep it (freedesktop.org, common extended attributes).
void addOrigin(const std::string& file, Metadata& found) {
    std::vector<std::string> places;
    for (const char* const name : {"user.xdg.origin.url", "user.xdg.referrer.url"}) {
        char value[4096];
        const ssize_t size = ::getxattr(file.c_str(), name, value, sizeof value);
        if (size > 0) places.emplace_back(value, static_cast<std::size_t>(size));
    }
    if (!places.empty()) found["kMDItemWhereFroms"] = std::move(places);
}

}  // namespace

Metadata metadataOf(const std::string& file, const std::set<std::string>& wanted, std::optional<ToolFailure>& missing) {
    Metadata found;
    addStatus(file, found);
    const ContentType& type = typeOf(file);
    addNames(file, type, found);
    addOrigin(file, found);
    const auto isTagged = [](const std::string& name) {
        return std::any_of(std::begin(tagRows), std::end(tagRows),
                           [&](const TagRow& row) { return row.attribute == name; });
    };
    if (!wanted.empty() && std::none_of(wanted.begin(), wanted.end(), isTagged)) return found;
    if (isOneOf(typesWithTags, type)) {
        try {
            addTags(file, found);
        } catch (const ToolFailure& failure) {
            missing = failure;
        }
    }
    if (isOneOf(typesWithStreams, type)) addStreams(file, found);
    return found;
}

}  // namespace brindlet::tools
