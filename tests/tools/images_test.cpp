// The tools for images, on a photo and a drawing of 64 by 48 pixels; ImageMagick's own programs say what came out.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tools/tool_checks.h"

namespace brindlet {
namespace images_tests {

constexpr std::string_view fileVariables =
    "FILE_NAME='my photo.jpg'; FILE_BASENAME='my photo'; FILE_EXTENSION=jpg\n"
    "SPACE_SEPARATED_FILE_NAMES='photo.jpg drawing.png'\n";

// `size` is what ImageMagick is to draw as a photo and as a drawing that has transparent parts.
void makeImages(const ToolBench& bench, const std::string& size = "64x48") {
    const ToolRun made = bench.run("convert -size " + size + " plasma:red-blue 'my photo.jpg' && " +
                                   "cp 'my photo.jpg' photo.jpg && convert -size " + size +
                                   " xc:none -fill red -draw 'rectangle 0,0 20,20' drawing.png");
    ASSERT_EQ(made.status, 0) << made.output;
}

struct ImageCase {
    std::string_view line;
    std::string_view made;    // the file to look at
    std::string_view judged;  // what identify says of its format and size, a blank behind each frame
};

void expectImages(const ToolBench& bench, const std::vector<ImageCase>& cases) {
    makeImages(bench);
    for (const auto& [line, made, judged] : cases) {
        SCOPED_TRACE(line);
        const ToolRun outcome = bench.run(std::string(fileVariables) + std::string(line));
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.output, "");
        const std::string judge = "identify -format '%m %wx%h ' '" + std::string(made) + "'";
        EXPECT_EQ(bench.run(judge).output, judged);
    }
}

TEST(Sips, Converts) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"convert", "identify"})) GTEST_SKIP() << *missing;
    expectImages(
        bench,
        {
            {R"(sips -s format jpeg drawing.png --out drawing.jpg)", "drawing.jpg", "JPEG 64x48 "},
            {R"(sips -s format jpeg -Z 1024 "$FILE_NAME" --out "${FILE_BASENAME}_1024.jpg")", "my photo_1024.jpg",
             "JPEG 1024x768 "},
            {R"(sips --resampleWidth 16 "$FILE_NAME" --out "${FILE_BASENAME}_16.${FILE_EXTENSION}")", "my photo_16.jpg",
             "JPEG 16x12 "},
            {R"(sips --resampleHeight 96 drawing.png --out tall.png)", "tall.png", "PNG 128x96 "},
            {R"(sips -r 90 "$FILE_NAME" --out "${FILE_BASENAME}_90.${FILE_EXTENSION}")", "my photo_90.jpg",
             "JPEG 48x64 "},
            // What the output's name says, where no format is asked for.
            {R"(sips -z 20 30 "$FILE_NAME" --out small.png)", "small.png", "PNG 30x20 "},
            {R"(sips -c 10 12 -p 20 30 --padColor 00ff00 -f horizontal drawing.png --out padded.png)", "padded.png",
             "PNG 30x20 "},
            {R"(mkdir d && sips -s format jpeg photo.jpg drawing.png --out d)", "d/drawing.jpg", "JPEG 64x48 "},
            {R"(for format in tiff gif jp2 pict bmp psd sgi tga; do sips -s format $format photo.jpg --out o.$format; done)",
             "o.tga", "TGA 64x48 "},
            {"cat o.jp2 > x", "x", "JP2 64x48 "},
            {"cat o.tiff > x", "x", "TIFF 64x48 "},
            {"cat o.bmp > x", "x", "BMP 64x48 "},
            // Names that ImageMagick would read as patterns, formats or lists; one that looks like an option.
            {R"(cp photo.jpg 'a*[1] %d:%20.jpg'; sips -Z 32 'a*[1] %d:%20.jpg'; cat 'a*[1] %d:%20.jpg' > x)", "x",
             "JPEG 32x24 "},
            {R"(cp drawing.png ./-Z.png; sips -Z 32 -- -Z.png; cat ./-Z.png > x)", "x", "PNG 32x24 "},
            {R"(cp drawing.png ./-q.png; sips -Z 16 -q.png; cat ./-q.png > x)", "x", "PNG 16x12 "},
            // An animation stays one.
            {R"(convert -delay 20 photo.jpg \( photo.jpg -negate \) moving.gif; sips -Z 32 moving.gif)", "moving.gif",
             "GIF 32x24 GIF 32x24 "},
            // A link stays one, and what it leads to keeps its mode.
            {R"(cp photo.jpg real.jpg; chmod 600 real.jpg; ln -s real.jpg link.jpg; sips -Z 32 link.jpg
            [ -L link.jpg ] && stat -c %a real.jpg | grep -q 600)",
             "real.jpg", "JPEG 32x24 "},
        });
}

TEST(Sips, ShowsTransparentPartsAsWhiteWhereThereAreNone) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"convert", "identify"})) GTEST_SKIP() << *missing;
    makeImages(bench);
    bench.run("sips -s format bmp drawing.png --out a.bmp");
    EXPECT_EQ(bench.run("identify -format '%[pixel:p{60,40}]' a.bmp").output, "srgb(255,255,255)");
}

TEST(Sips, TellsProperties) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"convert", "identify"})) GTEST_SKIP() << *missing;
    makeImages(bench);
    const std::string photo = bench.path("photo.jpg") + "\n";
    const std::string drawing = bench.path("drawing.png") + "\n";
    struct Case {
        std::string_view line;
        std::string output;
    };
    const Case cases[] = {
        {"sips -g pixelWidth -g pixelHeight photo.jpg", photo + "  pixelWidth: 64\n  pixelHeight: 48\n"},
        {"sips -g dpiWidth -g dpiHeight photo.jpg", photo + "  dpiWidth: 72.000\n  dpiHeight: 72.000\n"},
        {"sips -s dpiWidth 144 -s dpiHeight 144 photo.jpg && sips -g dpiHeight photo.jpg",
         photo + "  dpiHeight: 144.000\n"},
        {"sips -g space -g hasAlpha photo.jpg drawing.png",
         photo + "  space: RGB\n  hasAlpha: no\n" + drawing + "  space: RGB\n  hasAlpha: yes\n"},
        {"sips -g format -g make photo.jpg", photo + "  format: jpeg\n  make: <nil>\n"},
        {"sips -g all photo.jpg | grep -c ': '", "11\n"},
    };
    for (const auto& [line, output] : cases) EXPECT_EQ(bench.run(line).output, output) << line;
}

// What ImageMagick is not allowed to read, or has no reader for.
TEST(Sips, HasPagesAndDrawingsRendered) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"convert", "identify", "pdftoppm"})) GTEST_SKIP() << *missing;
    bench.write(
        "a page.pdf",
        "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
        "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 64 48]>>endobj\ntrailer<</Root 1 0 R>>\n");
    bench.write("bad.pdf", "no page");
    bench.write("d.svg", "<svg/>");
    const auto before = contents(bench);
    EXPECT_EQ(bench.run("sips -g pixelWidth -g format -g typeIdentifier 'a page.pdf' | tail -n 3"),
              (ToolRun{0, "  pixelWidth: 64\n  format: pdf\n  typeIdentifier: com.adobe.pdf\n"}));
    EXPECT_EQ(bench.run("sips -Z 9 bad.pdf --out a.png").output.substr(0, 39),
              "sips: 'bad.pdf' can't be read by pdftop");
    EXPECT_EQ(bench.run("ln -s /usr/bin/convert ~; PATH=~:" BRINDLET_BINARIES " sips -s format png d.svg --out d.png"),
              (ToolRun{69, "sips: rsvg-convert is missing; the Debian package librsvg2-bin has it\n"}));
    EXPECT_EQ(contents(bench), before);
    EXPECT_EQ(bench.run("sips -s format png 'a page.pdf' --out a.png; identify -format '%m %wx%h' a.png"),
              (ToolRun{0, "PNG 64x48"}));
}

// One sentence each, and nothing is changed.
TEST(Sips, Refuses) {
    ToolBench bench;
    if (const auto missing = missingIn(bench, {"convert", "identify"})) GTEST_SKIP() << *missing;
    makeImages(bench);
    bench.write("text.png", "no image");
    struct Case {
        std::string_view line;
        int status;
        std::string_view says;
    };
    const Case cases[] = {
        {"sips -s format pdf photo.jpg --out a.pdf", 64, "img2pdf"},
        {"sips -s format xyz photo.jpg", 64, "'xyz' is no format"},
        {"sips -Q photo.jpg", 64, "'-Q' is not known"},
        {"sips -Z", 64, "needs a value"},
        {"sips -Z 1e3 photo.jpg", 64, "'1e3' is no whole number"},
        {"sips -Z 99999 photo.jpg", 64, "no whole number from 1 to 16000"},
        {"sips -Z 10", 64, "which image?"},
        {"sips photo.jpg", 64, "what is to be done"},
        {"sips -Z 10 photo.jpg drawing.png --out gone", 64, "has to be a folder"},
        {"sips -Z 10 gone.png", 1, "'gone.png': No such file"},
        {"sips -Z 10 text.png", 1, "'text.png' can't be converted"},
        {"sips -g all text.png", 1, "'text.png' can't be read"},
        {"sips -g all .", 1, "'.' is no file"},
        {"mkfifo p.png; sips -Z 9 p.png; status=$?; rm p.png; exit $status", 1, "'p.png' is no file"},
        {"sips -r nan photo.jpg", 64, "'nan' is no angle"},
        {"sips -Z 10 photo.jpg --out gone/a.jpg", 1, "'gone/a.jpg' can't be written"},
        {"PATH=$TOOLS; sips -Z 10 photo.jpg --out a.jpg", 69, "the Debian package imagemagick"},
        {"PATH=$TOOLS; magick photo.jpg a.png", 69, "the Debian package imagemagick"},
    };
    bench.set("TOOLS", BRINDLET_BINARIES);
    const auto before = contents(bench);
    for (const auto& [line, status, says] : cases) {
        SCOPED_TRACE(line);
        const ToolRun outcome = bench.run(line);
        EXPECT_EQ(outcome.status, status);
        EXPECT_NE(outcome.output.find(says), std::string::npos) << outcome.output;
        EXPECT_EQ(std::ranges::count(outcome.output, '\n'), 1) << outcome.output;
    }
    EXPECT_EQ(contents(bench), before);
}

// The engine is ended too, and what it had written goes.
TEST(Sips, LeavesNothingWhenItIsStopped) {
    const ToolBench bench;
    bench.write("a.png", "");
    bench.standIn("convert", "last=${@: -1}; echo half >\"${last##*:}\"; touch started; exec sleep 60\n");
    const ToolRun stopped = bench.run(
        "sips -Z 9 a.png --out b.png & until [ -e started ]; do :; done\n"
        "kill -TERM $!; wait $!");
    EXPECT_EQ(stopped, (ToolRun{143, ""}));
    EXPECT_EQ(contents(bench), (std::map<std::string, std::string>{{"a.png", ""}, {"started", ""}}));
}

TEST(Magick, DoesWhatTheCatalogueShows) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"convert", "identify"})) GTEST_SKIP() << *missing;
    expectImages(
        bench,
        {
            {R"(magick "${FILE_NAME}" -crop 20x10+0+0 "${FILE_BASENAME}_cropped.${FILE_EXTENSION}")",
             "my photo_cropped.jpg", "JPEG 20x10 "},
            {R"(magick "${FILE_NAME}" -rotate 90 "${FILE_BASENAME}_rotated.${FILE_EXTENSION}")", "my photo_rotated.jpg",
             "JPEG 48x64 "},
            {R"(magick "${FILE_NAME}" -thumbnail 32x32 "${FILE_BASENAME}_thumb.${FILE_EXTENSION}")",
             "my photo_thumb.jpg", "JPEG 32x24 "},
            {R"(magick "${FILE_NAME}" -strip "${FILE_BASENAME}_stripped.${FILE_EXTENSION}")", "my photo_stripped.jpg",
             "JPEG 64x48 "},
            {R"(magick -delay 20 -loop 0 ${SPACE_SEPARATED_FILE_NAMES} "animation.gif")", "animation.gif",
             "GIF 64x48 GIF 64x48 "},
            {R"(magick "${FILE_NAME}" -fuzz 10% -transparent white t.png)", "t.png", "PNG 64x48 "},
            {R"(magick "${FILE_NAME}" -bordercolor black -border 10x10 "${FILE_BASENAME}_border.${FILE_EXTENSION}")",
             "my photo_border.jpg", "JPEG 84x68 "},
            {R"(magick montage ${SPACE_SEPARATED_FILE_NAMES} -tile 3x1 -geometry +2+2 "montage.jpg")", "montage.jpg",
             "JPEG 204x52 "},
            {R"(magick "${FILE_NAME}" -fill blue -colorize 50% -blur 0x8 -distort SRT -45 b.png)", "b.png",
             "PNG 64x48 "},
            {R"(magick drawing.png -define icon:auto-resize=256,128,64,48,32,16 d.ico)", "d.ico",
             "PNG 256x256 ICO 128x128 ICO 64x64 ICO 48x48 ICO 32x32 ICO 16x16 "},
            {R"(magick mogrify -resize 50% montage.jpg)", "montage.jpg", "JPEG 102x26 "},
            // Several files where one is named, a format in front, the input itself, odd names.
            {R"(magick animation.gif frame.png)", "frame-1.png", "PNG 64x48 "},
            {R"(magick animation.gif frame%02d.png)", "frame01.png", "PNG 64x48 "},
            {R"(magick photo.jpg png:odd:name)", "./odd:name", "PNG 64x48 "},
            {R"(magick odd:name -resize 50% odd:name)", "./odd:name", "PNG 32x24 "},
            {R"(cp photo.jpg ./-q.jpg; magick -q.jpg -resize 50% -q.jpg)", "./-q.jpg", "JPEG 32x24 "},
            {R"(magick photo.jpg png:- | grep -q IHDR && magick photo.jpg null:)", "photo.jpg", "JPEG 64x48 "},
        });
}

TEST(Magick, TellsAndRefuses) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"convert", "identify"})) GTEST_SKIP() << *missing;
    makeImages(bench);
    struct Case {
        std::string_view line;
        int status;
        std::string_view says;
    };
    const Case cases[] = {
        {"magick identify -format '%wx%h' photo.jpg", 0, "64x48"},
        {"magick -list format", 0, "JPEG"},
        {"magick -version", 0, "ImageMagick"},
        {"magick compare -metric AE photo.jpg drawing.png null:", 1, ""},
        {"magick photo.jpg -frobnicate 3 a.png", 64, "no option '-frobnicate'"},
        {"magick gone.png a.png", 1, "No such file"},
        {"magick photo.jpg gone/a.png", 1, "'gone': No such file"},
    };
    const auto before = contents(bench);
    for (const auto& [line, status, says] : cases) {
        SCOPED_TRACE(line);
        const ToolRun outcome = bench.run(line);
        EXPECT_EQ(outcome.status, status);
        EXPECT_NE(outcome.output.find(says), std::string::npos) << outcome.output;
    }
    EXPECT_EQ(contents(bench), before);
}

// Also where the wrappers stand on the path twice, as built and as installed.
TEST(Magick, LeavesItToTheRealOne) {
    ToolBench bench;
    bench.set("TOOLS", BRINDLET_BINARIES);
    bench.write("real/magick", "#!/bin/sh\nprintf '%s|' real \"$@\"\n");
    bench.write("installed/brindlet_animated_gif", "");
    bench.scratch().link("work/installed/magick", std::string(BRINDLET_BINARIES) + "/magick");
    const ToolRun run =
        bench.run("chmod +x real/magick; PATH=$TOOLS:$PWD/installed:$PWD/real:$PATH; magick -anything '' 'a b'");
    EXPECT_EQ(run, (ToolRun{0, "real|-anything||a b|"}));
    // Copies that nothing marks as such.
    EXPECT_EQ(bench.run("mkdir 1 2; cp $TOOLS/magick 1; cp $TOOLS/magick 2; PATH=$PWD/1:$PWD/2; magick a b").status,
              69);
}

TEST(Iconutil, MakesIconsOfImagesAndBack) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"convert", "identify"})) GTEST_SKIP() << *missing;
    makeImages(bench, "256x256");
    // The catalogue's line, with fewer sizes.
    const std::string_view line =
        R"sh(mkdir -p "${FILE_BASENAME}.iconset" && for size in 16 32; do sips -z "$size" "$size" "$FILE_NAME" --out )sh"
        R"sh("${FILE_BASENAME}.iconset/icon_${size}x${size}.png"; sips -z "$((size * 2))" "$((size * 2))" )sh"
        R"sh("$FILE_NAME" --out "${FILE_BASENAME}.iconset/icon_${size}x${size}@2x.png"; done && )sh"
        R"sh(cp -r "${FILE_BASENAME}.iconset" before && iconutil -c icns "${FILE_BASENAME}.iconset" && )sh"
        R"sh(rm -rf "${FILE_BASENAME}.iconset")sh";
    EXPECT_EQ(bench.run(std::string(fileVariables) + std::string(line)), (ToolRun{0, ""}));
    EXPECT_EQ(bench.run("iconutil -c iconset 'my photo.icns' -o after/x.iconset && diff -r before after/x.iconset"),
              (ToolRun{0, ""}));
    // A folder that is there is filled up; images without a name of their own go where they fit.
    const ToolRun fitted = bench.run(
        "mkdir A.iconset && cp drawing.png A.iconset/x.png && iconutil -c icns A.iconset && rm A.iconset/* && "
        "iconutil --convert ICONSET A.icns && ls A.iconset");
    EXPECT_EQ(fitted, (ToolRun{0, "icon_256x256.png\n"}));
}

// The colors of such files are packed, and their transparency stands apart.
TEST(Iconutil, ReadsOldIcons) {
    const ToolBench bench;
    if (const auto missing = missingIn(bench, {"convert", "compare", "png2icns"})) GTEST_SKIP() << *missing;
    makeImages(bench);
    const ToolRun made = bench.run(
        "for s in 16 32 48 128; do convert -size ${s}x$s gradient:red-none -depth 8 PNG32:$s.png; done; "
        "png2icns old.icns 16.png 32.png 48.png 128.png >/dev/null && iconutil -c iconset old.icns && "
        "for s in 16 32 48 128; do compare -metric AE $s.png old.iconset/icon_${s}x$s.png null:; done");
    EXPECT_EQ(made.output, "0000");
}

TEST(Iconutil, Refuses) {
    const ToolBench bench;
    std::filesystem::create_directory(bench.path("empty.iconset"));
    bench.write("bad.icns", "icns\x7f\xff\xff\xff");
    bench.write("endless.icns", std::string("icns\0\0\0\x10ic07\0\0\0\0", 16));
    bench.write("wrong.iconset/icon_16x16.png", "no image");
    bench.write("a.txt", "");
    struct Case {
        std::string_view words;
        int status;
        std::string_view says;
    };
    const Case cases[] = {
        {"empty.iconset", 64, "missing -c"},
        {"-c png bad.icns", 64, "unknown conversion type 'png'"},
        {"-c icns", 64, "missing input file"},
        {"-c icns bad.icns", 64, "cannot convert icns to icns"},
        {"-c icns a.txt", 64, "unsupported source type"},
        {"-c icns -z empty.iconset", 64, "'-z' is not known"},
        {"-c icns gone.iconset", 1, "No such file"},
        {"-c icns empty.iconset -o new/a.icns", 1, "holds no square PNG"},
        {"-c icns wrong.iconset", 1, "is no PNG of 16 by 16 pixels"},
        {"-c iconset bad.icns", 1, "damaged"},
        {"-c iconset endless.icns", 1, "damaged"},
        {"-c iconset bad.icns -o a.txt", 1, "is not a directory"},
    };
    const auto before = contents(bench);
    for (const auto& [words, status, says] : cases) {
        SCOPED_TRACE(words);
        const ToolRun outcome = bench.run("iconutil " + std::string(words));
        EXPECT_EQ(outcome.status, status);
        EXPECT_NE(outcome.output.find(says), std::string::npos) << outcome.output;
    }
    EXPECT_EQ(contents(bench), before);
}

}  // namespace images_tests
}  // namespace brindlet
