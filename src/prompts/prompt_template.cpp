#include "prompts/prompt_template.h"

#include <algorithm>
#include <unordered_set>

#include "prompts/random_choice.h"
#include "text/characters.h"
#include "text/overloaded.h"

namespace brindlet {

namespace {

constexpr std::size_t fruitlessDraws = 10;  // so many in a row that give nothing new end a template
constexpr double leastWeight = 1.0 / 3;     // of the last template against the first
constexpr std::size_t mostShares = 3;       // no template takes more of its share than this, whatever is left over

// Where a bracket stands as a character of its own: one with a combining mark behind it is none.
std::size_t findBracket(std::string_view text, char bracket, std::size_t from) {
    for (std::size_t at = text.find(bracket, from); at != std::string_view::npos; at = text.find(bracket, at + 1))
        if (characterLength(text, at) == 1) return at;
    return std::string_view::npos;
}

TemplateItem itemNamed(std::string_view name, std::string_view text, const Variants& variants) {
    const bool isOptional = name.ends_with('?');
    if (isOptional) name.remove_suffix(1);
    const auto found = variants.find(name);
    if (found != variants.end() && isOptional) return {TemplateItem::MaybeVariant{&found->second}};
    if (found != variants.end()) return {TemplateItem::Variant{&found->second}};
    if (isOptional) return {TemplateItem::MaybeText{std::string(name)}};
    throw CatalogueError{"Unrecognized variant without question mark <" + std::string(name) + "> in template: '" +
                         std::string(text) + "'"};
}

// Appends with any run of spaces as one.
void appendSingleSpaced(std::string& text, std::string_view more) {
    for (const char byte : more)
        if (byte != ' ' || text.empty() || text.back() != ' ') text += byte;
}

void expandInto(std::string& result, const Template& parsed, RandomChoice& random) {
    result.clear();
    const auto oneOf = [&](const WordList& words) { appendSingleSpaced(result, words[random.below(words.size())]); };
    const Overloaded expandItem{
        [&](const TemplateItem::TextItem& item) { appendSingleSpaced(result, item.text); },
        [&](const TemplateItem::MaybeText& item) {
            if (random.half()) appendSingleSpaced(result, item.text);
        },
        [&](const TemplateItem::Variant& item) { oneOf(*item.words); },
        [&](const TemplateItem::MaybeVariant& item) {
            if (random.half()) oneOf(*item.words);
        },
    };
    for (const TemplateItem& item : parsed.items) std::visit(expandItem, item.value);
}

// They add up to 1 and fall in a line from the first to the last.
std::vector<double> weights(std::size_t count) {
    std::vector<double> result(count, 1.0);
    double sum = 0;
    for (std::size_t at = 0; at < count; ++at) {
        if (count > 1) {
            const double t = static_cast<double>(at) / static_cast<double>(count - 1);
            result[at] = (1 - t) + t * leastWeight;
        }
        sum += result[at];
    }
    for (double& weight : result) weight /= sum;
    return result;
}

// Draws until `target` different requests are there, or nothing new comes any more; they join the result.
std::size_t draw(const Template& parsed, std::size_t target, RandomChoice& random, std::vector<std::string>& result) {
    std::unordered_set<std::string> drawn;
    std::string text;
    for (std::size_t inVain = 0; drawn.size() < target && inVain < fruitlessDraws;) {
        expandInto(text, parsed, random);
        const bool isNew = drawn.insert(text).second;
        inVain = isNew ? 0 : inVain + 1;
        if (isNew) result.push_back(text);
    }
    return drawn.size();
}

}  // namespace

Template PromptGenerator::parseTemplate(std::string_view text, const Variants& variants) {
    Template result;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t open = findBracket(text, '<', at);
        const std::string_view literal = text.substr(at, open == std::string_view::npos ? open : open - at);
        if (!literal.empty()) result.items.push_back({TemplateItem::TextItem{std::string(literal)}});
        if (open == std::string_view::npos) break;
        const std::size_t close = findBracket(text, '>', open + 1);
        if (close == std::string_view::npos) throw CatalogueError{"Unclosed bracket in template: " + std::string(text)};
        result.items.push_back(itemNamed(text.substr(open + 1, close - open - 1), text, variants));
        at = close + 1;
    }
    return result;
}

std::string PromptGenerator::expand(const Template& parsed) {
    std::string result;
    expandInto(result, parsed, RandomChoice::ofThisThread());
    return result;
}

std::vector<std::string> PromptGenerator::generatePrompts(const WordList& templates, const Variants& variants,
                                                          std::size_t count) {
    std::vector<Template> parsed;
    for (const std::string_view text : templates) parsed.push_back(parseTemplate(text, variants));
    const std::vector<double> shares = weights(parsed.size());
    RandomChoice& random = RandomChoice::ofThisThread();
    std::vector<std::string> result;
    std::size_t carry = 0;
    for (std::size_t at = 0; at < parsed.size(); ++at) {
        const auto share = static_cast<std::size_t>(shares[at] * static_cast<double>(count));
        const std::size_t target = std::min(share + carry, share * mostShares);
        carry = carry + target - draw(parsed[at], target, random, result);
    }
    return result;
}

}  // namespace brindlet
