#include "prompts/quick_commands.h"

#include <algorithm>
#include <set>

#include "prompts/quick_tables.h"
#include "text/character_properties.h"
#include "text/characters.h"
#include "text/regex.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

struct Selection {
    std::set<std::string> extensions;  // in lower case; files without one don't count
    std::size_t fileCount = 0;
};

// A compressed tar archive counts as "tgz", so that "gz" is left for single compressed files.
std::string extensionOf(const FilePath& file) {
    const std::string name = lowercased(file.name());
    return name.ends_with(".tar.gz") ? "tgz" : std::string(pathExtension(name));
}

Selection selectionOf(const std::vector<FilePath>& files) {
    Selection selection{.extensions = {}, .fileCount = files.size()};
    for (const FilePath& file : files) selection.extensions.insert(extensionOf(file));
    selection.extensions.erase("");
    return selection;
}

bool fits(const quick::FileCondition& condition, const Selection& selection) {
    if (!condition) return true;
    const auto& extensions = selection.extensions;
    return !extensions.empty() && std::all_of(extensions.begin(), extensions.end(), [&](const std::string& extension) {
        return quick::contains(*condition, extension);
    });
}

// Without all that is neither letter, number nor blank: "to .png!" asks for what "to png" asks for.
std::string withoutPunctuation(std::string_view text) {
    std::string kept;
    for (const std::string_view character : characters(text)) {
        const char32_t first = decodeScalar(character, 0).value;
        if (isLetter(first) || isNumber(first) || isBlank(first)) kept += character;
    }
    return std::string(trimmed(kept));
}

// "png" of "convert this to a png" and of "make it a png".
std::optional<std::string> formatAskedFor(const std::string& request) {
    // Only the first "make" counts: where no article and format stand behind it, none do behind a later one. Trying
    // those too would make a long request quadratic.
    static const Regex patterns[] = {
        Regex(R"(\b(?:to|into|as)\s+(?:a|an)?\s*(?<format>[a-z0-9 ]+))"),
        Regex(R"(^(?>.*?\bmake\b).*?(?:a|an|the)\s+(?<format>[a-z0-9 ]+))"),
    };
    for (const Regex& pattern : patterns) {
        const auto match = pattern.find(request);
        const std::string_view format = match ? trimmed(*match->group("format")) : "";
        if (!format.empty()) return std::string(format);
    }
    return std::nullopt;
}

std::string filledIn(std::string_view text, std::string_view format) {
    const std::string capitals = uppercased(format);
    const quick::FormatName* const name = quick::nameOfFormat(format);
    std::string filled = replacedAll(text, "<format>", format);
    filled = replacedAll(filled, "<FORMAT>", capitals);
    filled = replacedAll(filled, "<extension>", name ? name->extension : format);
    return replacedAll(filled, "<label>", name ? name->label : std::string_view(capitals));
}

std::optional<QuickCommand> conversion(std::string_view text, const Selection& selection) {
    text.remove_prefix(std::min(text.find_first_not_of('.'), text.size()));
    const std::string_view format = quick::formatForAlias(text);
    for (const quick::ConversionRow& row : quick::conversionRows()) {
        if (!quick::contains(row.formats, format) || !fits(row.files, selection)) continue;
        return QuickCommand{filledIn(row.command.forCount(selection.fileCount), format),
                            summaries::fixed(filledIn(row.summary, format))};
    }
    return std::nullopt;
}

std::optional<QuickCommand> folderAction(std::string_view request, std::string_view unpunctuated,
                                         const Selection& selection) {
    for (const quick::FolderActionRow& row : quick::folderActionRows()) {
        const std::string_view command = row.command.forCount(selection.fileCount);
        if (command.empty() || !quick::contains(row.requests, row.ignoresPunctuation ? unpunctuated : request))
            continue;
        return QuickCommand{std::string(command), summaries::fixed(std::string(row.summary))};
    }
    return std::nullopt;
}

// The extension that a noun means, also in its plural: "pdf" for "pdfs".
std::optional<std::string_view> selectableExtension(std::string_view noun) {
    if (quick::isSelectable(noun)) return noun;
    if (!noun.ends_with('s')) return std::nullopt;
    noun.remove_suffix(1);
    return quick::isSelectable(noun) ? std::optional(noun) : std::nullopt;
}

std::optional<QuickCommand> select(const std::string& unpunctuated) {
    static const Regex request(R"(^select\s+(?:(?<which>all|first|last)\s+)?(?<noun>\S+)$)");
    const auto match = request.find(unpunctuated);
    if (!match) return std::nullopt;
    const auto extension = selectableExtension(*match->group("noun"));
    if (!extension) return std::nullopt;
    const std::string_view which = match->group("which").value_or("all");
    std::string command = "find . -maxdepth 1 -iname '*." + std::string(*extension) + "'";
    if (which == "first") command += " | head -n 1";
    if (which == "last") command += " | tail -n 1";
    return QuickCommand{command + " | finderSelect", summaries::selected};
}

std::optional<QuickCommand> information(std::string_view unpunctuated, const Selection& selection) {
    for (const quick::InformationRow& row : quick::informationRows())
        if (quick::contains(row.requests, unpunctuated) && fits(row.files, selection))
            return QuickCommand{row.command, row.summary};
    return std::nullopt;
}

}  // namespace

std::optional<QuickCommand> quickCommand(std::string_view prompt, const std::vector<FilePath>& files) {
    const std::string request = lowercased(trimmed(prompt));
    const std::string unpunctuated = withoutPunctuation(request);
    const Selection selection = selectionOf(files);

    std::optional<QuickCommand> answer;
    if (const auto format = formatAskedFor(unpunctuated)) answer = conversion(*format, selection);
    if (!answer) answer = conversion(request, selection);
    if (!answer && unpunctuated != request) answer = conversion(unpunctuated, selection);
    if (!answer) answer = folderAction(request, unpunctuated, selection);
    if (!answer) answer = select(unpunctuated);
    if (!answer) answer = information(unpunctuated, selection);
    return answer;
}

}  // namespace brindlet
