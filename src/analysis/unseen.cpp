#include "analysis/unseen.h"

#include <algorithm>

#include "shell/printing.h"
#include "text/overloaded.h"

namespace brindlet {

namespace {

class ChangeFinder {
  public:
    explicit ChangeFinder(const CommandTable& commands) : commands_(commands) {}

    bool in(const BashStatementList& list) const {
        return std::any_of(list.statements.begin(), list.statements.end(),
                           [this](const auto& statement) { return in(statement, 0); });
    }

    bool in(const BashStatement& statement, std::size_t from) const {
        return std::any_of(statement.parts.begin() + static_cast<std::ptrdiff_t>(from), statement.parts.end(),
                           [this](const auto& part) { return inPart(part); });
    }

  private:
    bool inPart(const BashStatementPart& part) const {
        const BashStatementPart::variant& cases = part;
        return std::visit(
            Overloaded{
                [this](const BashPipeline& pipeline) { return in(pipeline); },
                [this](const BashIfStatement& statement) {
                    return std::any_of(statement.branches.begin(), statement.branches.end(),
                                       [this](const auto& branch) {
                                           return in(branch.condition, 0) || in(branch.innerStatementList);
                                       }) ||
                           (statement.elseBranch && in(*statement.elseBranch));
                },
                [this](const BashForLoop& loop) { return in(loop.innerStatementList); },
                [this](const BashWhileLoop& loop) { return in(loop.condition, 0) || in(loop.innerStatementList); },
                [](const Redirects& redirects) { return writes(redirects.redirects); },
                [](const And&) { return false; },
                [](const Or&) { return false; },
            },
            cases);
    }

    bool in(const BashPipeline& pipeline) const {
        return std::any_of(pipeline.components.begin(), pipeline.components.end(), [this](const auto& component) {
            const BashPipelineComponent::variant& cases = component;
            return std::visit(Overloaded{
                                  [this](const BashCommand& command) { return in(command); },
                                  [](const Assignment&) { return true; },  // may steer what follows
                                  [](const ArithmeticExpression&) { return true; },
                                  [this](const NestedPipeline& nested) { return in(nested.pipeline); },
                              },
                              cases);
        });
    }

    bool in(const BashCommand& command) const {
        const auto& elements = command.command.elements;
        const auto* name = elements.size() == 1 ? std::get_if<Text>(&elements.front()) : nullptr;
        const CommandRow* row = name == nullptr ? nullptr : commands_.find(name->value);
        const bool isHarmless = row != nullptr && row->reach == Reach::onlyReads;
        return !isHarmless || writes(command.redirects) ||
               std::any_of(command.arguments.begin(), command.arguments.end(),
                           [this](const auto& word) { return in(word.elements); });
    }

    bool in(const std::vector<BashWordElement>& elements) const {
        return std::any_of(elements.begin(), elements.end(), [this](const auto& element) {
            if (const auto* quoted = std::get_if<DoubleQuotedExpansion>(&element)) return in(quoted->elements);
            const auto* substitution = std::get_if<CommandSubstitution>(&element);
            return substitution != nullptr && in(substitution->pipeline);
        });
    }

    static bool writes(const std::vector<BashRedirect>& redirects) {
        return std::any_of(redirects.begin(), redirects.end(), [](const auto& redirect) {
            return redirect.operatorName != "<" && redirect.targetFilename.has_value();
        });
    }

    const CommandTable& commands_;
};

}  // namespace

bool mayChangeSomething(const BashStatementList& list, const CommandTable& commands) {
    return ChangeFinder(commands).in(list);
}

bool mayChangeSomething(const BashStatement& statement, std::size_t fromPart, const CommandTable& commands) {
    return ChangeFinder(commands).in(statement, fromPart);
}

std::string printedFrom(const BashStatement& statement, std::size_t fromPart) {
    BashStatement rest;
    rest.parts.assign(statement.parts.begin() + static_cast<std::ptrdiff_t>(fromPart), statement.parts.end());
    return print(rest);
}

}  // namespace brindlet
