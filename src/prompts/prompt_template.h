// A request as people phrase it, with its choices: "<make> <this?> <to?> <dim> wide". A template and the word lists
// that it names give thousands of requests by chance; the similarity index holds them, and nobody is ever shown one.
//
//     PromptGenerator::generatePrompts({"convert <this?> to <format>"}, {{"format", {"png", "jpg"}}}, 20)
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace brindlet {

using WordList = std::vector<std::string_view>;  // the words are constants of the program
using Variants = std::map<std::string_view, WordList>;

struct TemplateItem {
    struct TextItem {
        std::string text;
    };  // always there
    struct MaybeText {
        std::string text;
    };  // there or not, with even chances
    struct Variant {
        const WordList* words;
    };  // one of them
    struct MaybeVariant {
        const WordList* words;
    };  // one of them or nothing, with even chances
    std::variant<TextItem, MaybeText, Variant, MaybeVariant> value;
};

struct Template {
    std::vector<TemplateItem> items;
};

struct PromptGenerator {
    PromptGenerator() = delete;

    // The words stay in `variants`, which has to outlive the template. Throws CatalogueError.
    static Template parseTemplate(std::string_view text, const Variants& variants);
    static std::string expand(const Template& parsed);
    // At most `count` requests, earlier templates with more of them; no two of one template are the same.
    static std::vector<std::string> generatePrompts(const WordList& templates, const Variants& variants,
                                                    std::size_t count);
};

// A fault in the catalogue itself, with the sentence that says which template has it.
struct CatalogueError {
    std::string message;
};

}  // namespace brindlet
