#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "shell/parser.h"
#include "shell/raw_text.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view bashKeywords[] = {"for",  "do", "while", "select", "done",  "if",       "then", "elif",
                                             "else", "fi", "case",  "esac",   "until", "function", "in"};
constexpr std::size_t longestKeyword = 8;

constexpr bool beginsKeyword(char first) {
    for (const std::string_view keyword : bashKeywords) {
        if (keyword.front() == first) return true;
    }
    return false;
}

constexpr std::array<bool, 256> keywordStarts = [] {
    std::array<bool, 256> result{};
    for (std::size_t byte = 0; byte < result.size(); ++byte) result[byte] = beginsKeyword(static_cast<char>(byte));
    return result;
}();

bool isKeyword(std::string_view word) {
    if (word.size() < 2 || word.size() > longestKeyword) return false;
    if (!keywordStarts[static_cast<unsigned char>(word.front())]) return false;
    return std::find(std::begin(bashKeywords), std::end(bashKeywords), word) != std::end(bashKeywords);
}

// Literal runs inside double quotes grow together.
void appendText(std::vector<BashWordElement>& elements, std::string_view value, std::string_view raw) {
    if (!elements.empty()) {
        if (auto* last = std::get_if<Text>(&elements.back())) {
            last->value += value;
            last->raw += raw;
            return;
        }
    }
    elements.emplace_back(Text{std::string(value), std::string(raw)});
}

// What a backslash and this character stand for inside double quotes.
std::string_view doubleQuotedEscape(std::string_view character) {
    if (character == "n") return "\n";
    if (character == "t") return "\t";
    if (character == "r") return "\r";
    return character;
}

// The characters before which a backslash inside backticks goes.
constexpr std::string_view backtickEscapes = "$`\\";
constexpr std::string_view backtickEscapesInDoubleQuotes = "$`\\\"";

// The text inside backticks as a shell reads it there: a level of backslashes goes.
std::string unescapedBackticks(std::string_view inner, std::string_view escapes) {
    std::string result;
    result.reserve(inner.size() + 1);
    bool isEscaping = false;  // the last character of the result is a backslash that takes the next one
    for (std::size_t at = 0; at < inner.size(); ++at) {
        if (inner[at] == '\\' && at + 1 < inner.size() && contains(escapes, inner.substr(at + 1, 1))) ++at;
        result += inner[at];
        isEscaping = inner[at] == '\\' && !isEscaping;
    }
    // A last backslash is itself; before the closing parenthesis of the other form it needs to say so.
    if (isEscaping) result += '\\';
    return result;
}

}  // namespace

bool Parser::parseWord(BashWord& word) {
    while (!scanner_.atEnd() && appendWordElement(word.elements)) {
    }
    if (word.elements.empty()) return false;
    checkWordEnd();
    return true;
}

BashWord Parser::requireWord(std::string_view what) {
    BashWord word;
    if (!parseWord(word)) throw expectedError(what);
    return word;
}

bool Parser::appendWordElement(std::vector<BashWordElement>& elements) {
    switch (scanner_.peek()) {
        case '$':
        case '`':
            elements.push_back(parseExpansion(Quoting::none));
            return true;
        case '{':
            elements.push_back(parseBraces());
            return true;
        case '"':
            elements.emplace_back(parseDoubleQuoted());
            return true;
        case '\'':
            elements.emplace_back(parseSingleQuoted());
            return true;
        default:
            return appendPlainText(elements);
    }
}

void Parser::checkWordEnd() {
    if (scanner_.atEnd() || standsAtLineEnd() || scanner_.skipSpacesAndTabs()) return;
    if (byteClass::has(scanner_.peek(), byteClass::wordEnd)) return;
    throw expectedError("whitespace or operator: | & ; ( ) < >");
}

SingleQuotedText Parser::parseSingleQuoted() {
    scanner_.take('\'');
    if (scanner_.take('\'')) return {};
    const std::string_view text = scanner_.scanUpTo("'");
    if (text.empty()) throw expectedError("closing \"'\" for single quoted expansion");
    require("'", "'");
    return {std::string(text)};
}

// --- plain text ---

bool Parser::appendPlainText(std::vector<BashWordElement>& elements) {
    if (standsAtLineEnd()) return false;
    const std::size_t start = scanner_.position();
    const PlainText text = scanPlainText();
    if (text.raw.empty()) return false;
    // A keyword is no word, however it is escaped.
    if (isKeyword(text.value())) {
        scanner_.setPosition(start);
        return false;
    }
    // Made empty and then filled: nothing is moved, and no storage cleared that the strings overwrite.
    auto& element = std::get<Text>(elements.emplace_back(Text{}));
    element.value.assign(text.value().data(), text.value().size());
    element.raw.assign(text.raw.data(), text.raw.size());
    return true;
}

Parser::PlainText Parser::scanPlainText() {
    const std::size_t start = scanner_.position();
    PlainText text;
    const std::string_view first = scanner_.scanPlainRun();
    if (scanner_.standsAt('\\')) {
        text.isEscaped = true;
        text.unescaped = std::string(first);
        while (scanner_.take('\\')) {
            text.unescaped += scanner_.atEnd() ? std::string_view("\\") : scanner_.scanCharacter();
            text.unescaped += scanner_.scanPlainRun();
        }
    }
    text.raw = scanner_.textFrom(start);
    return text;
}

// --- expansions ---

BashWordElement Parser::parseExpansion(Quoting quoting) {
    if (scanner_.take('`')) return parseBackticks(quoting);
    if (scanner_.take("$((")) return ArithmeticExpansion{parseArithmeticText("closing '))' for arithmetic expansion")};
    if (scanner_.take("$(")) {
        const NestingGuard guard(*this);
        scanner_.skipBlanks();
        BashPipeline pipeline = requirePipeline("inner command of");
        requireClosing(")", "closing bracket for command expansion");
        return CommandSubstitution{std::move(pipeline)};
    }
    return parseDollar();
}

BashWordElement Parser::parseDollar() {
    if (scanner_.take("${")) {
        const std::string_view text = scanner_.scanUpTo("}");
        if (text.empty()) throw expectedError("closing '}' for variable");
        require("}", "}");
        return parseParameter(text);
    }
    if (scanner_.take("$?")) return VariableReference{"?", false};
    scanner_.take('$');
    const std::string_view name = scanner_.scanName();
    if (name.empty()) throw expectedError("identifier after $");
    return VariableReference{std::string(name), false};
}

// The text up to "))", behind the opening parentheses.
std::string Parser::parseArithmeticText(std::string_view what) {
    const std::string_view text = scanner_.scanUpTo("))");
    if (text.empty()) throw expectedError(what);
    requireClosing("))", "))");
    return std::string(text);
}

// The cursor stands behind the opening backtick. Without a closing one all the rest is read as the inner text, so that
// a fault in it is told first.
CommandSubstitution Parser::parseBackticks(Quoting quoting) {
    const NestingGuard guard(*this);
    const std::size_t start = scanner_.position();
    const std::size_t outerEnd = scanner_.end();
    bool isEscaped = false;
    while (!scanner_.atEnd() && !scanner_.standsAt('`')) {
        isEscaped |= scanner_.take('\\');
        if (!scanner_.atEnd()) scanner_.scanCharacter();
    }
    BashPipeline pipeline;
    if (isEscaped) {
        pipeline = parseEscapedBackticks(scanner_.textFrom(start), quoting);
    } else {
        scanner_.setEnd(scanner_.position());
        scanner_.setPosition(start);
        pipeline = requirePipeline("inner command of");
        scanner_.setEnd(outerEnd);
    }
    requireClosing("`", "closing '`' for command expansion");
    return {std::move(pipeline)};
}

// The cursor stands behind the inner text, which is read by a parser of its own.
BashPipeline Parser::parseEscapedBackticks(std::string_view inner, Quoting quoting) {
    const std::string text =
        unescapedBackticks(inner, quoting == Quoting::inDoubleQuotes ? backtickEscapesInDoubleQuotes : backtickEscapes);
    Parser innerParser(text, scanner_.rest(), nesting_);
    innerParser.rangeBytes_ = rangeBytes_;
    BashPipeline pipeline = innerParser.requirePipeline("inner command of");
    if (!innerParser.scanner_.atEnd()) throw innerParser.expectedError("closing '`' for command expansion");
    rangeBytes_ = innerParser.rangeBytes_;
    return pipeline;
}

// --- quotes and braces ---

DoubleQuotedExpansion Parser::parseDoubleQuoted() {
    const NestingGuard guard(*this);
    scanner_.take('"');
    DoubleQuotedExpansion quoted;
    while (!scanner_.atEnd() && !scanner_.standsAt('"')) {
        bool hasRead = false;
        if (const std::string_view run = scanner_.scanDoubleQuotedRun(); !run.empty()) {
            appendText(quoted.elements, run, run);
            hasRead = true;
        }
        if (const std::size_t start = scanner_.position(); scanner_.take('\\') && !scanner_.atEnd()) {
            const std::string_view character = scanner_.scanCharacter();
            appendText(quoted.elements, doubleQuotedEscape(character), scanner_.textFrom(start));
            hasRead = true;
        }
        // A backtick can only stand here behind an escape; it opens a substitution as "$" does.
        if (scanner_.standsAt('$') || scanner_.standsAt('`')) {
            quoted.elements.push_back(parseExpansion(Quoting::inDoubleQuotes));
            hasRead = true;
        }
        if (!hasRead) throw expectedError("valid content inside double quotes");
    }
    require("\"", "closing '\"' for double quoted expansion");
    return quoted;
}

BashWordElement Parser::parseBraces() {
    if (scanner_.take("{}")) return Text{"{}", "{}"};
    scanner_.take('{');
    const std::string_view inner = scanner_.scanUpTo("}");
    if (inner.empty()) throw expectedError("closing '}' for brace expansion");
    require("}", "}");
    return expandBraces(inner, rangeBytes_);
}

}  // namespace brindlet
