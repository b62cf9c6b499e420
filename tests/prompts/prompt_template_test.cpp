#include "prompts/prompt_template.h"

#include <gtest/gtest.h>

#include <set>

namespace brindlet {
namespace prompt_template_tests {

using Strings = std::set<std::string>;

Strings expansions(std::string_view text, const Variants& variants) {
    const Template parsed = PromptGenerator::parseTemplate(text, variants);
    Strings found;
    for (int count = 0; count < 300; ++count) found.insert(PromptGenerator::expand(parsed));
    return found;
}

TEST(PromptTemplate, Expansion) {
    const struct {
        std::string_view text;
        Variants variants;
        Strings expected;
    } rows[] = {
        {"<format> these up", {{"format", {"zip"}}}, {"zip these up"}},
        {"<this?> file", {}, {"this file", " file"}},
        {"<this?> file", {{"this", {"the", "my"}}}, {"the file", "my file", " file"}},
        {"a <b> c", {{"b", {""}}}, {"a c"}},
        {"a   b > c *x*", {}, {"a b > c *x*"}},
        {"<a><b>", {{"a", {"1", "2"}}, {"b", {"x"}}}, {"1x", "2x"}},
        {"<what's>é<?>", {{"what's", {"so"}}, {"", {"!"}}}, {"soé", "soé!"}},
        {"", {}, {""}},
        {"<\u0301a", {}, {"<\u0301a"}},  // a bracket with an accent is another character
    };
    for (const auto& row : rows) EXPECT_EQ(expansions(row.text, row.variants), row.expected) << row.text;
    EXPECT_EQ(PromptGenerator::parseTemplate("<a><b?>", {{"a", {"x"}}}).items.size(), 2u);
}

TEST(PromptTemplate, Faults) {
    const struct {
        std::string_view text, message;
    } rows[] = {
        {"zip <this", "Unclosed bracket in template: zip <this"},
        {"zip <this> up", "Unrecognized variant without question mark <this> in template: 'zip <this> up'"},
        {"a <> b", "Unrecognized variant without question mark <> in template: 'a <> b'"},
    };
    for (const auto& [text, message] : rows) try {
            PromptGenerator::parseTemplate(text, {});
            ADD_FAILURE() << text;
        } catch (const CatalogueError& error) {
            EXPECT_EQ(error.message, message);
        }
}

TEST(PromptTemplate, BudgetGoesWhereThereIsRoom) {
    EXPECT_TRUE(PromptGenerator::generatePrompts({}, {}, 10).empty());
    EXPECT_EQ(PromptGenerator::generatePrompts({"only this"}, {}, 5).size(), 1u);

    // 200 requests are there for the second template: it takes over what the first can't give, but no more than three
    // times its own share of 2.
    WordList words;
    std::vector<std::string> numbers;
    for (int number = 0; number < 200; ++number) numbers.push_back(std::to_string(number));
    for (const std::string& number : numbers) words.push_back(number);
    const auto prompts = PromptGenerator::generatePrompts({"fixed", "<n>"}, {{"n", words}}, 10);
    EXPECT_EQ(prompts.size(), 1u + 6u);  // shares of 7 and 2
    EXPECT_EQ(Strings(prompts.begin(), prompts.end()).size(), prompts.size());
    EXPECT_EQ(PromptGenerator::generatePrompts({"<n>"}, {{"n", words}}, 50).size(), 50u);
}

}  // namespace prompt_template_tests
}  // namespace brindlet
