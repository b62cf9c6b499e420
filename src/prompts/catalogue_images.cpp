// What people want of images with the tools that the system has: another format, another size, an icon.
#include "prompts/catalogue_rows.h"
#include "prompts/word_lists.h"

namespace brindlet {

using enum SingleMultiple;

CategoryRows imageCategories() {
    return {
        {
            .id = "simpleImageConvert",
            .prompts = {"<as?> <format>", "jpg", "png", "webp", "jpeg", "tiff", "raw", "svg", "heic", "gif"},
            .variants = {{"as", {"as", "to", "into", "to"}}, {"format", words::imageTargetFormats()}},
            .fileFormats = words::imageFormats(),
            .bias = 1.1F,
            .metadata = {{"tools", "sips"}},
            .outputExamples = {{.prompt = "jpg",
                                .expectedCommand = R"(sips -s format jpeg "$FILE_NAME" --out "${FILE_BASENAME}.jpg")",
                                .singleMultiple = singleOrMultiple}},
            .extraRules = {rules::webpNeedsFfmpeg},
        },
        {
            .id = "imageConvert",
            .prompts = {"convert <this?> to <a?> <format>", "make <a?> <format>", "export as <a?> <format>",
                        "save as <a?> <format>", "turn <this?> <format?> into <a?> <format>",
                        "make <this?> <format?> into <a?> <format>", "convert <this?> <format?> to <a?> <format>",
                        "convert <this?> <format?> into <a?> <format>"},
            .variants = {{"this", words::thisPicture()}, {"a", {"a", "an"}}, {"format", words::imageTargetFormats()}},
            .fileFormats = words::imageFormats(),
            .bias = 1.1F,
            .metadata = {{"tools", "sips"}},
            .outputExamples = {{.prompt = "make a jpg",
                                .expectedCommand = R"(sips -s format jpeg "$FILE_NAME" --out "${FILE_BASENAME}.jpg")",
                                .singleMultiple = singleOrMultiple}},
            .extraRules = {rules::webpNeedsFfmpeg},
        },
        {
            .id = "imageInfo",
            .prompts = {"<property>?", "what's the <property>", "how <sizeAdj> is this <image>", "how <sizeAdj> is it",
                        "what <property> is it"},
            .variants = {{"property", {"resolution",     "dimensions",       "size",
                                       "resolution",     "dimensions",       "width",
                                       "height",         "width and height", "dpi",
                                       "pixel size",     "pixel dimensions", "aspect ratio",
                                       "color space",    "colour space",     "color profile",
                                       "colour profile", "bit depth",        "orientation",
                                       "format",         "number of pixels", "pixel count"}},
                         {"sizeAdj", words::sizeAdjectives()},
                         {"image", words::joinedWords({words::pictureWords(), words::imageFormats()})}},
            .fileFormats = words::imageFormats(),
            .metadata = {{"tools", "sips"}},
            .outputExamples = {{.prompt = "resolution?",
                                .expectedCommand = R"(sips -g pixelWidth -g pixelHeight "$FILE_NAME")",
                                .singleMultiple = singleOrMultiple}},
        },
        {
            .id = "imageResizeAndConvert",
            .prompts = {"resize to <dim><x><dim> <format>", "fit in <dim><px?> <box?> <format>",
                        "make <a?> <dim><px?> <format>", "export <this?> <as?> <dim><px?> <a?> <format>"},
            .variants = {{"dim", words::joinedWords(
                                     {words::imageDimensions(), {"512x512", "1024x1024", "800x600", "640x480"}})},
                         {"x", {"x", "x", " x ", " by "}},
                         {"format", words::joinedWords({words::imageTargetFormats(), {"version", "image"}})},
                         {"px", words::pixelWords()},
                         {"box", {"box", "square", "frame", "bounding box"}},
                         {"a", {"a", "an"}},
                         {"this", words::thisPicture()},
                         {"as", {"as", "to", "as a", "at"}}},
            .fileFormats = words::imageFormats(),
            .metadata = {{"tools", "sips"}},
            .outputExamples = {{.prompt = "make a 1024x1024 jpg",
                                .expectedCommand =
                                    R"(sips -s format jpeg -Z 1024 "$FILE_NAME" --out "${FILE_BASENAME}_1024.jpg")",
                                .singleMultiple = singleOrMultiple}},
            .extraRules = {rules::webpNeedsFfmpeg, rules::sipsOutputFormat, rules::sipsWidthOrHeight},
        },
        {
            .id = "imageExactWidthOrHeight",
            .prompts = {"<dim><px?> <wide>", "<make> <this?> <to?> <dim> <width>",
                        "<make> <this?> <to?> <dim><px?> <wide>", "<make> <width> <dim>",
                        "<make> <this?> <image> <dim> <width>", "<dim><w>", "<make> <width> = <dim><px?>"},
            .variants = {{"dim", words::imageDimensions()},
                         {"width", {"width", "height"}},
                         {"w", {"w", "h"}},
                         {"wide", {"wide", "high", "tall"}},
                         {"px", {"px", " pixels", "p"}},
                         {"format", words::imageFormats()},
                         {"image", words::joinedWords({{"image", "picture", "photo", "pic"}, words::imageFormats()})},
                         {"to", {"to", "as", "into"}},
                         {"make", {"make", "set", "export", "resize"}}},
            .fileFormats = words::imageFormats(),
            .metadata = {{"tools", "sips"}},
            .outputExamples =
                {{.prompt = "1024px wide",
                  .expectedCommand =
                      R"(sips --resampleWidth 1024 "$FILE_NAME" --out "${FILE_BASENAME}_1024.${FILE_EXTENSION}")",
                  .singleMultiple = singleOrMultiple}},
            .extraRules = {rules::webpNeedsFfmpeg, rules::sipsOutputFormat, rules::sipsWidthOrHeight},
        },
        {
            .id = "imageExactWidthOrHeightNoConvert",
            .prompts = {"<dim><px?> <wide>", "<make> <this?> <to?> <dim> <width>",
                        "<make> <this?> <to?> <dim><px?> <wide>", "<make> <width> <dim>",
                        "<make> <this?> <image> <dim> <width>", "<dim><w>", "<make> <width> = <dim><px?>"},
            .variants = {{"dim", words::imageDimensions()},
                         {"px", words::pixelWords()},
                         {"wide", {"wide", "high", "tall", "wide"}},
                         {"make", {"make", "make", "set", "resize", "resize", "scale", "change"}},
                         {"this", {"this", "this", "it", "these", "the"}},
                         {"to", {"to", "to", "to be", "at"}},
                         {"width", {"width", "height"}},
                         {"image", {"image", "picture", "photo", "pic", "jpg", "png"}},
                         {"w", {"w", "h", "px", "px"}}},
            .fileFormats = words::imageFormats(),
            .bias = 1.1F,
            .metadata = {{"tools", "sips"}},
            .outputExamples =
                {{.prompt = "resize to 1024px wide",
                  .expectedCommand =
                      R"(sips --resampleWidth 1024 "$FILE_NAME" --out "${FILE_BASENAME}_1024.${FILE_EXTENSION}")",
                  .singleMultiple = singleOrMultiple}},
            .extraRules = {rules::webpNeedsFfmpeg, rules::sipsOutputFormat, rules::sipsWidthOrHeight},
        },
        {
            .id = "imageExactWidthOrHeightAndConvert",
            .prompts = {"<dim><px?> <wide> <format>", "<make> <this?> <to?> <dim> <width> <format>",
                        "<make> <this?> <to?> <dim><px?> <wide> <format>", "<make> <width> <dim> <format>",
                        "<make> <this?> <image> <dim> <width> <format>", "<dim><w> <format>",
                        "<make> <width> = <dim><px?> <format>", "<to?> <format>, <dim><px?> <wide>",
                        "<convert> <to?> <format>, <dim><px?> <wide>"},
            .variants = {{"dim", words::imageDimensions()},
                         {"px", words::pixelWords()},
                         {"wide", {"wide", "high", "tall", "wide"}},
                         {"format", words::imageTargetFormats()},
                         {"make", {"make", "set", "resize", "scale", "export", "save"}},
                         {"this", {"this", "these", "the", "it"}},
                         {"to", {"to", "into", "as"}},
                         {"width", {"width", "height"}},
                         {"image", {"image", "picture", "photo", "pic", "jpg", "png"}},
                         {"w", {"w", "h", "px", "px"}},
                         {"convert", {"convert", "convert", "change", "turn", "export", "save"}}},
            .fileFormats = words::imageFormats(),
            .bias = 1.1F,
            .metadata = {{"tools", "sips"}},
            .outputExamples = {{.prompt = "convert to jpg, 1024px wide",
                                .expectedCommand = R"(sips -s format jpeg --resampleWidth 1024 "$FILE_NAME" --out )"
                                                   R"("${FILE_BASENAME}_1024.jpg")",
                                .singleMultiple = singleOrMultiple}},
            .extraRules = {rules::webpNeedsFfmpeg, rules::sipsOutputFormat, rules::sipsWidthOrHeight},
        },
        {
            .id = "imageRotateFlip",
            .prompts = {"<make> <a?> rotated version", "<make> <a?> rotated version of <this?> <image>",
                        "rotate <this?> <image> <by?> <angle> <degrees?>", "rotate <by?> <angle> <degrees?>",
                        "rotate <this?> <right>", "flip <this?> <image> <horizontally>", "flip <horizontally>"},
            .variants = {{"make", {"make", "create"}},
                         {"this", {"this", "this", "the", "these", "it"}},
                         {"image", {"image", "picture", "photo", "pic", "images", "photos", "pictures"}},
                         {"angle", {"90", "180", "270", "90", "180", "45", "-90", "ninety"}},
                         {"degrees", words::degreeWords()},
                         {"right",
                          {"right", "left", "clockwise", "counterclockwise", "anticlockwise", "counter clockwise",
                           "to the right", "to the left", "cw", "ccw", "upside down"}},
                         {"horizontally", words::flipDirections()}},
            .fileFormats = words::imageFormats(),
            .bias = 1.1F,
            .metadata = {{"tools", "sips"}},
            .outputExamples = {{.prompt = "rotate 90 degrees",
                                .expectedCommand =
                                    R"(sips -r 90 "$FILE_NAME" --out "${FILE_BASENAME}_90.${FILE_EXTENSION}")",
                                .singleMultiple = singleOrMultiple}},
            .extraRules = {rules::webpNeedsFfmpeg, rules::sipsOutputFormat, rules::sipsWidthOrHeight},
        },
    };
}

CategoryRows iconCategories() {
    return {
        {
            .id = "generateIcnsFromImage",
            .prompts = {"icns", "<make> <an?> <icns> <from?> <this?> <image?>",
                        "<convert> <this?> <image?> <into?> <an?> <icns>"},
            .variants = {{"make", {"make", "make", "create", "generate", "save as"}},
                         {"an", {"an", "a"}},
                         {"icns", {"icns", "icns", "icns file", "icns icon", "mac icon", "app icon"}},
                         {"from", {"from", "of", "using", "with"}},
                         {"this", {"this", "this", "these", "the", "my"}},
                         {"image", {"image", "picture", "photo", "pic", "png", "logo"}},
                         {"convert", {"convert", "turn", "change"}},
                         {"into", {"into", "to", "as"}}},
            .biasTerms = {{"icns", 1.1F}},
            .fileFormats = words::imageFormats(),
            .bias = 1.1F,
            .metadata = {{"tools", "sips iconutil"}},
            .outputExamples =
                {{.prompt = "make an icns from this image",
                  .expectedCommand =
                      R"(mkdir -p "${FILE_BASENAME}.iconset" && for size in 16 32 128 256 512; do sips -z )"
                      R"("$size" "$size" "$FILE_NAME" --out )"
                      R"sh("${FILE_BASENAME}.iconset/icon_${size}x${size}.png"; sips -z "$((size * 2))" "$((size )sh"
                      R"sh(* 2))" "$FILE_NAME" --out "${FILE_BASENAME}.iconset/icon_${size}x${size}@2x.png"; )sh"
                      R"(done && iconutil -c icns "${FILE_BASENAME}.iconset" && rm -rf )"
                      R"("${FILE_BASENAME}.iconset")",
                  .singleMultiple = single},
                 {.prompt = "make an icns from these images",
                  .expectedCommand =
                      R"(mkdir -p "AppIcon.iconset" && for file in $SPACE_SEPARATED_FILE_NAMES; do cp "$file" )"
                      R"("AppIcon.iconset/"; done && iconutil -c icns "AppIcon.iconset" && rm -rf )"
                      R"("AppIcon.iconset")",
                  .singleMultiple = multiple}},
        },
        {
            .id = "generateIcoFromImage",
            .prompts = {"icns", "<make> <an?> <ico> <from?> <this?> <image?>",
                        "<convert> <this?> <image?> <into?> <an?> <ico>"},
            .variants = {{"make", {"make", "make", "create", "generate", "save as"}},
                         {"an", {"an", "a"}},
                         {"ico", {"ico", "ico", "ico file", "favicon", "favicon", "windows icon", "favicon.ico"}},
                         {"from", {"from", "of", "using", "with"}},
                         {"this", {"this", "this", "these", "the", "my"}},
                         {"image", {"image", "picture", "photo", "pic", "png", "logo"}},
                         {"convert", {"convert", "turn", "change"}},
                         {"into", {"into", "to", "as"}}},
            .biasTerms = {{"ico", 1.1F}},
            .fileFormats = words::imageFormats(),
            .bias = 1.1F,
            .metadata = {{"tools", "sips iconutil"}},
            .outputExamples = {{.prompt = "make an ico from this image",
                                .expectedCommand =
                                    R"(magick "$FILE_NAME" -define icon:auto-resize=256,128,64,48,32,16 )"
                                    R"("${FILE_BASENAME}.ico")",
                                .singleMultiple = single}},
        },
    };
}

}  // namespace brindlet
