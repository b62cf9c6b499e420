#include "prompts/system_prompt.h"

#include <algorithm>
#include <array>
#include <optional>

#include <fmt/format.h>

#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

struct Limits {
    long categories;   // asked of the search, and examples in all
    std::size_t rich;  // leading categories that may give more than one example
};
constexpr Limits normalLimits{6, 4}, fastLimits{3, 1};
constexpr std::size_t examplesOfRich = 2, examplesOfOthers = 1;

constexpr std::size_t mostNames = 10;  // beyond so many files their types are told instead
constexpr std::size_t mostTypes = 10;  // beyond so many types a few stand for all
constexpr std::size_t typesOfVariety = 5;

constexpr std::string_view baseTools[] = {"ffmpeg", "ffprobe", "sips", "textutil", "ls",
                                          "du",     "mv",      "cp",   "zip",      "unzip"};

constexpr std::string_view intro =
    "<intro>\nYou are an efficient natural language to bash conversion machine, acting in the context of a Mac Finder "
    "window.\n";
constexpr std::string_view noSelection =
    "User is looking at a Finder window in a specific directory with no specific files selected (intentionally or "
    "not.)\n";
constexpr std::string_view afterOneItem =
    "\nYour single command may be applied to other files in future, so keep it generic where possible.\n"
    "User's request may or may not relate to this file.\n";
constexpr std::string_view afterSeveralItems =
    "\nIn MOST cases your commands will be applied repeatedly to multiple files using filename variables, so keep them "
    "generic where possible.\n\nUser's request may or may not relate to these files.\n";
constexpr std::string_view fixedExamples =
    "</intro>\n\n<examples>\n"
    "PROMPT: <absolute nonsense>\nYOUR OUTPUT: echo \"Please can you clarify your request?\"\n\n"
    "PROMPT: What's the weather here?\nYOUR OUTPUT: echo \"What's your location?\"\n\n";
constexpr std::string_view exampleWithoutSelection =
    "PROMPT: convert to mp4\nYOUR OUTPUT: echo \"Please select a video file\"\n\n";
constexpr std::string_view exampleOfLastResort =
    "PROMPT: Create a new 'video files' folder\nYOUR OUTPUT: mkdir -p \"video files\"";
constexpr std::string_view beforeTools =
    "Rules:\n - Prefer `mv` to trash over `rm`\n"
    " - User MAY make their request as a literal (pseudo-)bash command. Just pass it through!\n"
    " - ONLY use these tools: ";
constexpr std::string_view afterTools =
    ", built-in mac tools, or tools explicitly named by user\n - ONLY output a single line of bash\n"
    " - If you need clarification, or further information, ask your question in a pure echo command without variable "
    "expansion, in no more than 3-8 words, but only if really necessary\n";
constexpr std::string_view fileRuleForNone =
    " - Since no files are selected, you can use '*' wildcard for ALL files (ONLY when appropriate, e.g. for zip).";
constexpr std::string_view fileRuleForOne =
    " - Don't use explicit filename unless you absolutely have to.\n"
    " - Use the variables $FILE_NAME, $FILE_BASENAME, and $FILE_EXTENSION to run the command on the selected file.";
constexpr std::string_view fileRuleForSeveral =
    " - Don't use explicit filenames unless you absolutely have to.\n"
    " - Use the variables $FILE_NAME, $FILE_BASENAME, and $FILE_EXTENSION to run the command once per selected file. "
    "To "
    "process all selected files at once (e.g. for zip or wc), use the $SPACE_SEPARATED_FILE_NAMES variable.";

// Keeps the first of equal ones, in their order.
class Unique {
  public:
    void add(std::string_view text) {
        if (std::find(texts_.begin(), texts_.end(), text) == texts_.end()) texts_.emplace_back(text);
    }
    const std::vector<std::string>& texts() const { return texts_; }

  private:
    std::vector<std::string> texts_;
};

// --- the selection ---

std::string quotedName(const FilePath& file, bool isFolder) {
    std::string name(file.name());
    if (isFolder && !name.ends_with('/')) name += '/';
    return '"' + replacedAll(name, "\"", "\\\"") + '"';
}

std::string typesSuffix(const std::vector<FilePath>& files) {
    Unique unique;
    for (const FilePath& file : files)
        if (const std::string type = lowercased(pathExtension(file.name())); !type.empty()) unique.add(type);
    std::vector<std::string> types = unique.texts();
    if (types.empty()) return "";
    if (types.size() == 1) return " with type: " + types.front();
    if (types.size() <= mostTypes) return " with types: " + joined(types, ", ");
    types.resize(typesOfVariety);
    return " with a variety of types including: " + joined(types, ", ");
}

std::string counted(std::size_t count, std::string_view noun) {
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string selectionParagraph(const std::vector<FilePath>& files, FileSystem& disk) {
    if (files.empty()) return std::string(noSelection);
    std::size_t folders = 0;
    std::vector<std::string> names;
    for (const FilePath& file : files) {
        const bool isFolder = disk.look(file) == ItemKind::folder;
        folders += isFolder ? 1 : 0;
        if (files.size() <= mostNames) names.push_back(quotedName(file, isFolder));
    }
    const std::string suffix = names.empty() ? typesSuffix(files) : ": " + joined(names, ", ");
    if (files.size() == 1)
        return fmt::format("User has ONE selected {}{}{}", folders == 1 ? "folder" : "file", suffix, afterOneItem);
    const std::size_t others = files.size() - folders;
    const std::string count = folders == 0  ? counted(others, "file")
                              : others == 0 ? counted(folders, "folder")
                                            : counted(others, "file") + " and " + counted(folders, "folder");
    return fmt::format("User has {} selected{}{}", count, suffix, afterSeveralItems);
}

// --- examples, rules and tools ---

struct Collection {
    std::vector<std::string> examples;
    Unique rules;
    Unique tools;
};

void collect(const PromptSimilarityCategory& category, std::size_t limit, const ExtraRuleContext& context,
             Collection& found) {
    bool isFirst = true;
    for (std::size_t at = 0; at < std::min(limit, category.outputExamples.size()); ++at) {
        const auto& example = category.outputExamples[at];
        if (!fitsSelection(example.singleMultiple, context.fileCount)) continue;
        found.examples.push_back(fmt::format("PROMPT: {}\nYOUR OUTPUT: {}", example.prompt, example.expectedCommand));
        if (const auto tools = category.metadata.find("tools"); tools != category.metadata.end())
            for (const std::string& tool : splitNonEmpty(tools->second, " ")) found.tools.add(tool);
        if (!isFirst) continue;
        isFirst = false;
        for (const ExtraRule& rule : category.extraRules)
            if (rule.when == nullptr || rule.when(context)) found.rules.add(rule.rule);
    }
}

Collection collected(std::string_view prompt, const Limits& limits, const std::vector<FilePath>& files,
                     const PromptSources& sources,
                     const std::vector<PromptSimilaritySearch::SearchResult>& categories) {
    ExtraRuleContext context{{}, files.size(), std::string(prompt)};
    for (const FilePath& file : files) context.fileExtensions.emplace_back(pathExtension(file.text()));
    Collection found;
    for (std::size_t at = 0; at < categories.size(); ++at)
        collect(*categories[at].category, at < limits.rich ? examplesOfRich : examplesOfOthers, context, found);
    // The tools and rules of examples that go here stay.
    found.examples.resize(std::min(found.examples.size(), static_cast<std::size_t>(limits.categories)));
    if (found.examples.empty()) return {{std::string(exampleOfLastResort)}, {}, {}};
    for (const std::string_view tool : baseTools) found.tools.add(tool);
    for (const std::string& tool : sources.installedCommands) found.tools.add(tool);
    return found;
}

std::string notes(const std::vector<std::string>& rules) {
    if (rules.empty()) return "";
    return "NOTES ON ABOVE EXAMPLES:\n - " + joined(rules, "\n - ") + "\n\n";
}

std::string_view fileRule(std::size_t fileCount) {
    if (fileCount == 0) return fileRuleForNone;
    return fileCount == 1 ? fileRuleForOne : fileRuleForSeveral;
}

const Limits& limitsOf(ModelPace pace) {
    return pace == ModelPace::fast ? fastLimits : normalLimits;
}

}  // namespace

long categoryLimit(ModelPace pace) {
    return limitsOf(pace).categories;
}

std::string composeSystemPrompt(std::string_view prompt, ModelPace pace, const std::vector<FilePath>& files,
                                const PromptSources& sources) {
    return composeSystemPrompt(prompt, pace, files, sources,
                               sources.search.similarCategories(prompt, files, categoryLimit(pace)));
}

std::string composeSystemPrompt(std::string_view prompt, ModelPace pace, const std::vector<FilePath>& files,
                                const PromptSources& sources,
                                const std::vector<PromptSimilaritySearch::SearchResult>& categories) {
    const Collection found = collected(prompt, limitsOf(pace), files, sources, categories);
    std::string text(intro);
    text += selectionParagraph(files, sources.files);
    text += fixedExamples;
    if (files.empty()) text += exampleWithoutSelection;
    text += joined(found.examples, "\n\n");
    text += "\n</examples>\n\n<rules>\n";
    text += notes(found.rules.texts());
    text += beforeTools;
    text += joined(found.tools.texts(), ", ");
    text += afterTools;
    text += fileRule(files.size());
    text += "\n</rules>";
    return text;
}

}  // namespace brindlet
