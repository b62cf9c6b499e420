#include "shell/reading_guard.h"

#include <limits>
#include <string_view>

#include "shell/printing.h"
#include "shell/raw_reading.h"
#include "shell/scanner.h"
#include "text/overloaded.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// Words that a shell takes, unquoted and at the start of a command, for a mark on the command behind them.
constexpr std::string_view commandPrefixes[] = {"!", "time", "coproc"};

// The word as written where it is nothing but unquoted text, else "".
std::string_view plainText(const BashWord& word) {
    const auto* text = std::get_if<Text>(&word.elements.front());
    return text && word.elements.size() == 1 ? std::string_view(text->raw) : std::string_view();
}

// Walks the tree in the order of its printing and keeps the first hazard.
class Walk {
  public:
    void read(const BashStatementList& list) {
        for (const BashStatement& statement : list.statements) read(statement);
    }

    Hazard hazard;

  private:
    void note(Hazard found) {
        if (!hazard) hazard = std::move(found);
    }

    void read(const BashStatement& statement) {
        if (hazard) return;
        for (const BashStatementPart& part : statement.parts) {
            std::visit(Overloaded{
                           [](const And&) {},
                           [](const Or&) {},
                           [this](const Redirects& is) { readRedirects(is.redirects); },
                           [this](const auto& runnable) { read(runnable); },
                       },
                       part);
        }
    }

    void read(const BashIfStatement& statement) {
        for (const BashIfBranch& branch : statement.branches) {
            read(branch.condition);
            read(branch.innerStatementList);
        }
        if (statement.elseBranch) read(*statement.elseBranch);
    }

    void read(const BashForLoop& loop) {
        if (!isShellName(loop.variableName)) note(hazardSentence("refuse the variable", loop.variableName));
        for (const BashWord& word : loop.iterableList) readWord(word);
        read(loop.innerStatementList);
    }

    void read(const BashWhileLoop& loop) {
        read(loop.condition);
        read(loop.innerStatementList);
    }

    // --- pipelines ---

    void read(const BashPipeline& pipeline) {
        if (hazard) return;
        const BashPipelineComponent* previous = nullptr;
        for (const BashPipelineComponent& component : pipeline.components) {
            if (previous && !component.followsPipe) readNeighbours(*previous, component);
            previous = &component;
            std::visit(Overloaded{
                           [this](const BashCommand& is) { readCommand(is); },
                           [this](const Assignment& is) { readAssignment(is); },
                           [this](const ArithmeticExpression& is) { note(arithmeticHazard(is.text)); },
                           [this](const NestedPipeline& is) { read(is.pipeline); },
                       },
                       component);
        }
    }

    // Without a pipe a shell reads on in the same command, or refuses the parentheses there. Assignments before a
    // command are all that may stand so.
    void readNeighbours(const BashPipelineComponent& left, const BashPipelineComponent& right) {
        const bool isBeforeWords =
            std::holds_alternative<BashCommand>(right) || std::holds_alternative<Assignment>(right);
        if (std::holds_alternative<Assignment>(left) && isBeforeWords) return;
        BashPipeline both{{left, right}};
        both.components.back().followsPipe = false;
        note(hazardSentence("not read as two commands", print(both)));
    }

    void readAssignment(const Assignment& assignment) {
        if (!isShellName(assignment.name)) note(hazardSentence("run as a command", assignment.name + "="));
        readElements(assignment.value.elements);
        readUnexpandedBraces(assignment.value);
    }

    void readCommand(const BashCommand& command) {
        const std::string_view name = plainText(command.command);
        for (const std::string_view prefix : commandPrefixes) {
            if (name == prefix) note(hazardSentence("run what stands behind", name));
        }
        if (readsAsAssignment(command.command)) note(hazardSentence("set a variable by", print(command.command)));
        readTestEnds(command, name);
        readWord(command.command);
        for (const BashWord& argument : command.arguments) readWord(argument);
        readRedirects(command.redirects);
    }

    // `[[ a && b ]]` is one command for a shell, also where the tree has two. Without the closing brackets further on a
    // shell refuses the line.
    void readTestEnds(const BashCommand& command, std::string_view name) {
        const std::string_view last = command.arguments.empty() ? name : plainText(command.arguments.back());
        if (isTestOpen && last == "]]") note(hazardSentence("read as one condition all up to", print(command)));
        if (name == "[[" && (last != "]]" || !command.redirects.empty())) isTestOpen = true;
    }

    void readRedirects(const std::vector<BashRedirect>& redirects) {
        for (const BashRedirect& redirect : redirects) {
            for (const auto& descriptor : {redirect.sourceFileDescriptor, redirect.targetFileDescriptor}) {
                // bash reads a number that is no int as a word.
                if (descriptor > std::numeric_limits<int>::max()) note(hazardSentence("not redirect", print(redirect)));
            }
            if (!redirect.targetFilename) continue;
            readWord(*redirect.targetFilename);
            readUnexpandedBraces(*redirect.targetFilename);
        }
    }

    // --- words ---

    void readWord(const BashWord& word) {
        const auto* first = std::get_if<Text>(&word.elements.front());
        if (first && first->raw.starts_with('#')) note(hazardSentence("leave out as a comment all from", first->raw));
        readElements(word.elements);
    }

    // Braces aren't expanded in an assignment, and are refused in a redirect.
    void readUnexpandedBraces(const BashWord& word) {
        for (const BashWordElement& element : word.elements) {
            if (std::holds_alternative<BraceExpansion>(element)) note(hazardSentence("not expand", print(element)));
        }
    }

    void readElements(const std::vector<BashWordElement>& elements) {
        for (std::size_t at = 0; at < elements.size(); ++at) {
            readElement(elements[at]);
            if (at > 0) readNameBeforeBraces(elements, at);
        }
    }

    // Braces go first in a shell: `$x{1,2}` becomes `$x1 $x2`.
    void readNameBeforeBraces(const std::vector<BashWordElement>& elements, std::size_t at) {
        const auto* variable = std::get_if<VariableReference>(&elements[at - 1]);
        const auto* braces = std::get_if<BraceExpansion>(&elements[at]);
        if (!variable || !braces || variable->hasBraces || !isShellName(variable->name)) return;
        const std::string behind = at + 1 < elements.size() ? print(elements[at + 1]) : "";
        for (const std::string& piece : braces->elements) {
            const std::string& next = piece.empty() ? behind : piece;
            // The piece of a second pair of braces may begin with anything.
            if (!next.empty() && (byteClass::has(next.front(), byteClass::name) || next.front() == '{')) {
                note(hazardSentence("read on in the name of the variable before", print(elements[at])));
                return;
            }
        }
    }

    void readElement(const BashWordElement& element) {
        std::visit(Overloaded{
                       [this](const Text& is) { note(unquotedHazard(is)); },
                       [this](const CommandSubstitution& is) { read(is.pipeline); },
                       [this](const ProcessSubstitution& is) { readCommand(is.command); },
                       [this](const DoubleQuotedExpansion& is) { readDoubleQuoted(is); },
                       [](const SingleQuotedText&) {},
                       [this](const VariableReference& is) {
                           note(is.hasBraces ? parameterTextHazard(is.name) : bareNameHazard(is.name));
                       },
                       [this](const ArithmeticExpansion& is) { note(arithmeticHazard(is.text)); },
                       [this](const ParameterExpansion& is) {
                           note(parameterTextHazard(is.name));
                           note(parameterTextHazard(print(is.operation)));
                       },
                       [this](const BraceExpansion& is) { note(braceHazard(is)); },
                   },
                   element);
    }

    void readDoubleQuoted(const DoubleQuotedExpansion& quoted) {
        note(doubleQuotedHazard(quoted));
        for (const BashWordElement& element : quoted.elements) {
            if (!std::holds_alternative<Text>(element)) readElement(element);
        }
    }

    bool isTestOpen = false;
};

}  // namespace

std::optional<std::string> readingHazard(const BashStatementList& list) {
    Walk walk;
    walk.read(list);
    if (!walk.hazard && contains(print(list), std::string_view("\0", 1))) {
        return "The shell would stop reading at a NUL byte, which this prediction can't show.";
    }
    return walk.hazard;
}

}  // namespace brindlet
