#include "prompts/quick_commands.h"

#include <gtest/gtest.h>

#include <memory>

#include "text/strings.h"

namespace brindlet {
namespace quick_commands_tests {

// Files that don't exist: no answer may depend on the disk.
std::vector<FilePath> selection(std::string_view names) {
    std::vector<FilePath> files;
    for (const std::string& name : splitNonEmpty(names, " ")) files.push_back(FilePath("/w").child(name));
    return files;
}

std::string commandFor(std::string_view request, std::string_view names) {
    const auto answer = quickCommand(request, selection(names));
    return answer ? answer->command : "no answer";
}

// What the canned summary says of a run of the request's command; "a model's" where it leaves that to a model.
std::string summaryFor(std::string_view request, std::string_view names, std::string_view output,
                       bool allSuccess = true) {
    const auto answer = quickCommand(request, selection(names));
    if (!answer) return "no answer";
    const QuickSummaryContext context{.prompt = std::string(request),
                                      .command = answer->command,
                                      .files = selection(names),
                                      .output = std::string(output),
                                      .failures = "",
                                      .allSuccess = allSuccess};
    return answer->summarize(context).value_or("a model's");
}

TEST(QuickCommands, RequestsWithAFixedSummary) {
    struct Case {
        std::string_view requests;  // with bars between
        std::string_view files, command, summary;
    };
    const Case cases[] = {
        // Pages and text of PDFs; other formats go the way of the images.
        {"to text|as plain text|.txt|text", "a.pdf b.PDF", R"(pdftotext "$FILE_NAME" "${FILE_BASENAME}.txt")",
         "✅ Converted to Text"},
        {"to html", "a.pdf", R"(pdftohtml "$FILE_NAME" "${FILE_BASENAME}.html")", "✅ Converted to HTML"},
        {"as a png", "a.pdf",
         R"(gs -dNOPAUSE -dBATCH -sDEVICE=png16m -r300 -sOutputFile="${FILE_BASENAME}_page_%03d.png" "$FILE_NAME")",
         "✅ Converted to PNG"},
        {"jpg|jpeg", "a.pdf README",
         R"(gs -dNOPAUSE -dBATCH -sDEVICE=jpeg -r300 -sOutputFile="${FILE_BASENAME}_page_%03d.jpg" "$FILE_NAME")",
         "✅ Converted to JPG"},
        {"tiff", "a.pdf", R"(sips -s format tiff "$FILE_NAME" --out "${FILE_BASENAME}.tiff")", "✅ Converted to TIFF"},
        {"png", "a.pdf b.jpg", R"(sips -s format png "$FILE_NAME" --out "${FILE_BASENAME}.png")", "✅ Converted to PNG"},
        // Images.
        {"Convert to PNG|png| PNG!\n|make it a png|turn these into a png|convert photo.heic to png|..png|as png é",
         "a.jpeg", R"(sips -s format png "$FILE_NAME" --out "${FILE_BASENAME}.png")", "✅ Converted to PNG"},
        {"to .jpg", "a.png", R"(sips -s format jpeg "$FILE_NAME" --out "${FILE_BASENAME}.jpg")", "✅ Converted to JPEG"},
        {"jpeg", "a.avif b.HEIC c", R"(sips -s format jpeg "$FILE_NAME" --out "${FILE_BASENAME}.jpeg")",
         "✅ Converted to JPEG"},
        {"gif", "a.gif", R"(sips -s format gif "$FILE_NAME" --out "${FILE_BASENAME}.gif")", "✅ Converted to GIF"},
        // Video and audio.
        {"gif|make an animated gif|to a gif", "a.mov",
         R"(brindlet_animated_gif --lossy 65 --fps 20 --width 800 "$FILE_NAME" "${FILE_BASENAME}.gif")",
         "✅ Converted to Animated GIF"},
        {"to mp3|extract it as mp3", "a.mov b.wav", R"(ffmpeg -i "$FILE_NAME" "$FILE_BASENAME.mp3")",
         "✅ Converted to MP3"},
        {"mp4", "a.gif", R"(ffmpeg -i "$FILE_NAME" "$FILE_BASENAME.mp4")", "✅ Converted to MP4"},
        // Documents.
        {"word|to word doc|as a word document|wordml|docx", "a.rtf",
         R"(textutil -convert docx "$FILE_NAME" -output "${FILE_BASENAME}.docx")", "✅ Converted to Word Document"},
        {"doc", "a.txt", R"(textutil -convert doc "$FILE_NAME" -output "${FILE_BASENAME}.docx")",
         "✅ Converted to Word Document"},
        {"plain text", "a.html", R"(textutil -convert txt "$FILE_NAME" -output "${FILE_BASENAME}.txt")",
         "✅ Converted to Text"},
        {"rtfd", "a.odt", R"(textutil -convert rtfd "$FILE_NAME" -output "${FILE_BASENAME}.rtfd")",
         "✅ Converted to RTFD"},
        {"markdown", "a.html", R"(pandoc "$FILE_NAME" -o "$FILE_BASENAME.md")", "✅ Converted to Markdown"},
        {"to pdf", "a.md b.docx", R"(pandoc "$FILE_NAME" -o "$FILE_BASENAME.pdf")", "✅ Converted to PDF"},
        {"word", "a.md", R"(pandoc "$FILE_NAME" -o "$FILE_BASENAME.docx")", "✅ Converted to Word Document"},
        {"commonmark_x", "a.md", R"(pandoc "$FILE_NAME" -o "$FILE_BASENAME.commonmark_x")",
         "✅ Converted to COMMONMARK_X"},
        // Archives.
        {"zip|to zip|Zip.", "", "zip -r archive.zip *", "✅ Zipped"},
        {"zip", "a.txt", R"(zip -r "${FILE_BASENAME}.zip" "$FILE_NAME")", "✅ Zipped"},
        {"zip", "a.txt b", "zip -r archive.zip $SPACE_SEPARATED_FILE_NAMES", "✅ Zipped"},
        {"extract|unzip|uncompress|unarchive|decompress|untar|gunzip", "a.zip", R"(unzip "$FILE_NAME")", "✅ Unzipped"},
        {"tar", "", "tar -czf archive.tar.gz *", "✅ Created tar"},
        {"tar", "folder", R"(tar -czf "${FILE_BASENAME}.tar.gz" "$FILE_NAME")", "✅ Created tar"},
        {"tar", "a b", "tar -czf archive.tar.gz $SPACE_SEPARATED_FILE_NAMES", "✅ Created tar"},
        {"untar|unzip", "a.tar", R"(tar -xzf "$FILE_NAME")", "✅ Extracted tar"},
        {"gunzip", "a.TAR.GZ", R"(tar -xzf "$FILE_NAME")", "✅ Extracted tar"},
        {"extract", "a.tgz b.gz", R"(tar -xzf "$FILE_NAME")", "✅ Extracted tar"},
        {"extract", "a.log.gz b.gz", "gunzip $SPACE_SEPARATED_FILE_NAMES", "✅ Decompressed"},
        {"gzip", "", "gzip *", "✅ Compressed"},
        {"gzip", "a.log", R"(gzip "$FILE_NAME")", "✅ Compressed"},
        {"gzip", "a.log b.log", "gzip $SPACE_SEPARATED_FILE_NAMES", "✅ Compressed"},
        // Folder actions.
        {"duplicate|Dupe", "a.txt",
         R"(if [ -z "$FILE_EXTENSION" ]; then cp -R "$FILE_NAME" "${FILE_NAME}_copy"; else cp -R "$FILE_NAME" )"
         R"("${FILE_BASENAME}_copy.${FILE_EXTENSION}"; fi)",
         "✅ Duplicated"},
        {"duplicate", "a b",
         R"(for file in $SPACE_SEPARATED_FILE_NAMES; do if [ "$file" = "${file%.*}" ]; then cp -R "$file" )"
         R"("${file}_copy"; else cp -R "$file" "${file%.*}_copy.${file##*.}"; fi; done)",
         "✅ Duplicated"},
        {"delete|trash", "", "trash *", "🗑️ Moved to Trash"},
        {"delete|trash", "a", "trash $SPACE_SEPARATED_FILE_NAMES", "🗑️ Moved to Trash"},
        {"term|terminal|open terminal|Open in Terminal…", "a", "open -a Terminal .",
         "✅ Opened Terminal at this location"},
        {"organize|organise|tidy|tidy up|clean|clean up!|organize this folder|tidy up this folder", "",
         "fiotraf organize . --execute", "✅ Organized"},
    };
    for (const auto& [requests, files, command, summary] : cases) {
        for (const std::string& request : split(requests, "|")) {
            SCOPED_TRACE(request + " over " + std::string(files));
            EXPECT_EQ(commandFor(request, files), command);
            EXPECT_EQ(summaryFor(request, files, "any output"), summary);
            EXPECT_EQ(summaryFor(request, files, "any output", false), "a model's");
        }
    }
}

TEST(QuickCommands, Selecting) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"select first pdf", "find . -maxdepth 1 -iname '*.pdf' | head -n 1 | finderSelect"},
        {"Select last JPG", "find . -maxdepth 1 -iname '*.jpg' | tail -n 1 | finderSelect"},
        {"select all mp3s", "find . -maxdepth 1 -iname '*.mp3' | finderSelect"},
        {"select\t pdf's.", "find . -maxdepth 1 -iname '*.pdf' | finderSelect"},
        {"select pdfs", "find . -maxdepth 1 -iname '*.pdf' | finderSelect"},
        {"select videos", "no answer"},
        {"select animation", "no answer"},
        {"select all", "no answer"},
        {"select some pdfs", "no answer"},
        {"select all first pdfs", "no answer"},
        {"select pdfss", "no answer"},
        {"preselect pdf", "no answer"},
    };
    for (const auto& [request, command] : cases) EXPECT_EQ(commandFor(request, "a.txt"), command) << request;
}

TEST(QuickCommands, Information) {
    struct Case {
        std::string_view requests, files, command;
    };
    constexpr std::string_view size =
        R"(if [ -d "$FILE_NAME" ]; then du -sh "$FILE_NAME"; else ls -lh "$FILE_NAME"; fi)";
    const Case cases[] = {
        {"res|resolution|dimensions|dimension|width|Height?", "a.webp",
         R"(sips -g pixelWidth -g pixelHeight "$FILE_NAME")"},
        {"resolution", "a.mp4 b.mov",
         R"(ffprobe -v error -select_streams v:0 -show_entries stream=width,height -of csv=s=x:p=0 "$FILE_NAME")"},
        {"duration|length", "a.mp4 b.mp3", "-show_entries format=duration<D>"},
        {"codec", "a.mp4", "-select_streams v:0 -show_entries stream=codec_name<D>"},
        {"codec", "a.flac", "-select_streams a:0 -show_entries stream=codec_name<D>"},
        {"bitrate|bit rate", "a.mkv b.m4b", "-show_entries format=bit_rate<D>"},
        {"framerate|frame rate|fps", "a.mov", "-select_streams v:0 -show_entries stream=avg_frame_rate<D>"},
        {"channels|audio channels|channel count", "a.wav", "-select_streams a:0 -show_entries stream=channels<D>"},
        {"sample rate|samplerate|hz", "a.wav", "-select_streams a:0 -show_entries stream=sample_rate<D>"},
        {"aspect ratio|aspect", "a.png", R"(sips -g pixelWidth -g pixelHeight "$FILE_NAME")"},
        {"aspect", "a.mov", "-select_streams v:0 -show_entries stream=display_aspect_ratio<D>"},
        {"dpi", "a.png", R"(sips -g dpiWidth -g dpiHeight "$FILE_NAME")"},
        {"color space|colorspace|colour space|colourspace", "a.png", R"(sips -g space "$FILE_NAME")"},
        {"word count|count words|words|word|wc", "a.pdf", R"(pdftotext "$FILE_NAME" - | wc -w)"},
        {"words|wc", "a.txt b.docx", R"(textutil -convert txt "$FILE_NAME" -stdout | wc -w)"},
        {"words|wc", "a.md b.txt", "wc -w $SPACE_SEPARATED_FILE_NAMES"},
        {"character count|count characters|characters|character|chars|length", "a.txt",
         "wc -m $SPACE_SEPARATED_FILE_NAMES"},
        {"lines of code|line count|loc|count lines of code", "a.cpp b.h", "wc -l $SPACE_SEPARATED_FILE_NAMES"},
        {"size", "a.png", R"(ls -lh "$FILE_NAME"; sips -g pixelWidth -g pixelHeight "$FILE_NAME")"},
        {"size", "a.mov",
         R"(ls -lh "$FILE_NAME"; ffprobe -v error -select_streams v:0 -show_entries stream=width,height )"
         R"(-of csv=s=x:p=0 "$FILE_NAME")"},
        {"size|file size|filesize", "folder", size},
        {"size|file size", "", size},
        {"size", "a.png b.mov", size},
        {"file size", "a.png", size},
    };
    for (const auto& [requests, files, command] : cases) {
        std::string expected = replacedAll(command, "<D>", R"( -of default=noprint_wrappers=1:nokey=1 "$FILE_NAME")");
        if (contains(command, "<D>")) expected = "ffprobe -v error " + expected;
        for (const std::string& request : split(requests, "|"))
            EXPECT_EQ(commandFor(request, files), expected) << request << " over " << files;
    }
}

TEST(QuickCommands, QuestionsForAModel) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", "a.png"},
        {"...", "a.png"},
        {"to", "a.png"},
        {"to png", ""},
        {"to png", "README .png"},  // neither has an extension
        {"to png", "a.jpg b.txt"},
        {"to png please", "a.jpg"},
        {"photo png", "a.jpg"},
        {"to\npng", "a.jpg"},  // a line end is dropped, and "topng" is left
        {"to avi", "a.mov"},   // the "a" is read as an article
        {"make png", "a.jpg"},
        {"to tif", "a.png"},
        {"to docx", "a.pdf"},
        {"unzip", ""},
        {"unzip", "a.zip b.tar"},
        {"duplicate", ""},
        {"delete!", "a.txt"},  // these two are wanted as they stand
        {"duplicate.", "a.txt"},
        {"fps", "a.mp3"},
        {"channels", "a.mov"},
        {"length", "a.png"},
        {"chars", "a.docx"},
        {"size of this", "a.png"},
    };
    for (const auto& [request, files] : cases)
        EXPECT_EQ(commandFor(request, files), "no answer") << request << " over " << files;
}

TEST(QuickCommands, SummariesOfOutput) {
    struct Case {
        std::string_view request, files, output, summary;
    };
    constexpr std::string_view model = "a model's";
    const Case cases[] = {
        {"res", "a.png", "/w/a.png\n  pixelWidth: 640\n  pixelHeight: 480\n", "🖼️ Image size: 640x480 pixels"},
        {"res", "a.png", "\xff.png\n  pixelWidth: 640\n  pixelHeight: 480\n", "🖼️ Image size: 640x480 pixels"},
        {"res", "a.png", "pixelHeight: 480\npixelWidth: 640\n", model},
        {"res", "a.png b.png", "pixelWidth: 640\npixelHeight: 480\n", model},
        {"res", "a.mov", "\n \n1920x1080\n", "🎬 Video size: 1920x1080 pixels"},
        {"res", "a.mov", "warning\n1920x1080\n", model},
        {"duration", "a.mov", "65.2\n", "⏱️ Duration: 1m 05s"},
        {"duration", "a.mov b.mov", "65.2\n", model},
        {"duration", "a.mov", " 0 ", "⏱️ Duration: 0.00s"},
        {"duration", "a.mov", "+59.994", "⏱️ Duration: 59.99s"},
        {"duration", "a.mov", "60", "⏱️ Duration: 1m 00s"},
        {"duration", "a.mov", "3599.99", "⏱️ Duration: 59m 59s"},
        {"duration", "a.mov", "3600", "⏱️ Duration: 1h 00m 00s"},
        {"duration", "a.mov", "360061.5", "⏱️ Duration: 100h 01m 01s"},
        {"duration", "a.mov", "-1", "⏱️ Duration: 0s"},
        {"duration", "a.mov", "inf", "⏱️ Duration: 0s"},
        {"duration", "a.mov", "nan", "⏱️ Duration: 0s"},
        {"duration", "a.mov", "1e999", "⏱️ Duration: 0s"},
        {"duration", "a.mov", "N/A", model},
        {"duration", "a.mov", "65.2 s", model},
        {"duration", "a.mov", "", model},
        {"codec", "a.mov", "h264", model},
        {"wc", "a.pdf", "  120\n", "📝 Word count: 120"},
        {"wc", "a.rtf", "  120\n", "📝 Word count: 120"},
        {"wc", "a.md", "\n\t120 a.md", "📝 Word count: 120"},
        {"wc", "a.md b.md", "1 a.md\n2 b.md\n3 total", model},
        {"wc", "a.md", "120th", model},
        {"chars", "a.md", "0 a.md", "🔠 Character count: 0"},
        {"loc", "a.cpp", "42 a.cpp", "📄 Line count: 42"},
        {"size", "folder", "12M\tfolder", "📄 Size: 12M"},
        {"size", "folder", "4.0K\tfolder", "📄 Size: 4.0K"},
        {"size", "", "12M\tfolder", model},
        {"size", "a b", "12M\ta", model},
        {"file size", "a.png", "-rw-r--r--@ 1 u  staff   512 Jan  1 10:00 a.png", "📄 Size: 512B"},
        {"file size", "a.png", "drwxr-xr-x 2 u g 1.5G Jan 1 10:00 a.png", "📁 Size: 1.5G"},
        {"file size", "a.png", "lrwxr-xr-x 1 u g 10B Jan 1 10:00 a.png", "📄 Size: 10B"},
        {"file size", "a.png", "-rw-r--r-- 1 u 512", model},
        {"file size", "a.png", "-rw-r--r-- 1 u g 1,5M Jan 1", model},
        {"file size", "a.png", "crw-r--r-- 1 u g 10M", model},
        {"file size", "a.png", " 512 ", "📄 Size: 512B"},
        {"file size", "a.png", "12MB a.png", model},
        {"size", "a.png", "-rw-r--r-- 1 u g 2M Jan 1 a.png\npixelWidth: 6\npixelHeight: 4",
         "🖼️ Image is 6x4 pixels, 2M size"},
        {"size", "a.png", "-rw-r--r-- 1 u g 2M Jan 1 a.png\n", model},
        {"size", "a.mov", "-rw-r--r-- 1 u g 2M Jan 1 a.mov\n6x4\n", "🎬 Video is 6x4 pixels, 2M size"},
        {"size", "a.mov", "6x4\n", model},
        {"select pdf", "", "Selected 1 item in Finder\n", "📂 Selected 1 item"},
        {"select pdf", "a b", "x\nSelected  12 items in Finder", "📂 Selected 12 items"},
        {"select pdf", "", "Selected 0 items in Finder", "📂 Selected 0 items"},
        {"select pdf", "", "Selected 99999999999999999999 items in Finder", model},
        {"select pdf", "", "selected 1 item in Finder", model},
    };
    for (const auto& [request, files, output, summary] : cases) {
        SCOPED_TRACE(testing::PrintToString(output));
        EXPECT_EQ(summaryFor(request, files, output), summary) << request << " over " << files;
        EXPECT_EQ(summaryFor(request, files, output, false), model);
    }
}

TEST(QuickCommands, HostileText) {
    std::string many;
    for (int i = 0; i < 20'000; ++i) many += "make convert 99 to\t ";
    for (const std::string& text : {many, std::string(200'000, ' ') + "\xff", std::string(200'000, '-')}) {
        EXPECT_EQ(commandFor(text, "a.png"), "no answer");
        for (const auto request : {"res", "size", "file size", "select pdf"})
            EXPECT_EQ(summaryFor(request, "a.mov", text + "\n" + text), "a model's") << request;
    }
    EXPECT_EQ(commandFor("\xff to png \xf0\x9f", "a.jpg"),
              R"(sips -s format png "$FILE_NAME" --out "${FILE_BASENAME}.png")");
}

}  // namespace quick_commands_tests
}  // namespace brindlet
