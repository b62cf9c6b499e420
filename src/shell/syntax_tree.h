// The bash that the system understands, as a tree: statement lists, chains, pipelines, loops, conditions, redirects,
// quoting, expansions. Plain values, immutable once parsed but for BashCommand::rewriteRule. Every node prints itself
// back (shell/printing.h) to text that a real shell reads as the same command.
//
//     mv "$f" a.txt   is a command whose first argument is DoubleQuoted{VariableReference{"f"}}
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace brindlet {

struct BashWordElement;
struct BashPipelineComponent;
struct BashStatement;

// One or more elements, concatenated without separators.
struct BashWord {
    std::vector<BashWordElement> elements;
    bool operator==(const BashWord& other) const;
};

struct BashRedirect {
    std::string operatorName;                           // ">", ">>" or "<"
    std::optional<std::int64_t> sourceFileDescriptor;   // the number before the operator
    std::optional<BashWord> targetFilename;             // exactly one of these two is there
    std::optional<std::int64_t> targetFileDescriptor;   // the number behind "&"
    bool operator==(const BashRedirect&) const = default;
};

struct BashCommand {
    using RewriteRule = std::function<std::vector<std::string>(std::vector<std::string>)>;

    BashWord command;                 // the first word
    std::vector<BashWord> arguments;  // the others
    std::vector<BashRedirect> redirects;
    // Given the command's words as printed, returns those to print in their place. Set by the simulation (never by the
    // parser); it changes only how the command prints, not what is simulated.
    mutable RewriteRule rewriteRule;

    bool operator==(const BashCommand& other) const;  // by all but the rule
};

// The components run one after the other, each handing its output to the next. Not all were separated by "|" in the
// source: `A=1 B=2 make` is three components side by side.
struct BashPipeline {
    std::vector<BashPipelineComponent> components;
    bool operator==(const BashPipeline& other) const;
};

// --- words ---

// Unquoted text, and the literal runs inside double quotes.
struct Text {
    std::string value;  // escapes resolved
    std::string raw;    // as written
    bool operator==(const Text&) const = default;
};
struct CommandSubstitution {
    BashPipeline pipeline;
    bool operator==(const CommandSubstitution&) const = default;
};
// `<(command)`; the parser never makes one.
struct ProcessSubstitution {
    BashCommand command;
    bool operator==(const ProcessSubstitution&) const = default;
};
struct DoubleQuotedExpansion {
    std::vector<BashWordElement> elements;
    bool operator==(const DoubleQuotedExpansion& other) const;
};
struct SingleQuotedText {
    std::string text;
    bool operator==(const SingleQuotedText&) const = default;
};
struct VariableReference {
    std::string name;
    bool hasBraces = false;
    bool operator==(const VariableReference&) const = default;
};
struct ArithmeticExpansion {
    std::string text;
    bool operator==(const ArithmeticExpansion&) const = default;
};

// The operations of ${name...}. Patterns and replacements are raw text.
struct RemoveShortestMatchEnd { std::string pattern; bool operator==(const RemoveShortestMatchEnd&) const = default; };
struct RemoveLongestMatchEnd { std::string pattern; bool operator==(const RemoveLongestMatchEnd&) const = default; };
struct RemoveShortestMatchStart { std::string pattern; bool operator==(const RemoveShortestMatchStart&) const = default; };
struct RemoveLongestMatchStart { std::string pattern; bool operator==(const RemoveLongestMatchStart&) const = default; };
struct Substring {
    std::int64_t offset = 0;
    std::optional<std::int64_t> length;
    bool operator==(const Substring&) const = default;
};
struct DefaultIfEmpty { std::string text; bool operator==(const DefaultIfEmpty&) const = default; };
struct DefaultSetIfEmpty { std::string text; bool operator==(const DefaultSetIfEmpty&) const = default; };
struct DefaultIfNonEmpty { std::string text; bool operator==(const DefaultIfNonEmpty&) const = default; };
struct ErrorIfEmpty { std::string text; bool operator==(const ErrorIfEmpty&) const = default; };
struct ReplaceFirst { std::string pattern, replacement; bool operator==(const ReplaceFirst&) const = default; };
struct ReplaceAll { std::string pattern, replacement; bool operator==(const ReplaceAll&) const = default; };
struct ReplaceAtStart { std::string pattern, replacement; bool operator==(const ReplaceAtStart&) const = default; };
struct ReplaceAtEnd { std::string pattern, replacement; bool operator==(const ReplaceAtEnd&) const = default; };
struct Length { bool operator==(const Length&) const = default; };
struct Upper { bool operator==(const Upper&) const = default; };
struct Lower { bool operator==(const Lower&) const = default; };
struct UpperFirstChar { bool operator==(const UpperFirstChar&) const = default; };
struct LowerFirstChar { bool operator==(const LowerFirstChar&) const = default; };

struct ParameterOperation
    : std::variant<RemoveShortestMatchEnd, RemoveLongestMatchEnd, RemoveShortestMatchStart, RemoveLongestMatchStart,
                   Substring, DefaultIfEmpty, DefaultSetIfEmpty, DefaultIfNonEmpty, ErrorIfEmpty, ReplaceFirst,
                   ReplaceAll, ReplaceAtStart, ReplaceAtEnd, Length, Upper, Lower, UpperFirstChar, LowerFirstChar> {
    using variant::variant;
};

struct ParameterExpansion {
    std::string name;
    ParameterOperation operation;
    bool operator==(const ParameterExpansion&) const = default;
};
struct BraceExpansion {
    std::vector<std::string> elements;  // the expansion, worked out by the parser
    std::string originalInnerText;      // between the braces, as written
    bool operator==(const BraceExpansion&) const = default;
};

struct BashWordElement
    : std::variant<Text, CommandSubstitution, ProcessSubstitution, DoubleQuotedExpansion, SingleQuotedText,
                   VariableReference, ArithmeticExpansion, ParameterExpansion, BraceExpansion> {
    using variant::variant;
};

// --- pipelines ---

struct Assignment {
    std::string name;
    BashWord value;
    bool operator==(const Assignment&) const = default;
};
struct ArithmeticExpression {
    std::string text;
    bool operator==(const ArithmeticExpression&) const = default;
};
struct NestedPipeline {
    BashPipeline pipeline;
    bool operator==(const NestedPipeline&) const = default;
};

struct BashPipelineComponent : std::variant<BashCommand, Assignment, ArithmeticExpression, NestedPipeline> {
    using variant::variant;
    // True where a "|" stands between this component and the one before it. It matters to printing alone: the
    // simulation treats all neighbours alike.
    bool followsPipe = false;
};

// --- statements ---

struct BashStatementList {
    std::vector<BashStatement> statements;
    bool operator==(const BashStatementList& other) const;
};

struct BashIfStatement;
struct BashForLoop;
struct BashWhileLoop;
// Redirects written behind the preceding part; they apply to what precedes them.
struct Redirects {
    std::vector<BashRedirect> redirects;
    bool operator==(const Redirects&) const = default;
};
struct And { bool operator==(const And&) const = default; };
struct Or { bool operator==(const Or&) const = default; };

// Parts alternate: a runnable part, optionally Redirects, then And or Or, then the next runnable part.
struct BashStatementPart;

struct BashStatement {
    std::vector<BashStatementPart> parts;
    bool runInBackground = false;  // ended in a single "&"
    bool operator==(const BashStatement& other) const;
};

struct BashIfBranch {
    BashStatement condition;
    BashStatementList innerStatementList;
    bool operator==(const BashIfBranch&) const = default;
};
struct BashIfStatement {
    std::vector<BashIfBranch> branches;  // the `if` first, then each `elif`
    std::optional<BashStatementList> elseBranch;
    bool operator==(const BashIfStatement&) const = default;
};
struct BashForLoop {
    std::string variableName;
    std::vector<BashWord> iterableList;
    BashStatementList innerStatementList;
    bool operator==(const BashForLoop&) const = default;
};
struct BashWhileLoop {
    BashStatement condition;
    BashStatementList innerStatementList;
    bool operator==(const BashWhileLoop&) const = default;
};

struct BashStatementPart
    : std::variant<BashPipeline, BashIfStatement, BashForLoop, BashWhileLoop, Redirects, And, Or> {
    using variant::variant;
};

}  // namespace brindlet
