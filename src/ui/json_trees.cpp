// Parsed lines and patterns as JSON. Both nest no deeper than their parsers allow, so plain recursion serves.
#include "text/enum_rows.h"
#include "text/overloaded.h"
#include "ui/json.h"

namespace brindlet {

namespace {

template <class Replacement>
Json replacementJson(std::string_view name, const Replacement& operation) {
    return taggedJson(name, recordJson({{"pattern", operation.pattern}, {"replacement", operation.replacement}}));
}

struct StyleRow {
    Pattern::PatternListStyle key;
    std::string_view name;
};
constexpr StyleRow styleRows[] = {
    {Pattern::PatternListStyle::zeroOrOne, "zeroOrOne"}, {Pattern::PatternListStyle::zeroOrMore, "zeroOrMore"},
    {Pattern::PatternListStyle::oneOrMore, "oneOrMore"}, {Pattern::PatternListStyle::one, "one"},
    {Pattern::PatternListStyle::negated, "negated"},
};
static_assert(rowsCover(styleRows, Pattern::PatternListStyle::negated));

struct ClassRow {
    Pattern::ClassName key;
    std::string_view name;
};
constexpr ClassRow classRows[] = {
    {Pattern::ClassName::alphaNumeric, "alphaNumeric"},
    {Pattern::ClassName::alpha, "alpha"},
    {Pattern::ClassName::blank, "blank"},
    {Pattern::ClassName::control, "control"},
    {Pattern::ClassName::numeric, "numeric"},
    {Pattern::ClassName::graph, "graph"},
    {Pattern::ClassName::lower, "lower"},
    {Pattern::ClassName::printable, "printable"},
    {Pattern::ClassName::punctuation, "punctuation"},
    {Pattern::ClassName::space, "space"},
    {Pattern::ClassName::upper, "upper"},
    {Pattern::ClassName::hexadecimalDigit, "hexadecimalDigit"},
};
static_assert(rowsCover(classRows, Pattern::ClassName::hexadecimalDigit));

struct ParseErrorRow {
    BasherError::Kind key;
    std::string_view name;
};
constexpr ParseErrorRow parseErrorRows[] = {
    {BasherError::Kind::expected, "expected"},
    {BasherError::Kind::unsupported, "unsupported"},
    {BasherError::Kind::unimplemented, "unimplemented"},
    {BasherError::Kind::noRootPipeline, "noRootPipeline"},
};
static_assert(rowsCover(parseErrorRows, BasherError::Kind::noRootPipeline));

}  // namespace

// --- statements ---

Json toJson(const BashStatementList& list) {
    return recordJson({{"statements", jsonList(list.statements)}});
}

Json toJson(const BashStatement& statement) {
    return recordJson({{"parts", jsonList(statement.parts)}, {"runInBackground", statement.runInBackground}});
}

Json toJson(const BashIfBranch& branch) {
    return recordJson(
        {{"condition", toJson(branch.condition)}, {"innerStatementList", toJson(branch.innerStatementList)}});
}

Json toJson(const BashStatementPart& part) {
    return std::visit(
        Overloaded{
            [](const BashPipeline& pipeline) { return taggedJson("pipeline", toJson(pipeline)); },
            [](const BashIfStatement& choice) {
                return taggedJson(
                    "ifStatement",
                    recordJson({{"branches", jsonList(choice.branches)},
                                {"elseBranch", choice.elseBranch ? toJson(*choice.elseBranch) : Json()}}));
            },
            [](const BashForLoop& loop) {
                return taggedJson("forLoop", recordJson({{"variableName", loop.variableName},
                                                         {"iterableList", jsonList(loop.iterableList)},
                                                         {"innerStatementList", toJson(loop.innerStatementList)}}));
            },
            [](const BashWhileLoop& loop) {
                return taggedJson("whileLoop", recordJson({{"condition", toJson(loop.condition)},
                                                           {"innerStatementList", toJson(loop.innerStatementList)}}));
            },
            [](const Redirects& redirects) { return taggedJson("redirects", jsonList(redirects.redirects)); },
            [](const And&) { return taggedJson("and"); },
            [](const Or&) { return taggedJson("or"); },
        },
        part);
}

// --- pipelines ---

Json toJson(const BashPipeline& pipeline) {
    return recordJson({{"components", jsonList(pipeline.components)}});
}

Json toJson(const BashPipelineComponent& component) {
    return std::visit(
        Overloaded{
            [](const BashCommand& command) { return taggedJson("command", toJson(command)); },
            [](const Assignment& assignment) {
                return taggedJson("assignment",
                                  recordJson({{"name", assignment.name}, {"value", toJson(assignment.value)}}));
            },
            [](const ArithmeticExpression& expression) { return taggedJson("arithmeticExpression", expression.text); },
            [](const NestedPipeline& nested) { return taggedJson("nestedPipeline", toJson(nested.pipeline)); },
        },
        component);
}

Json toJson(const BashCommand& command) {
    return recordJson({{"command", toJson(command.command)},
                       {"arguments", jsonList(command.arguments)},
                       {"redirects", jsonList(command.redirects)}});
}

Json toJson(const BashRedirect& redirect) {
    return recordJson({{"operatorName", redirect.operatorName},
                       {"sourceFileDescriptor", optionalJson(redirect.sourceFileDescriptor)},
                       {"targetFilename", redirect.targetFilename ? toJson(*redirect.targetFilename) : Json()},
                       {"targetFileDescriptor", optionalJson(redirect.targetFileDescriptor)}});
}

// --- words ---

Json toJson(const BashWord& word) {
    return recordJson({{"elements", jsonList(word.elements)}});
}

Json toJson(const BashWordElement& element) {
    return std::visit(
        Overloaded{
            [](const Text& text) {
                return taggedJson("text", recordJson({{"value", text.value}, {"raw", text.raw}}));
            },
            [](const CommandSubstitution& use) { return taggedJson("commandSubstitution", toJson(use.pipeline)); },
            [](const ProcessSubstitution& use) { return taggedJson("processSubstitution", toJson(use.command)); },
            [](const DoubleQuotedExpansion& quoted) {
                return taggedJson("doubleQuotedExpansion", jsonList(quoted.elements));
            },
            [](const SingleQuotedText& quoted) { return taggedJson("singleQuotedText", quoted.text); },
            [](const VariableReference& use) {
                return taggedJson("variableReference", recordJson({{"name", use.name}, {"hasBraces", use.hasBraces}}));
            },
            [](const ArithmeticExpansion& use) { return taggedJson("arithmeticExpansion", use.text); },
            [](const ParameterExpansion& use) {
                return taggedJson("parameterExpansion",
                                  recordJson({{"name", use.name}, {"operation", toJson(use.operation)}}));
            },
            [](const BraceExpansion& use) {
                return taggedJson("braceExpansion", recordJson({{"elements", use.elements},
                                                                {"originalInnerText", use.originalInnerText}}));
            },
        },
        element);
}

Json toJson(const ParameterOperation& operation) {
    return std::visit(
        Overloaded{
            [](const RemoveShortestMatchEnd& use) { return taggedJson("removeShortestMatchEnd", use.pattern); },
            [](const RemoveLongestMatchEnd& use) { return taggedJson("removeLongestMatchEnd", use.pattern); },
            [](const RemoveShortestMatchStart& use) { return taggedJson("removeShortestMatchStart", use.pattern); },
            [](const RemoveLongestMatchStart& use) { return taggedJson("removeLongestMatchStart", use.pattern); },
            [](const Substring& use) {
                return taggedJson("substring",
                                  recordJson({{"offset", use.offset}, {"length", optionalJson(use.length)}}));
            },
            [](const DefaultIfEmpty& use) { return taggedJson("defaultIfEmpty", use.text); },
            [](const DefaultSetIfEmpty& use) { return taggedJson("defaultSetIfEmpty", use.text); },
            [](const DefaultIfNonEmpty& use) { return taggedJson("defaultIfNonEmpty", use.text); },
            [](const ErrorIfEmpty& use) { return taggedJson("errorIfEmpty", use.text); },
            [](const ReplaceFirst& use) { return replacementJson("replaceFirst", use); },
            [](const ReplaceAll& use) { return replacementJson("replaceAll", use); },
            [](const ReplaceAtStart& use) { return replacementJson("replaceAtStart", use); },
            [](const ReplaceAtEnd& use) { return replacementJson("replaceAtEnd", use); },
            [](const Length&) { return taggedJson("length"); },
            [](const Upper&) { return taggedJson("upper"); },
            [](const Lower&) { return taggedJson("lower"); },
            [](const UpperFirstChar&) { return taggedJson("upperFirstChar"); },
            [](const LowerFirstChar&) { return taggedJson("lowerFirstChar"); },
        },
        operation);
}

Json toJson(const BasherError& error) {
    const std::string_view name = rowOf(parseErrorRows, error.kind()).name;
    return error.kind() == BasherError::Kind::noRootPipeline ? taggedJson(name) : taggedJson(name, error.text());
}

// --- patterns ---

Json toJson(const Pattern::CharacterClass& characters) {
    return std::visit(Overloaded{
                          [](const Pattern::Range& range) {
                              return taggedJson("range", Json::array({range.lower, range.upper}));
                          },
                          [](Pattern::ClassName name) { return taggedJson("named", rowOf(classRows, name).name); },
                      },
                      characters);
}

Json toJson(const Pattern::Section& section) {
    return std::visit(Overloaded{
                          [](const Pattern::Constant& constant) { return taggedJson("constant", constant.text); },
                          [](const Pattern::OneOf& oneOf) {
                              return taggedJson("oneOf", recordJson({{"classes", jsonList(oneOf.classes)},
                                                                     {"isNegated", oneOf.isNegated}}));
                          },
                          [](const Pattern::PatternList& list) {
                              Json alternatives = Json::array();
                              for (const auto& alternative : list.alternatives)
                                  alternatives.push_back(jsonList(alternative));
                              return taggedJson("patternList", recordJson({{"style", rowOf(styleRows, list.style).name},
                                                                           {"alternatives", alternatives}}));
                          },
                          [](const Pattern::ComponentWildcard&) { return taggedJson("componentWildcard"); },
                          [](const Pattern::PathWildcard&) { return taggedJson("pathWildcard"); },
                          [](const Pattern::SingleCharacter&) { return taggedJson("singleCharacter"); },
                      },
                      section);
}

Json toJson(const PatternParsingError& error) {
    const std::string_view name = caseName(error.kind);
    return error.kind == PatternParsingError::Kind::invalidNamedCharacterClass ? taggedJson(name, error.name)
                                                                               : taggedJson(name);
}

}  // namespace brindlet
