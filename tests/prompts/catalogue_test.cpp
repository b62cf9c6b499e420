#include "prompts/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "prompts/word_lists.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {
namespace catalogue_tests {

// The order decides between equal scores.
constexpr std::string_view order =
    "simpleVideoConvert videoConvert videoFullExplicitSizeAndConvert videoSizeHeightOnlyAndConvert videoInfo "
    "simpleImageConvert imageConvert imageInfo imageResizeAndConvert imageExactWidthOrHeight "
    "imageExactWidthOrHeightNoConvert imageExactWidthOrHeightAndConvert imageRotateFlip "
    "simpleTextutilFormatConversion summariseNeedsTextUtil summarisePlainText archive unarchive zipinfo deletion "
    "calculations moving rename imageSizeAmbiguity fileSize fileType fileMetadata wordCountInComplexFormat "
    "wordCountPureText codeLineCount git gitExists currencyConversion weatherCheck openWith newTextFile download "
    "select_shallow find_deep selectSpecificFile mdfindSelect runBashCommand caffeinate findAll findAllWithContent "
    "which ghostscript_compressPdf ghostscript_convertToImage qpdf_mergePdfs qpdf_deleteLastPage "
    "ghostscript_removePdfMetadata qpdf_extractPage qpdf_split_pdf qpdf_merge_pdfs qpdf_encrypt_pdf "
    "qpdf_remove_password qpdf_rotate_page imagemagick_crop imagemagick_rotate_flip imagemagick_watermark "
    "imagemagick_thumbnail imagemagick_strip_metadata imagemagick_animated_gif imagemagick_transparent_background "
    "imagemagick_border imagemagick_montage imagemagick_colorize imagemagick_blur pandoc_convert_document "
    "pandoc_merge_documents pandoc_extract_toc brew_install brew_uninstall brew_list_check_installed "
    "print_document_lp poppler_pdftotext poppler_pdftohtml poppler_pdfinfo poppler_pdfimages brindlet_animated_gif "
    "gifsicle_optimize_gif open_in_terminal ping system_profiler_resolution generateIcnsFromImage "
    "generateIcoFromImage hideFilesInFinder organize organizeByDate sysctlInfo chargerPower batteryChargeTime "
    "sleepOrShutdownComputer";

bool isOneLine(std::string_view text) {
    return !text.empty() && text.find('\n') == std::string_view::npos;
}

// What is wrong with a row, in words; nothing where it is sound.
std::vector<std::string> faults(const PromptSimilarityCategory& row) {
    std::vector<std::string> result;
    const auto fault = [&](bool isFault, std::string_view what, std::string_view where) {
        if (isFault) result.push_back(std::string(what) + ": " + std::string(where));
    };
    fault(row.prompts.empty(), "no template", row.id);
    for (const auto& [name, words] : row.variants) fault(words.empty(), "empty list", name);
    for (const std::string_view text : row.prompts) try {
            PromptGenerator::parseTemplate(text, row.variants);
        } catch (const CatalogueError& error) {
            result.push_back(error.message);
        }
    for (const auto& [term, factor] : row.biasTerms) {
        fault(term.empty() || lowercased(term) != term, "a term that no request holds", term);
        fault(factor <= 1 || factor > 1.5F, "odd factor", term);
    }
    for (const std::string_view format : row.fileFormats)
        fault(format.empty() || lowercased(format) != format || format.starts_with('.'), "odd format", format);
    fault(row.bias < 1 || row.bias > 1.1F, "odd bias", row.id);
    for (const auto& [key, value] : row.metadata) {
        fault(key != "tools", "unknown key", key);
        fault(joined(splitNonEmpty(value, " "), " ") != value || value.empty(), "odd tools", value);
    }
    fault(row.outputExamples.empty(), "no example", row.id);
    for (const auto& example : row.outputExamples)
        fault(!isOneLine(example.prompt) || !isOneLine(example.expectedCommand), "odd example", example.prompt);
    for (const auto& rule : row.extraRules) fault(!isOneLine(rule.rule), "odd rule", rule.rule);
    return result;
}

TEST(Catalogue, EveryRowIsSound) {
    std::vector<std::string> ids;
    for (const auto& row : catalogueCategories()) {
        EXPECT_EQ(faults(row), std::vector<std::string>()) << row.id;
        EXPECT_EQ(categoryWithId(row.id), &row) << row.id << " stands there twice";
        ids.emplace_back(row.id);
    }
    EXPECT_EQ(ids, split(order, " "));
    EXPECT_EQ(categoryWithId("Archive"), nullptr);
    EXPECT_EQ(categoryWithId(""), nullptr);
}

TEST(Catalogue, WhatSteersTheSearch) {
    struct Case {
        std::string_view id, tools;
        const WordList& formats;
        float bias;
        std::vector<std::pair<std::string_view, float>> terms;
    };
    const WordList any;
    const Case cases[] = {
        {"videoInfo", "ffprobe", words::mediaFiles(), 1, {}},
        {"imageConvert", "sips", words::imageFormats(), 1.1F, {}},
        {"imageExactWidthOrHeight", "sips", words::imageFormats(), 1, {}},
        {"summarisePlainText", "cat", words::plainTextFormats(), 1, {}},
        {"archive", "zip unzip", any, 1, {}},
        {"unarchive", "zip unzip", words::archiveFiles(), 1, {}},
        {"imageSizeAmbiguity", "sips file", words::sizedImageFiles(), 1.05F, {}},
        {"moving", "mkdir mv cp", any, 1, {}},
        {"wordCountInComplexFormat", "wc textutil", words::complexDocumentFiles(), 1, {}},
        {"codeLineCount", "wc find xargs cat", words::sourceCodeFiles(), 1, {}},
        {"openWith", "curl", any, 1, {}},
        {"mdfindSelect", "echo finderSelect", any, 1.1F, {}},
        {"runBashCommand", "echo ls pwd python python3", any, 1, {}},
        {"ghostscript_compressPdf", "gs", words::pageDescriptionFiles(), 1, {}},
        {"imagemagick_crop", "magick", words::imageFormats(), 1, {{"crop", 1.1F}, {"cut", 1.1F}, {"trim", 1.1F}}},
        {"imagemagick_border", "magick", words::imageFormats(), 1, {{"border", 1.05F}}},
        {"pandoc_extract_toc", "pandoc", words::pandocInputFiles(), 1, {{"toc", 1.3F}, {"table of contents", 1.3F}}},
        {"brew_uninstall", "brew", any, 1, {{"brew", 1.1F}, {"homebrew", 1.1F}}},
        {"print_document_lp", "lp", words::printableFiles(), 1, {}},
        {"brindlet_animated_gif", "brindlet_animated_gif", words::movieFiles(), 1, {{"gif", 1.2F}}},
        {"generateIcoFromImage", "sips iconutil", words::imageFormats(), 1.1F, {{"ico", 1.1F}}},
        {"organizeByDate", "", any, 1, {{"organize", 1.1F}, {"organise", 1.1F}, {"date", 1.1F}}},
        {"sysctlInfo", "sysctl", any, 1, {{"sysctl", 1.2F}, {"ram", 1.1F}, {"cores", 1.1F}, {"cpu", 1.1F}}},
    };
    for (const auto& [id, tools, formats, bias, terms] : cases) {
        SCOPED_TRACE(id);
        const PromptSimilarityCategory* row = categoryWithId(id);
        ASSERT_NE(row, nullptr);
        const auto found = row->metadata.find("tools");
        EXPECT_EQ(found == row->metadata.end() ? "" : found->second, tools);
        EXPECT_EQ(row->fileFormats, formats);
        EXPECT_EQ(row->bias, bias);
        EXPECT_EQ(row->biasTerms, terms);
    }
}

// How a row's rules begin, as far as they apply.
std::vector<std::string> rulesThatApply(std::string_view id, const ExtraRuleContext& context) {
    std::vector<std::string> result;
    for (const ExtraRule& rule : categoryWithId(id)->extraRules)
        if (!rule.when || rule.when(context)) result.emplace_back(rule.rule.substr(0, 12));
    return result;
}

TEST(Catalogue, RulesApplyWhereTheyShould) {
    struct Case {
        std::string_view id;
        ExtraRuleContext context;
        std::vector<std::string> rules;
    };
    const Case cases[] = {
        {"videoConvert", {}, {"ffmpeg: widt"}},
        {"imageConvert", {{"jpg"}, 1, "to webp"}, {"If request i"}},
        {"imageConvert", {{"jpg"}, 1, "to WEBP"}, {}},
        {"imageRotateFlip", {{"webp"}, 1, "rotate"}, {"sips: Use '-", "sips: Use re"}},
        {"simpleTextutilFormatConversion", {{"doc", "pdf"}, 2, ""}, {"textutil: do"}},
        {"simpleTextutilFormatConversion", {{"PDF"}, 1, ""}, {}},
        {"archive", {{"txt"}, 1, ""}, {"zip: If poss", "zip: Use $SP"}},
        {"archive", {{"txt", "txt"}, 2, ""}, {"zip: If poss"}},
        {"archive", {{""}, 1, ""}, {"zip: If poss", "zip: Use $SP"}},  // a name without extension is selected too
        {"archive", {}, {}},
        {"find_deep", {}, {"finderSelect", "When user sa"}},
        {"select_shallow", {}, {"finderSelect"}},
        {"findAll", {}, {"mdfind: Only", "presentFiles"}},
        {"qpdf_encrypt_pdf", {}, {"qpdf: If use"}},
        {"organize", {}, {"fiotraf: Ava"}},
        {"fileSize", {{"txt"}, 1, "webp"}, {}},
    };
    for (const auto& [id, context, expected] : cases) EXPECT_EQ(rulesThatApply(id, context), expected) << id;
}

// Where quotes, backslashes and odd spaces could get lost.
TEST(Catalogue, TextsWithCharactersOfTheirOwn) {
    EXPECT_EQ(categoryWithId("fileSize")->outputExamples.back().expectedCommand, "du -sh \"$(pwd)\"");
    EXPECT_EQ(categoryWithId("openWith")->outputExamples.front().expectedCommand,
              "open -a /Applications/Sublime\\ Text.app \"$FILE_NAME\"");
    EXPECT_EQ(categoryWithId("rename")->outputExamples.back().expectedCommand,
              "for file in *; do mv \"$file\" \"${file%.*}_new.${file##*.}\"; done");
    EXPECT_EQ(categoryWithId("imagemagick_watermark")->prompts[2], "add \"_\" as text on top of <this?> <image>");
    EXPECT_EQ(categoryWithId("runBashCommand")->prompts[6], "<run?> <python> -c \"import sys; print(sys.version)\"");
    EXPECT_EQ(categoryWithId("imageExactWidthOrHeight")->variants.at("px"), (WordList{"px", " pixels", "p"}));
    EXPECT_NE(categoryWithId("organize")->extraRules[0].rule.find("files),  --contains \"some str\" (filters"),
              std::string_view::npos);
    EXPECT_NE(categoryWithId("generateIcnsFromImage")
                  ->outputExamples[0]
                  .expectedCommand.find(
                      "sips -z \"$((size * 2))\" \"$((size * 2))\" \"$FILE_NAME\" --out \"${FILE_BASENAME}.iconset/"),
              std::string_view::npos);
    EXPECT_EQ(categoryWithId("brew_install")->variants.at("specific").front(), "ffmpeg");
    EXPECT_EQ(words::allFormats().size(), 61U);
}

TEST(Catalogue, ExamplesFitTheirSelection) {
    using enum SingleMultiple;
    const std::pair<SingleMultiple, std::string_view> cases[] = {
        // for 0, 1, 2 and 1000 files
        {none, "y---"},
        {single, "-y--"},
        {multiple, "--yy"},
        {singleOrMultiple, "-yyy"},
        {singleMultipleOrNone, "yyyy"},
    };
    for (const auto& [kind, expected] : cases) {
        std::string fits;
        for (const std::size_t count : {0U, 1U, 2U, 1000U}) fits += fitsSelection(kind, count) ? 'y' : '-';
        EXPECT_EQ(fits, expected) << static_cast<int>(kind);
    }
}

}  // namespace catalogue_tests
}  // namespace brindlet
