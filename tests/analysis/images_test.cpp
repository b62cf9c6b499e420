#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "support/ordinary_user.h"
#include "support/predict.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace images_tests {

using Texts = std::vector<std::string>;

struct Row {
    std::string_view line;
    Texts changes = {};
    std::string outcome = "0 unknown";
    Texts errors = {};  // "friendly / technical"; the last technical text is the output
    Texts sideEffects = {};
    std::string rewritten = "";  // "": as it stands
};

FakeDisk imageDisk() {
    return FakeDisk{"a.png", "b.png",       "a.jpg",     "b.jpg",     "a.txt",        "a.gif", "b.gif",
                    "64",    "a.iconset/x", "file.icns", "dir.icns/", "file.iconset", "x.car", "/usr/bin/mogrify",
                    "C.JPG", "u.PNG"};
}

void expectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        FakeDisk disk = imageDisk();
        const AnalysisResult result = predict(row.line, disk);
        EXPECT_EQ(described(result), row.changes);
        EXPECT_EQ(described(result.commandErrors), row.errors);
        EXPECT_EQ(outcome(result), row.errors.empty()
                                       ? row.outcome
                                       : "1 '" + row.errors.back().substr(row.errors.back().find(" / ") + 3) + "'");
        EXPECT_EQ(described(result.sideEffects), row.sideEffects);
        EXPECT_EQ(result.rewrittenCommand, row.rewritten.empty() ? row.line : row.rewritten);
    }
}

// An error's row, for short.
Row fails(std::string_view line, std::string error) {
    return {line, {}, "", {std::move(error)}};
}

TEST(Images, Sips) {
    const std::string unknown = "Image processor: not known image format / sips: ";
    expectRows({
        {"sips -Z 100 a.jpg", {"modify a.jpg"}},
        {"sips -Z 100 a.jpg --out new.jpg", {"create new.jpg"}, "0"},
        {"sips --out b.jpg -s format jpeg a.png", {"create b.jpg", "overwrite b.jpg"}, "0"},
        {"sips -Z 100 a.jpg b.jpg --out new", {"create new"}, "0"},  // the sources stay
        {"sips --repair a.jpg", {"modify a.jpg"}},
        {"sips -g all C.JPG"},  // the extension in any case
        {"sips -Z 100 a.jpg --out", {}, "1 'sips: --out flag must be followed by a filename'"},
        fails("sips -Z 100 a.txt", unknown + "a.txt: Not a known image format"),
        fails("sips a.jpg -Z 100", unknown + "100: Not a known image format"),
        fails("sips --out b.jpg", unknown + ": Not a known image format"),
        fails("sips -r 90 sub/no.jpg",
              "Image processor: no.jpg doesn't exist / sips: sub/no.jpg: No such file or directory"),
    });
}

TEST(Images, Magick) {
    const std::string missing = "ImageMagick: no.png doesn't exist / magick";
    expectRows({
        {"magick a.png -resize 50% new.png", {"create new.png"}},
        {"magick a.png -evaluate set 5 -rotate -90 +repage C.JPG", {"create C.JPG", "overwrite C.JPG"}},
        {"magick montage a.png b.png -tile 3x1 -geometry +2+2 m.jpg", {"create m.jpg"}},
        {"magick xc:red -fill blue new.png", {"create new.png"}},
        {"magick label:Hi null: new.png", {"create new.png"}},
        {"magick a.png out.xyz", {}, "0 unknown", {}, {"unknownFileChanges: magick may create out.xyz"}},
        {"magick a.gif frame-%d", {}, "0 unknown", {}, {"unknownFileChanges: magick may create frame-%d"}},
        {"magick a.gif o-%03d.png", {}, "0 unknown", {}, {"unknownFileChanges: magick may create o-%03d.png"}},
        {"magick a.png null:", {}, "0 unknown", {}, {"unknownFileChanges: magick may create null:"}},
        {"magick a.png", {}, "? unknown"},
        fails("magick no.png new.png", missing + ": no.png: No such file or directory"),
        fails("magick XC:red new.png", "ImageMagick: XC:red doesn't exist / magick: XC:red: No such file or directory"),
        {"magick mogrify -resize 50% a.png b.png", {"modify a.png", "modify b.png"}},
        {"magick mogrify -resize 50%", {}, "? unknown"},
        {"magick mogrify a.png no.png",
         {"modify a.png"},
         "",
         {missing + " mogrify: no.png: No such file or directory"}},
        fails("magick identify a.png no.png", missing + " identify: no.png: No such file or directory"),
        {"cp a.png new.png; magick identify new.png", {"create new.png"}},
    });
}

TEST(Images, OldNamesRunUnderMagick) {
    expectRows({
        {"convert a.png new.jpg", {"create new.jpg"}, "0 unknown", {}, {}, "magick convert a.png new.jpg"},
        {"/usr/bin/mogrify -strip \"a.png\" > log",
         {"modify a.png", "create log"},
         "0",
         {},
         {},
         "magick /usr/bin/mogrify -strip \"a.png\" > log"},
        {"convert", {}, "? unknown", {}, {}, "magick convert"},
        {"mogrify -format webp a.png", {"modify a.png"}, "0 unknown", {}, {}, "magick mogrify -format webp a.png"},
    });
}

// Each names the tool that is really run, and with what.
TEST(Images, HelpIsReallyRun) {
    struct Case {
        std::string_view line;
        Texts launched;
        bool isInDoubt = false;
    };
    const Case cases[] = {
        {"sips --help", {"sips", "--help"}},
        {"sips", {"sips"}},
        {"sips -Z 100 a.jpg -v", {"sips", "-Z", "100", "a.jpg", "-v"}, true},
        {"magick", {"magick"}},
        {"magick -list format", {"magick", "-list", "format"}},
        {"identify -list format", {"magick", "identify", "-list", "format"}},
        {"convert -version", {"magick", "convert", "-version"}},
        {"mogrify -flip a.png -version", {"magick", "mogrify", "-flip", "a.png", "-version"}, true},
        {"magick -list format new.png", {"magick", "-list", "format", "new.png"}, true},
        {"magick identify -verbose a.png", {"magick", "identify", "-verbose", "a.png"}},
        {"gifsicle", {"gifsicle"}},
        {"gifsicle -b a.gif b.gif --version", {"gifsicle", "-b", "a.gif", "b.gif", "--version"}, true},
        {"iconutil -h", {"iconutil", "-h"}},
    };
    for (const auto& [line, launched, isInDoubt] : cases) {
        SCOPED_TRACE(line);
        FakeDisk disk = imageDisk();
        FakeLauncher launcher;
        launcher.answers = {{.exitCode = 0, .output = "text"}};
        const AnalysisResult result = predict(line, disk, {.launcher = &launcher});
        ASSERT_EQ(launcher.launches.size(), 1U);
        EXPECT_EQ(launcher.launches.front().arguments, launched);
        EXPECT_EQ(outcome(result), "0 'text'");
        EXPECT_EQ(!result.sideEffects.empty(), isInDoubt);
    }
}

TEST(Images, Gifsicle) {
    const Texts lasting = {"longRunning: Long-running operation"};
    expectRows({
        {"gifsicle -O3 --lossy=65 a.gif -o new.gif", {"create new.gif"}, "0 unknown", {}, lasting},
        {"gifsicle --output new.gif a.gif -lforever", {"create new.gif"}, "0 unknown", {}, lasting},
        {"gifsicle -b a.gif b.gif -", {"modify a.gif", "modify b.gif"}, "0 unknown", {}, lasting},
        {"gifsicle --batch -bo - a.gif", {"modify a.gif"}, "0 unknown", {}, lasting},
        {"gifsicle a.gif", {}, "0 unknown", {}, lasting},
        fails("gifsicle --colors 32 a.gif -o new.gif",
              "GIF source doesn’t exist / gifsicle: 32: No such file or directory"),
        {"cp a.gif c.gif; gifsicle c.gif no.gif -o new.gif", {"create c.gif"}, "? unknown"},
        {"cp a.gif c.gif; gifsicle c.gif -o b.gif",
         {"create c.gif"},
         "? unknown",
         {},
         {"unknownFileChanges: gifsicle may overwrite 'b.gif'"}},
    });
}

TEST(Images, Iconutil) {
    const std::string written = "Icon utility command incorrectly written / iconutil: ";
    const std::string conversion = "Icon utility: unsupported conversion / iconutil: ";
    expectRows({
        {"iconutil -c icns a.iconset", {"create a.icns"}, "0"},
        {"iconutil -c iconset file.icns -o new/x.iconset", {"create new/", "create new/x.iconset/"}, "0"},
        {"iconutil --convert ICONSET x.car AppIcon -c iconset", {"create AppIcon.iconset/"}, "0"},
        {"iconutil -o X.icns --output ./x.ICNS -c icns a.iconset", {"create X.icns"}, "0"},
        {"mkdir new.iconset; iconutil -c icns new.iconset", {"create new.iconset/"}, "? unknown"},
        fails("iconutil", written + "missing arguments"),
        fails("iconutil -xc icns", written + "unsupported option -x"),
        fails("iconutil --fast -x", written + "unsupported option --fast"),
        fails("iconutil a.iconset --convert -c", written + "option requires an argument -- c"),
        fails("iconutil a.iconset --convert", written + "option requires an argument -- convert"),
        fails("iconutil a.iconset", written + "missing -c {icns|iconset}"),
        fails("iconutil -c icns --convert iconset", written + "conflicting conversion types supplied"),
        fails("iconutil -c png a.iconset", conversion + "unknown conversion type 'png'"),
        fails("iconutil -c icns a.iconset -o", written + "option requires an argument -- o"),
        fails("iconutil -c icns -o x --output y", written + "duplicate output specified"),
        fails("iconutil -c icns", written + "missing input file"),
        fails("iconutil -c icns a b c d", written + "unexpected extra argument 'c'"),
        fails("iconutil -c icns sub/no.iconset",
              "Icon utility: no.iconset doesn't exist / iconutil: sub/no.iconset: No such file or directory"),
        fails("iconutil -c icns file.iconset",
              "Icon utility: input isn't a folder / iconutil: file.iconset is not a .iconset directory"),
        fails("iconutil -c iconset dir.icns", "Icon utility: input isn't a file / iconutil: dir.icns is a directory"),
        fails("iconutil -c iconset a.iconset", conversion + "cannot convert iconset to iconset"),
        fails("iconutil -c icns a.iconset Name", written + "extra argument 'Name'"),
        fails("iconutil -c icns x.car",
              "Icon utility: missing icon name / iconutil: extracting from .car requires "
              "icon-name argument"),
        fails("iconutil -c icns u.PNG", "Icon utility: unsupported input / iconutil: unsupported source type 'png'"),
        fails("iconutil -c icns a.iconset -o dir.icns",
              "Icon utility: output clashes with folder / iconutil: output path 'dir.icns' is a directory"),
        fails("iconutil -c iconset file.icns",
              "Icon utility: output clash with file / iconutil: output path 'file.iconset' is not a directory"),
    });
}

// Lines that do more than the models show: something must be said of each.
TEST(Images, NothingIsHidden) {
    const std::string_view hazardous[] = {
        "magick a.png -write b.png new.png",
        "magick xc:red +write b.png",
        "magick -script a.txt",
        "magick a.png msl:new.png",
        "magick 'text:|rm a.png' new.png",
        "magick tile:Ephemeral:a.png new.png",
        "magick xc:red -draw \"image over 0,0 0,0 'msl:a.txt'\" new.png",
        "magick a.png '|tee x.png'",
        "magick a.png jpg:b.png",
        "touch @x 'https:' ; magick identify @x",
        "touch '|rm a.png'; magick mogrify '|rm a.png'",
        "touch new-0.png; magick a.gif new.png",
        "mogrify -format jpg a.png",
        "mogrify -format '%wx%h' a.png",
        "mkdir out; cp a.png out; mogrify -path out -resize 50% a.png",
        "identify a.png",  // the launcher can say nothing
        "magick a.png new.png || rm a.png",
        "sips -Z 100 a.jpg -o b.jpg",
        "sips -Z 100 a.jpg b.jpg",
        "sips -Z100 a.jpg",
        "sips --resampleW 100 a.jpg",
        "sips -x profile.icc a.jpg",
        "gifsicle a.gif -ob.gif",
        "gifsicle a.gif --output=b.gif",
        "gifsicle a.gif --outp b.gif",
        "gifsicle a.gif -ib64 -o",
        "gifsicle -Ve a.gif",
        "gifsicle --explode a.gif",
        "gifsicle --transform-colormap=rm a.gif",
        "gifsicle -o new.gif a.gif --output b.gif",
        "cp a.gif c.gif; gifsicle -b c.gif a.gif",
        "touch b.iconset/x; iconutil -c icns b.iconset -o file.icns",
    };
    for (const auto line : hazardous) {
        FakeDisk disk = imageDisk();
        const AnalysisResult result = predict(line, disk);
        const Texts said = described(result.sideEffects);
        const bool isSaid =
            !result.commandErrors.empty() || std::any_of(said.begin(), said.end(), [](const auto& text) {
                return text.starts_with("partialSupport") || text.starts_with("unknownFileChanges");
            });
        EXPECT_TRUE(isSaid) << line;
    }
}

// Whatever the words, a prediction comes back, and soon.
TEST(Images, HostileWords) {
    const std::string words[] = {"''", "--", "-",  "--out", "-o",        "-c", "'\xff.png'",          "%", "'|:@%['",
                                 ":",  "+x", "-é", "-vf",   "'scale=x'", "-i", std::string(9000, '.')};
    for (const char* command : {"sips -Z 1", "magick", "convert a.png", "gifsicle -b", "iconutil -c icns", "mogrify",
                                "ffmpeg -i a.png", "ffprobe", "brindlet_animated_gif"})
        for (const auto& first : words)
            for (const auto& second : words) {
                FakeDisk disk = imageDisk();
                const AnalysisResult result = predict(std::string(command) + " " + first + " " + second, disk);
                EXPECT_FALSE(result.analysisError) << command << " " << first << " " << second;
            }
    std::string many = "ffmpeg";
    for (int count = 0; count < 50'000; ++count) many += " x -i -i a.png %";
    FakeDisk disk = imageDisk();
    EXPECT_TRUE(predict(many + " out.mp4", disk).exitCode);
}

// A tool that writes on its way to its help, or while it looks at a picture: nothing happens, and nothing is known.
TEST(Images, ToolsThatWriteAreHeldBack) {
    inOrdinaryProcess([] {
        ScratchFolder scratch;
        for (const char* tool : {"magick", "sips", "gifsicle", "iconutil", "brindlet_animated_gif"}) {
            const std::string script = "#!/bin/sh\necho \"$*\"\necho x > changed\nrm -f a.png\n";
            ::chmod(scratch.write(tool, script).text().c_str(), 0755);
        }
        scratch.write("here/a.png", "");
        const auto before = scratch.snapshot();
        const auto launcher = openReadOnlyLauncher();
        for (const char* line : {"magick identify a.png", "magick -version", "sips --help", "gifsicle --help",
                                 "iconutil -h", "brindlet_animated_gif -h"}) {
            const auto files = openFileSystem();
            const AnalysisServices services{*files, *launcher, builtInCommands(),
                                            [&] { return scratch.path().text() + ":/usr/bin:/bin"; }, scratch.path()};
            BasherAnalysis analysis(Basher(line), scratch.path("here"), {},
                                    std::make_shared<BasherAnalysisState>(*files), services);
            EXPECT_EQ(outcome(analysis.analyse()), "? unknown") << line;
        }
        EXPECT_EQ(scratch.snapshot(), before);
    });
}

}  // namespace images_tests
}  // namespace brindlet
