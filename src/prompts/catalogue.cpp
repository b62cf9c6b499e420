#include "prompts/catalogue.h"

#include <algorithm>
#include <iterator>

#include "prompts/catalogue_rows.h"

namespace brindlet {

namespace {

// These look at the letters as they are typed and named, also where the search takes capitals for small letters.
bool requestNamesWebp(const ExtraRuleContext& context) {
    return context.prompt.find("webp") != std::string::npos;
}

bool isPdfSelected(const ExtraRuleContext& context) {
    return std::ranges::find(context.fileExtensions, "pdf") != context.fileExtensions.end();
}

bool isAnythingSelected(const ExtraRuleContext& context) {
    return !context.fileExtensions.empty();
}

bool isOneItemSelected(const ExtraRuleContext& context) {
    return context.fileCount == 1;
}

constexpr CategoryRows (*runs[])() = {
    videoCategories,       imageCategories,     documentCategories, fileCategories,     countingCategories,
    everydayCategories,    selectionCategories, commandCategories,  searchCategories,   pdfCategories,
    imageEffectCategories, pandocCategories,    packageCategories,  printingCategories, popplerCategories,
    gifCategories,         terminalCategories,  iconCategories,     tidyingCategories,  machineCategories,
};

}  // namespace

namespace rules {

constexpr ExtraRule mediaSizesByFour{.rule = "ffmpeg: width and height need to be divisible by 4"};

constexpr ExtraRule webpNeedsFfmpeg{.rule = "If request is to output webp, use ffmpeg since sips can't.",
                                    .when = requestNamesWebp};

constexpr ExtraRule sipsOutputFormat{.rule = "sips: Use '-s format' if output format doesn't match input"};

constexpr ExtraRule sipsWidthOrHeight{
    .rule =
        "sips: Use resampleWidth or resampleHeight if user wants a specific width or height, "
        "otherwise you can use -Z"};

constexpr ExtraRule textutilReadsNoPdf{
    .rule = "textutil: doesn't work with PDF files, if user tries to do so then echo an error", .when = isPdfSelected};

constexpr ExtraRule zipArchiveName{
    .rule =
        "zip: If possible, choose a good archive name based on user's selected filenames rather "
        R"(than "archive.zip")",
    .when = isAnythingSelected};

constexpr ExtraRule zipManyFiles{
    .rule =
        "zip: Use $SPACE_SEPARATED_FILE_NAMES rather than $FILE_NAME for zip, in case user wants "
        "to reuse command for multiple files in future.",
    .when = isOneItemSelected};

constexpr ExtraRule sizeOrResolution{
    .rule = "getting 'image size': If there's ambiguity between file size and resolution, get both"};

constexpr ExtraRule finderSelectTool{
    .rule =
        "finderSelect: If user wants to select files, use this custom tool, piping in the input "
        "from 'find' (or 'mdfind') command"};

constexpr ExtraRule deepOrShallow{
    .rule =
        "When user says 'find' or 'search', prefer deep search (with mdfind); if they say "
        "'select' prefer shallow (find . -maxdepth 1)"};

constexpr ExtraRule mdfindPatterns{
    .rule =
        "mdfind: Only works with wildcard patterns at the start and end of the pattern. For more "
        "complex filtering, use grep"};

constexpr ExtraRule presentFileNames{
    .rule =
        "presentFiles: If you want to present the user with a list of file names, use this "
        "custom tool, which expects filenames separated by newlines."};

constexpr ExtraRule presentItem{
    .rule =
        "presentFiles: If you want to present an item in their file system, use this custom "
        "tool, which expects one or more filenames separated by newlines."};

constexpr ExtraRule gsPresets{
    .rule =
        "gs: Compression preset options are: /screen (low), /ebook (medium), /printer (high), "
        "/prepress (very high)"};

constexpr ExtraRule gsDevices{
    .rule =
        "gs: Use -sDEVICE=png16m for color PNG output, -sDEVICE=jpeg for JPEG output, etc. QPDF "
        "cannot convert PDFs to images."};

constexpr ExtraRule qpdfPassword{.rule = "qpdf: If user doesn't supply a password explicitly, echo a request for one"};

constexpr ExtraRule montageGrid{.rule = "Montage: Set grid size based on number of selected files"};

constexpr ExtraRule brewLeaves{.rule = "brew leaves preferred over brew list"};

constexpr ExtraRule terminalHere{.rule = "Always open the current directory ('.') in Terminal, never a file."};

constexpr ExtraRule fiotrafOptions{
    .rule =
        "fiotraf: Available options include: --by-date, --by-extension, --copy (makes copies of "
        R"(the tidied files),  --contains "some str" (filters the files to organize), but you )"
        "ALWAYS end with --execute"};

constexpr ExtraRule sysctlKeys{.rule =
                                   "sysctl: Other keys that may be relevant: hw.ncpu, hw.physicalcpu, hw.logicalcpu, "
                                   "machdep.cpu.brand_string, kern.boottime."};

}  // namespace rules

bool fitsSelection(SingleMultiple kind, std::size_t fileCount) {
    switch (kind) {
        case SingleMultiple::none:
            return fileCount == 0;
        case SingleMultiple::single:
            return fileCount == 1;
        case SingleMultiple::multiple:
            return fileCount >= 2;
        case SingleMultiple::singleOrMultiple:
            return fileCount >= 1;
        case SingleMultiple::singleMultipleOrNone:
            break;
    }
    return true;
}

const std::vector<PromptSimilarityCategory>& catalogueCategories() {
    static const CategoryRows categories = [] {
        CategoryRows result;
        for (const auto run : runs) std::ranges::move(run(), std::back_inserter(result));
        return result;
    }();
    return categories;
}

const PromptSimilarityCategory* categoryWithId(std::string_view id) {
    const auto& categories = catalogueCategories();
    const auto found = std::ranges::find(categories, id, &PromptSimilarityCategory::id);
    return found == categories.end() ? nullptr : &*found;
}

}  // namespace brindlet
