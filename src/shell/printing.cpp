#include "shell/printing.h"

#include <utility>
#include <vector>

#include "text/overloaded.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// All printing appends to one text.
void append(std::string& out, const BashStatementList& list);
void append(std::string& out, const BashStatement& statement);
void append(std::string& out, const BashStatementPart& part);
void append(std::string& out, const BashPipeline& pipeline);
void append(std::string& out, const BashCommand& command);
void append(std::string& out, const BashRedirect& redirect);
void append(std::string& out, const BashWord& word);
void append(std::string& out, const BashWordElement& element);

template <class Items>
void appendJoined(std::string& out, const Items& items, std::string_view separator) {
    bool isFirst = true;
    for (const auto& item : items) {
        if (!isFirst) out += separator;
        isFirst = false;
        append(out, item);
    }
}

// --- words ---

void append(std::string& out, const ParameterOperation& operation) {
    const auto put = [&](auto&&... pieces) { ((out += pieces), ...); };
    std::visit(Overloaded{
                   [&](const RemoveShortestMatchEnd& is) { put("%", is.pattern); },
                   [&](const RemoveLongestMatchEnd& is) { put("%%", is.pattern); },
                   [&](const RemoveShortestMatchStart& is) { put("#", is.pattern); },
                   [&](const RemoveLongestMatchStart& is) { put("##", is.pattern); },
                   [&](const Substring& is) {
                       put(":", std::to_string(is.offset));
                       if (is.length) put(":", std::to_string(*is.length));
                   },
                   [&](const DefaultIfEmpty& is) { put(":-", is.text); },
                   [&](const DefaultSetIfEmpty& is) { put(":=", is.text); },
                   [&](const DefaultIfNonEmpty& is) { put(":+", is.text); },
                   [&](const ErrorIfEmpty& is) { put(":?", is.text); },
                   [&](const ReplaceFirst& is) { put("/", is.pattern, "/", is.replacement); },
                   [&](const ReplaceAll& is) { put("//", is.pattern, "/", is.replacement); },
                   [&](const ReplaceAtStart& is) { put("/#", is.pattern, "/", is.replacement); },
                   [&](const ReplaceAtEnd& is) { put("/%", is.pattern, "/", is.replacement); },
                   [&](const Length&) {},  // it stands before the name
                   [&](const Upper&) { put("^^"); },
                   [&](const Lower&) { put(",,"); },
                   [&](const UpperFirstChar&) { put("^"); },
                   [&](const LowerFirstChar&) { put(","); },
               },
               operation);
}

void append(std::string& out, const ParameterExpansion& expansion) {
    out += std::holds_alternative<Length>(expansion.operation) ? "${#" : "${";
    out += expansion.name;
    append(out, expansion.operation);
    out += '}';
}

// Where two opening parentheses would meet, blanks keep them from reading as arithmetic.
void appendInParentheses(std::string& out, const BashPipeline& pipeline) {
    const std::size_t start = out.size();
    append(out, pipeline);
    const bool wouldMeet = out.size() > start && out[start] == '(';
    if (wouldMeet) out.insert(start, 1, ' ');
    out += wouldMeet ? " )" : ")";
}

void append(std::string& out, const BashWordElement& element) {
    const auto put = [&](auto&&... pieces) { ((out += pieces), ...); };
    std::visit(
        Overloaded{
            [&](const Text& is) { out += is.raw; },
            [&](const CommandSubstitution& is) {
                out += "$(";
                appendInParentheses(out, is.pipeline);
            },
            [&](const ProcessSubstitution& is) {
                out += "<(";
                append(out, is.command);
                out += ')';
            },
            [&](const DoubleQuotedExpansion& is) {
                out += '"';
                appendJoined(out, is.elements, "");
                out += '"';
            },
            [&](const SingleQuotedText& is) { put("'", is.text, "'"); },
            [&](const VariableReference& is) { put(is.hasBraces ? "${" : "$", is.name, is.hasBraces ? "}" : ""); },
            [&](const ArithmeticExpansion& is) { put("$((", is.text, "))"); },
            [&](const ParameterExpansion& is) { append(out, is); },
            [&](const BraceExpansion& is) { put("{", is.originalInnerText, "}"); },
        },
        element);
}

void append(std::string& out, const BashWord& word) {
    appendJoined(out, word.elements, "");
}

// --- pipelines ---

void append(std::string& out, const BashRedirect& redirect) {
    if (redirect.sourceFileDescriptor) out += std::to_string(*redirect.sourceFileDescriptor);
    out += redirect.operatorName;
    if (redirect.targetFileDescriptor) {
        out += '&';
        out += std::to_string(*redirect.targetFileDescriptor);
    } else if (redirect.targetFilename) {
        out += ' ';
        append(out, *redirect.targetFilename);
    }
}

std::string rewrittenWords(const BashCommand& command) {
    std::vector<std::string> words;
    words.reserve(command.arguments.size() + 1);
    append(words.emplace_back(), command.command);
    for (const BashWord& argument : command.arguments) append(words.emplace_back(), argument);
    return joined(command.rewriteRule(std::move(words)), " ");
}

void append(std::string& out, const BashCommand& command) {
    if (command.rewriteRule) {
        out += rewrittenWords(command);
    } else {
        append(out, command.command);
        for (const BashWord& argument : command.arguments) {
            out += ' ';
            append(out, argument);
        }
    }
    for (const BashRedirect& redirect : command.redirects) {
        out += ' ';
        append(out, redirect);
    }
}

void append(std::string& out, const BashPipelineComponent& component) {
    std::visit(Overloaded{
                   [&](const BashCommand& is) { append(out, is); },
                   [&](const Assignment& is) {
                       out += is.name;
                       out += '=';
                       append(out, is.value);
                   },
                   [&](const ArithmeticExpression& is) {
                       out += "((";
                       out += is.text;
                       out += "))";
                   },
                   [&](const NestedPipeline& is) {
                       out += '(';
                       appendInParentheses(out, is.pipeline);
                   },
               },
               component);
}

// Components that stood side by side stay so: with a pipe between them `A=1 make` would no longer hand A to make.
void append(std::string& out, const BashPipeline& pipeline) {
    bool isFirst = true;
    for (const BashPipelineComponent& component : pipeline.components) {
        if (!isFirst) out += component.followsPipe ? " | " : " ";
        isFirst = false;
        append(out, component);
    }
}

// --- statements ---

// A shell refuses ";" behind "&", which ends a statement by itself.
void appendTerminator(std::string& out, const BashStatement& statement) {
    if (!statement.runInBackground) out += ';';
}
void appendTerminator(std::string& out, const BashStatementList& list) {
    if (list.statements.empty() || !list.statements.back().runInBackground) out += ';';
}

void append(std::string& out, const BashIfStatement& statement) {
    bool isFirst = true;
    for (const BashIfBranch& branch : statement.branches) {
        out += isFirst ? "if " : " elif ";
        isFirst = false;
        append(out, branch.condition);
        appendTerminator(out, branch.condition);
        out += " then ";
        append(out, branch.innerStatementList);
        appendTerminator(out, branch.innerStatementList);
    }
    if (statement.elseBranch) {
        out += " else ";
        append(out, *statement.elseBranch);
        appendTerminator(out, *statement.elseBranch);
    }
    out += " fi";
}

void appendLoopBody(std::string& out, const BashStatementList& list) {
    out += " do ";
    append(out, list);
    appendTerminator(out, list);
    out += " done";
}

void append(std::string& out, const BashForLoop& loop) {
    out += "for ";
    out += loop.variableName;
    out += " in ";
    appendJoined(out, loop.iterableList, " ");
    out += ';';
    appendLoopBody(out, loop.innerStatementList);
}

void append(std::string& out, const BashWhileLoop& loop) {
    out += "while ";
    append(out, loop.condition);
    appendTerminator(out, loop.condition);
    appendLoopBody(out, loop.innerStatementList);
}

void append(std::string& out, const BashStatementPart& part) {
    std::visit(Overloaded{
                   [&](const Redirects& is) { appendJoined(out, is.redirects, " "); },
                   [&](const And&) { out += "&&"; },
                   [&](const Or&) { out += "||"; },
                   [&](const auto& runnable) { append(out, runnable); },
               },
               part);
}

void append(std::string& out, const BashStatement& statement) {
    appendJoined(out, statement.parts, " ");
    if (statement.runInBackground) out += " &";
}

void append(std::string& out, const BashStatementList& list) {
    const BashStatement* previous = nullptr;
    for (const BashStatement& statement : list.statements) {
        if (previous) {
            appendTerminator(out, *previous);
            out += ' ';
        }
        previous = &statement;
        append(out, statement);
    }
}

// Room for a usual line.
constexpr std::size_t usualLength = 60;

template <class Node>
std::string printed(const Node& node) {
    std::string out;
    out.reserve(usualLength);
    append(out, node);
    return out;
}

}  // namespace

std::string print(const BashStatementList& list) {
    return printed(list);
}
std::string print(const BashStatement& statement) {
    return printed(statement);
}
std::string print(const BashPipeline& pipeline) {
    return printed(pipeline);
}
std::string print(const BashCommand& command) {
    return printed(command);
}
std::string print(const BashRedirect& redirect) {
    return printed(redirect);
}
std::string print(const BashWord& word) {
    return printed(word);
}
std::string print(const BashWordElement& element) {
    return printed(element);
}
std::string print(const ParameterOperation& operation) {
    return printed(operation);
}

}  // namespace brindlet
