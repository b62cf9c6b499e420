#include "prompts/quick_tables.h"

#include <fmt/format.h>

#include "prompts/word_lists.h"

namespace brindlet::quick {

namespace {

constexpr std::string_view duplicateWords[] = {"duplicate", "dupe"};
constexpr std::string_view deleteWords[] = {"delete", "trash"};
constexpr std::string_view terminalWords[] = {"term", "terminal", "open terminal", "open in terminal"};
constexpr std::string_view organizeWords[] = {
    "organize", "organise", "tidy", "tidy up", "clean", "clean up", "organize this folder", "tidy up this folder"};
constexpr std::string_view extractWords[] = {"extract",    "unzip", "uncompress", "unarchive",
                                             "decompress", "untar", "gunzip"};
constexpr std::string_view textWords[] = {"txt", "text", "plain text"};
constexpr std::string_view gifWords[] = {"gif", "animated gif"};
constexpr std::string_view dimensionWords[] = {"res", "resolution", "dimensions", "dimension", "width", "height"};
constexpr std::string_view durationWords[] = {"duration", "length"};
constexpr std::string_view codecWords[] = {"codec"};
constexpr std::string_view bitrateWords[] = {"bitrate", "bit rate"};
constexpr std::string_view framerateWords[] = {"framerate", "frame rate", "fps"};
constexpr std::string_view channelWords[] = {"channels", "audio channels", "channel count"};
constexpr std::string_view sampleRateWords[] = {"sample rate", "samplerate", "hz"};
constexpr std::string_view aspectWords[] = {"aspect ratio", "aspect"};
constexpr std::string_view dpiWords[] = {"dpi"};
constexpr std::string_view colorSpaceWords[] = {"color space", "colorspace", "colour space", "colourspace"};
constexpr std::string_view wordCountWords[] = {"word count", "count words", "words", "word", "wc"};
constexpr std::string_view characterWords[] = {"character count", "count characters", "characters", "character",
                                               "chars"};
constexpr std::string_view lengthWords[] = {"length"};
constexpr std::string_view lineCountWords[] = {"lines of code", "line count", "loc", "count lines of code"};
constexpr std::string_view sizeWords[] = {"size"};
constexpr std::string_view fileSizeWords[] = {"file size", "filesize"};

constexpr std::string_view imageReadable[] = {
    "jpg", "jpeg", "png",  "gif",  "tiff", "tif", "bmp", "ico", "psd", "heic", "heif", "webp", "jp2", "jpx", "j2k",
    "j2c", "fpx",  "pict", "qtif", "sgi",  "tga", "pdf", "eps", "ai",  "svg",  "dng",  "cr2",  "nef", "arw", "avif"};
constexpr std::string_view imageWritable[] = {"jpg",  "jpeg", "tiff", "png", "gif", "jp2",
                                              "pict", "bmp",  "qtif", "psd", "sgi", "tga"};
constexpr std::string_view zipFiles[] = {"zip"};
constexpr std::string_view gzipFiles[] = {"gz"};
constexpr std::string_view tarFiles[] = {"tar", "tgz", "gz"};

const WordList& pandocOutputs() {
    static const WordList outputs = words::joinedWords(
        {words::pandocFormats(),
         {"text",   "plain text", "pure text", "word doc", "commonmark", "commonmark_x", "gfm",  "mediawiki",
          "wiki",   "pod",        "textile",   "jira",     "opml",       "t2t",          "muse", "typ",
          "native", "vw",         "bibtex",    "biblatex", "jats",       "bits",         "man",  "mdoc"}});
    return outputs;
}

constexpr FormatName formatNames[] = {
    {"markdown", "md", "Markdown"},    {"md", "md", "Markdown"},         {"txt", "txt", "Text"},
    {"docx", "docx", "Word Document"}, {"doc", "docx", "Word Document"},
};

struct Alias {
    std::string_view name, format;
};
constexpr Alias aliases[] = {
    {"word", "docx"},   {"word doc", "docx"},  {"word document", "docx"},
    {"wordml", "docx"}, {"plain text", "txt"}, {"text", "txt"},
};

constexpr std::nullopt_t anySelection = std::nullopt;

// Asks for one entry and has it printed bare, with neither its name nor its section.
std::string probe(std::string_view entry) {
    return fmt::format(R"(ffprobe -v error {} -of default=noprint_wrappers=1:nokey=1 "$FILE_NAME")", entry);
}

}  // namespace

std::span<const ConversionRow> conversionRows() {
    static constexpr std::string_view png[] = {"png"};
    static constexpr std::string_view jpeg[] = {"jpg", "jpeg"};
    static constexpr std::string_view jpg[] = {"jpg"};
    static constexpr std::string_view html[] = {"html"};
    static constexpr std::string_view zip[] = {"zip"};
    static constexpr std::string_view tar[] = {"tar"};
    static constexpr std::string_view gzip[] = {"gzip"};
    static const ConversionRow rows[] = {
        {textWords, words::pdfFiles(), R"(pdftotext "$FILE_NAME" "${FILE_BASENAME}.txt")", "✅ Converted to Text"},
        {html, words::pdfFiles(), R"(pdftohtml "$FILE_NAME" "${FILE_BASENAME}.html")", "✅ Converted to HTML"},
        {png, words::pdfFiles(),
         R"(gs -dNOPAUSE -dBATCH -sDEVICE=png16m -r300 -sOutputFile="${FILE_BASENAME}_page_%03d.png" "$FILE_NAME")",
         "✅ Converted to PNG"},
        {jpeg, words::pdfFiles(),
         R"(gs -dNOPAUSE -dBATCH -sDEVICE=jpeg -r300 -sOutputFile="${FILE_BASENAME}_page_%03d.jpg" "$FILE_NAME")",
         "✅ Converted to JPG"},
        // To sips it is "jpeg".
        {jpg, imageReadable, R"(sips -s format jpeg "$FILE_NAME" --out "${FILE_BASENAME}.jpg")", "✅ Converted to JPEG"},
        {imageWritable, imageReadable, R"(sips -s format <format> "$FILE_NAME" --out "${FILE_BASENAME}.<format>")",
         "✅ Converted to <FORMAT>"},
        {gifWords, words::videoFormats(),
         R"(brindlet_animated_gif --lossy 65 --fps 20 --width 800 "$FILE_NAME" "${FILE_BASENAME}.gif")",
         "✅ Converted to Animated GIF"},
        {words::mediaFiles(), words::mediaFiles(), R"(ffmpeg -i "$FILE_NAME" "$FILE_BASENAME.<format>")",
         "✅ Converted to <FORMAT>"},
        {words::textutilFormats(), words::textutilFormats(),
         R"(textutil -convert <format> "$FILE_NAME" -output "${FILE_BASENAME}.<extension>")", "✅ Converted to <label>"},
        {pandocOutputs(), words::pandocInputFiles(), R"(pandoc "$FILE_NAME" -o "$FILE_BASENAME.<extension>")",
         "✅ Converted to <label>"},
        {zip,
         anySelection,
         {"zip -r archive.zip *", R"(zip -r "${FILE_BASENAME}.zip" "$FILE_NAME")",
          "zip -r archive.zip $SPACE_SEPARATED_FILE_NAMES"},
         "✅ Zipped"},
        {extractWords, zipFiles, R"(unzip "$FILE_NAME")", "✅ Unzipped"},
        {tar,
         anySelection,
         {"tar -czf archive.tar.gz *", R"(tar -czf "${FILE_BASENAME}.tar.gz" "$FILE_NAME")",
          "tar -czf archive.tar.gz $SPACE_SEPARATED_FILE_NAMES"},
         "✅ Created tar"},
        // Single compressed files, in which tar would find no archive.
        {extractWords, gzipFiles, "gunzip $SPACE_SEPARATED_FILE_NAMES", "✅ Decompressed"},
        {extractWords, tarFiles, R"(tar -xzf "$FILE_NAME")", "✅ Extracted tar"},
        {gzip, anySelection, {"gzip *", R"(gzip "$FILE_NAME")", "gzip $SPACE_SEPARATED_FILE_NAMES"}, "✅ Compressed"},
    };
    return rows;
}

std::span<const FolderActionRow> folderActionRows() {
    static constexpr FolderActionRow rows[] = {
        {duplicateWords,
         false,
         {"",
          R"(if [ -z "$FILE_EXTENSION" ]; then cp -R "$FILE_NAME" "${FILE_NAME}_copy"; )"
          R"(else cp -R "$FILE_NAME" "${FILE_BASENAME}_copy.${FILE_EXTENSION}"; fi)",
          R"(for file in $SPACE_SEPARATED_FILE_NAMES; do if [ "$file" = "${file%.*}" ]; )"
          R"(then cp -R "$file" "${file}_copy"; else cp -R "$file" "${file%.*}_copy.${file##*.}"; fi; done)"},
         "✅ Duplicated"},
        {deleteWords,
         false,
         {"trash *", "trash $SPACE_SEPARATED_FILE_NAMES", "trash $SPACE_SEPARATED_FILE_NAMES"},
         "🗑️ Moved to Trash"},
        {terminalWords, true, "open -a Terminal .", "✅ Opened Terminal at this location"},
        {organizeWords, true, "fiotraf organize . --execute", "✅ Organized"},
    };
    return rows;
}

std::span<const InformationRow> informationRows() {
    constexpr const char* pixels = R"(sips -g pixelWidth -g pixelHeight "$FILE_NAME")";
    constexpr const char* size = R"(if [ -d "$FILE_NAME" ]; then du -sh "$FILE_NAME"; else ls -lh "$FILE_NAME"; fi)";
    const WordList& video = words::videoFormats();
    const WordList& audio = words::audioFormats();
    const WordList& plainText = words::plainTextFormats();
    static const InformationRow rows[] = {
        {dimensionWords, imageReadable, pixels, summaries::imageSize},
        {dimensionWords, video,
         R"(ffprobe -v error -select_streams v:0 -show_entries stream=width,height -of csv=s=x:p=0 "$FILE_NAME")",
         summaries::videoSize},
        {durationWords, words::mediaFiles(), probe("-show_entries format=duration"), summaries::duration},
        {codecWords, video, probe("-select_streams v:0 -show_entries stream=codec_name"), summaries::none},
        {codecWords, audio, probe("-select_streams a:0 -show_entries stream=codec_name"), summaries::none},
        {bitrateWords, words::mediaFiles(), probe("-show_entries format=bit_rate"), summaries::none},
        {framerateWords, video, probe("-select_streams v:0 -show_entries stream=avg_frame_rate"), summaries::none},
        {channelWords, audio, probe("-select_streams a:0 -show_entries stream=channels"), summaries::none},
        {sampleRateWords, audio, probe("-select_streams a:0 -show_entries stream=sample_rate"), summaries::none},
        {aspectWords, imageReadable, pixels, summaries::none},
        {aspectWords, video, probe("-select_streams v:0 -show_entries stream=display_aspect_ratio"), summaries::none},
        {dpiWords, imageReadable, R"(sips -g dpiWidth -g dpiHeight "$FILE_NAME")", summaries::none},
        {colorSpaceWords, imageReadable, R"(sips -g space "$FILE_NAME")", summaries::none},
        {wordCountWords, words::pdfFiles(), R"(pdftotext "$FILE_NAME" - | wc -w)", summaries::count("📝 Word count")},
        {wordCountWords, words::textutilFormats(), R"(textutil -convert txt "$FILE_NAME" -stdout | wc -w)",
         summaries::count("📝 Word count")},
        {wordCountWords, plainText, "wc -w $SPACE_SEPARATED_FILE_NAMES", summaries::count("📝 Word count")},
        {characterWords, plainText, "wc -m $SPACE_SEPARATED_FILE_NAMES", summaries::count("🔠 Character count")},
        {lengthWords, plainText, "wc -m $SPACE_SEPARATED_FILE_NAMES", summaries::count("🔠 Character count")},
        {lineCountWords, words::sourceCodeFiles(), "wc -l $SPACE_SEPARATED_FILE_NAMES",
         summaries::count("📄 Line count")},
        {sizeWords, imageReadable, R"(ls -lh "$FILE_NAME"; sips -g pixelWidth -g pixelHeight "$FILE_NAME")",
         summaries::imageSizeAndFileSize},
        {sizeWords, video,
         R"(ls -lh "$FILE_NAME"; ffprobe -v error -select_streams v:0 -show_entries stream=width,height )"
         R"(-of csv=s=x:p=0 "$FILE_NAME")",
         summaries::videoSizeAndFileSize},
        {sizeWords, anySelection, size, summaries::fileSize},
        {fileSizeWords, anySelection, size, summaries::fileSize},
    };
    return rows;
}

std::string_view formatForAlias(std::string_view name) {
    for (const Alias& alias : aliases)
        if (alias.name == name) return alias.format;
    return name;
}

const FormatName* nameOfFormat(std::string_view format) {
    const auto found = std::find_if(std::begin(formatNames), std::end(formatNames),
                                    [&](const FormatName& name) { return name.format == format; });
    return found == std::end(formatNames) ? nullptr : found;
}

bool isSelectable(std::string_view noun) {
    // These two name kinds of files, and no file name ends in them.
    if (noun == "video" || noun == "animation") return false;
    return contains(words::allFormats(), noun);
}

}  // namespace brindlet::quick
