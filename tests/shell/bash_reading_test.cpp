// The printed text held against a real bash: every line whose tree has no reading hazard must hand a stand-in command
// the words that the tree says. The lines are generated from pieces, harmless and hostile, and name no other command.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include "shell/basher.h"
#include "shell/printing.h"
#include "shell/reading_guard.h"
#include "text/overloaded.h"
#include "text/strings.h"

namespace brindlet {
namespace bash_reading_tests {

// What the pieces below stand for with x=v and y unset; anything else in raw text is a hazard or isn't judged.
const std::map<std::string_view, std::string_view> values = {
    {"$x", "v"},       {"${x}", "v"},     {"$y", ""},           {"$1", ""},          {"$?", "0"},
    {"${#x}", "1"},    {"${y:-d}", "d"},  {"${x%v}", ""},       {"${x/v/w}", "w"},   {"${x^}", "V"},
    {"${x:0:1}", "v"}, {"$((1+2))", "3"}, {"${y:-a;b}", "a;b"}, {"$(( (1) ))", "1"}, {"${y:-\\$(c)}", "$(c)"},
};

// Walks the tree as the shell that reads it must: the words of each run of the stand-in, which prints nothing.
class ExpectedRuns {
  public:
    std::vector<std::string> runs;
    bool isJudged = true;  // false where a value isn't in the table

    void run(const BashStatementList& list) {
        for (const BashStatement& statement : list.statements) run(statement);
    }

  private:
    void run(const BashStatement& statement) {
        bool isSkipped = false;  // behind "||", since the stand-in never fails
        for (const BashStatementPart& part : statement.parts) {
            if (std::holds_alternative<Or>(part)) isSkipped = true;
            if (std::holds_alternative<And>(part)) isSkipped = false;
            if (isSkipped) continue;
            std::visit(Overloaded{
                           [this](const BashPipeline& is) { run(is); },
                           [this](const BashIfStatement& is) {
                               run(is.branches.front().condition);
                               run(is.branches.front().innerStatementList);
                           },
                           [this](const BashForLoop& is) {
                               const auto items = expanded(is.iterableList);
                               for (std::size_t at = 0; at < items.size(); ++at) run(is.innerStatementList);
                           },
                           [this](const BashWhileLoop&) { isJudged = false; },
                           [](const auto&) {},
                       },
                       part);
        }
    }

    void run(const BashPipeline& pipeline) {
        for (const BashPipelineComponent& component : pipeline.components) {
            std::visit(Overloaded{
                           [this](const BashCommand& is) {
                               std::vector<BashWord> words = is.arguments;
                               words.insert(words.begin(), is.command);
                               const auto expansion = expanded(words);
                               isJudged = isJudged && !expansion.empty() && expansion.front() == "c";
                               runs.push_back("<" + joined(expansion, "><") + ">");
                           },
                           [this](const NestedPipeline& is) { run(is.pipeline); },
                           [this](const Assignment& is) { expanded({is.value}); },
                           [this](const ArithmeticExpression&) { isJudged = false; },
                       },
                       component);
        }
    }

    std::vector<std::string> expanded(const std::vector<BashWord>& words) {
        std::vector<std::string> result;
        for (const BashWord& word : words) {
            for (const BashWord& variant : withoutBraces(word)) {
                std::string text;
                bool isQuoted = false;  // an empty word stays only where something in it is quoted
                for (const BashWordElement& element : variant.elements) {
                    isQuoted |= std::holds_alternative<DoubleQuotedExpansion>(element) ||
                                std::holds_alternative<SingleQuotedText>(element);
                    text += valueOf(element);
                }
                if (isQuoted || !text.empty()) result.push_back(text);
            }
        }
        return result;
    }

    static std::vector<BashWord> withoutBraces(const BashWord& word) {
        std::vector<BashWord> variants(1);
        for (const BashWordElement& element : word.elements) {
            const auto* braces = std::get_if<BraceExpansion>(&element);
            std::vector<BashWord> longer;
            for (const BashWord& start : variants) {
                for (const std::string& piece : braces ? braces->elements : std::vector{std::string()}) {
                    longer.push_back(start);
                    longer.back().elements.push_back(braces ? Text{piece, piece} : element);
                }
            }
            variants = std::move(longer);
        }
        return variants;
    }

    std::string valueOf(const BashWordElement& element) {
        if (const auto* text = std::get_if<Text>(&element)) return text->value;
        if (const auto* text = std::get_if<SingleQuotedText>(&element)) return text->text;
        if (const auto* substitution = std::get_if<CommandSubstitution>(&element)) {
            run(substitution->pipeline);
            return "";
        }
        if (const auto* quoted = std::get_if<DoubleQuotedExpansion>(&element)) return quotedValue(*quoted);
        const auto known = values.find(print(element));
        isJudged = isJudged && known != values.end();
        return known == values.end() ? "" : std::string(known->second);
    }

    std::string quotedValue(const DoubleQuotedExpansion& quoted) {
        std::string result;
        for (const BashWordElement& element : quoted.elements) {
            const auto* text = std::get_if<Text>(&element);
            if (!text) {
                result += valueOf(element);
                continue;
            }
            // The tree's "\n" is a line end by design, and bash's is not: what bash makes of the text as written.
            for (std::size_t at = 0; at < text->raw.size(); ++at) {
                const bool isEscape = text->raw[at] == '\\' && contains("$`\"\\", text->raw.substr(at + 1, 1));
                result += text->raw[isEscape ? ++at : at];
            }
        }
        return result;
    }
};

class LineMaker {
  public:
    explicit LineMaker(unsigned seed) : random_(seed) {}

    std::string list(int depth) {
        std::string text = statement(depth);
        // Only outermost, since the driver waits for its own children alone.
        const std::vector<std::string> ends = {"; ", " ; ", "\n", depth > 0 ? " & " : ";", depth > 0 ? " &; " : ";"};
        while (chance(3)) text += pick(ends) + statement(depth);
        return text;
    }

  private:
    bool chance(int oneIn) { return std::uniform_int_distribution<int>(1, oneIn)(random_) == 1; }
    std::string pick(const std::vector<std::string>& choices) {
        return choices[std::uniform_int_distribution<std::size_t>(0, choices.size() - 1)(random_)];
    }

    std::string statement(int depth) {
        if (depth > 0 && chance(8)) return "if " + statement(0) + "; then " + list(0) + "; fi";
        if (depth > 0 && chance(8)) return "for i in" + word(0) + "; do " + list(0) + "; done";
        std::string text = pipeline(depth);
        while (chance(4)) text += pick({" && ", " || "}) + pipeline(depth);
        return text;
    }

    std::string pipeline(int depth) {
        if (depth > 0 && chance(8)) return "(" + pipeline(0) + pick({")", ") > f", ") 2>/dev/null", ")\n"});
        std::string text = command(depth);
        while (chance(4)) text += pick({" | ", "|"}) + command(depth);
        return text;
    }

    std::string command(int depth) {
        std::string text = chance(12) ? pick({"A={a,b} c", "! c", "a+=1 c", "1=2 c", "time c"}) : pick({"c", "A=1 c"});
        for (int count = 0; count < 3; ++count) text += word(depth);
        if (chance(6)) text += pick({" > f", " 2>&1", ">>f", " 2> f", " < f"});
        if (chance(30)) text += pick({" > f c x", " 4294967297> f", " 2>&1x"});
        return text;
    }

    std::string word(int depth) {
        std::string text = chance(30) ? "\xC2\xA0" : " ";
        do {
            text += depth > 0 && chance(6) ? pick({"$(", "`"}) + pipeline(0) + pick({")", "`"}) : piece();
        } while (chance(3));
        return text;
    }

    std::string piece() {
        if (!chance(25))
            return pick({"a",       "b-c",         "d.e",        "=",          "x=1",         "\\ ",
                         "\\$x",    "\\\\",        "\\;",        "~x",         "\xC3\xA9",    "'q q'",
                         "''",      "\"\"",        "\"p  p\"",   "\"$x s\"",   "\"${y:-d}\"", "\"a\\\"b\"",
                         "\"\\n\"", "\"\\`c\\`\"", "\"$(c z)\"", "$x",         "${x}",        "$y",
                         "$1",      "$?",          "${#x}",      "${y:-d}",    "${x%v}",      "${x/v/w}",
                         "${x^}",   "${x:0:1}",    "$((1+2))",   "$(( (1) ))", "${y:-a;b}",   "${y:-\\$(c)}",
                         "{}",      "{a}",         "{a,b}",      "{,z}",       "{1..3}",      "{01..3}",
                         "{a..c}",  "{c..a}",      "#",          "!",          "\t"});
        return pick({"#",       "\"`c`\"", "$12",    "$x\xC3\xA9", "${y:-$(c)}", "${y:-'}", "${y:-`c`}", "\"${y:-\\}\"",
                     "{1..03}", "{a..bc}", "{A..b}", "{1..a}",     "{a b}",      "{a;c}",   "{'a',b}",   "{a\\,b}",
                     "{\"a}",   "\n",      "\r",     "\\\n",       "a\nb",       "[[",      "]]"});
    }

    std::mt19937 random_;
};

// Runs each line in a shell of its own making that knows one command, which notes its words.
std::vector<std::vector<std::string>> runsOfBash(const std::vector<std::string>& lines) {
    const auto folder = std::filesystem::temp_directory_path() / ("brindlet-bash-" + std::to_string(::getpid()));
    std::filesystem::create_directory(folder);
    std::ofstream(folder / "f");
    {
        std::ofstream file(folder / "lines");
        for (const std::string& line : lines) file << line << '\0';
        std::ofstream(folder / "driver") << R"(
set -f
c() { local all= word; for word; do all+="<$word>"; done; printf '<c>%s\0' "$all" >&9; }
while IFS= read -r -d '' line <&8; do
    (x=v; eval "$line"; wait) </dev/null >/dev/null 2>&1
    printf '\n\0' >&9
done 8<lines 9>runs
)";
    }
    const std::string command = "cd '" + folder.string() + "' && env -i PATH= LC_ALL=C.UTF-8 /bin/bash --norc driver";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::vector<std::vector<std::string>> result(1);
    std::ifstream file(folder / "runs");
    for (std::string run; std::getline(file, run, '\0');) {
        if (run == "\n") {
            result.emplace_back();
        } else {
            result.back().push_back(run);
        }
    }
    result.pop_back();
    std::filesystem::remove_all(folder);
    return result;
}

TEST(BashReading, RunsWhatTheTreeSays) {
    LineMaker maker(20240229);
    std::vector<std::string> lines;
    std::vector<std::vector<std::string>> expected;
    for (int count = 0; count < 5000; ++count) {
        try {
            const std::string line = maker.list(1);
            const BashStatementList tree = Basher(line).parse();
            ExpectedRuns runs;
            runs.run(tree);
            if (!runs.isJudged || readingHazard(tree)) continue;
            lines.push_back(print(tree));
            expected.push_back(std::move(runs.runs));
        } catch (const BasherError&) {
        }
    }
    EXPECT_GT(lines.size(), 800U);
    auto actual = runsOfBash(lines);
    ASSERT_EQ(actual.size(), lines.size());
    for (std::size_t at = 0; at < lines.size(); ++at) {
        // Neighbours in a pipeline run at the same time.
        std::sort(expected[at].begin(), expected[at].end());
        std::sort(actual[at].begin(), actual[at].end());
        EXPECT_EQ(actual[at], expected[at]) << lines[at];
    }
}

}  // namespace bash_reading_tests
}  // namespace brindlet
