#include <algorithm>
#include <utility>

#include "shell/parser.h"
#include "text/characters.h"
#include "text/overloaded.h"

namespace brindlet {

namespace {

std::string_view kindOf(const BashStatementPart& part) {
    return std::visit(Overloaded{
                          [](const BashPipeline&) { return "pipeline"; },
                          [](const BashIfStatement&) { return "if statement"; },
                          [](const BashForLoop&) { return "for loop"; },
                          [](const BashWhileLoop&) { return "while loop"; },
                          [](const Redirects&) { return "redirects"; },
                          [](const And&) { return "&&"; },
                          [](const Or&) { return "||"; },
                      },
                      part);
}

}  // namespace

BasherError Parser::expectedError(std::string_view what) const {
    constexpr std::size_t contextLength = 100;
    const std::string seen = std::string(scanner_.rest()).append(tail_);
    std::string_view context = firstCharacters(seen, contextLength);
    context = context.substr(0, context.find('\n'));
    return {BasherError::Kind::expected, std::string("Expected ").append(what).append(", but saw: ").append(context)};
}

BashStatementList Parser::parse() {
    // Blanks in front are refused; left alone, they would be forgiven before a keyword and nothing else.
    if (scanner_.skipBlanks()) {
        scanner_.setPosition(0);
        throw expectedError("statement list");
    }
    return requireStatementList("statement list");
}

// --- lists and statements ---

std::optional<BashStatementList> Parser::parseStatementList() {
    const std::size_t start = scanner_.position();
    BashStatementList list;
    while (!scanner_.atEnd()) {
        // One terminator ends one statement: an empty line ends the list.
        if (scanner_.standsAt('\n') && scanner_.previous() == '\n' && !list.statements.empty()) break;
        auto statement = parseStatement();
        if (!statement) break;
        list.statements.push_back(std::move(*statement));
    }
    if (list.statements.empty()) {
        scanner_.setPosition(start);
        return std::nullopt;
    }
    scanner_.skipBlanks();
    return list;
}

BashStatementList Parser::requireStatementList(std::string_view what) {
    auto list = parseStatementList();
    if (!list) throw expectedError(what);
    return std::move(*list);
}

std::optional<BashStatement> Parser::parseStatement() {
    BashStatement statement;
    if (!appendStatementPart(statement.parts)) return std::nullopt;
    for (;;) {
        readRedirects(statement);
        auto connective = parseAndOr();
        if (!connective) break;
        const std::string_view name = kindOf(*connective);
        if (statement.parts.size() == 1) statement.parts.reserve(3);
        statement.parts.push_back(std::move(*connective));
        if (!appendStatementPart(statement.parts)) throw expectedError("statement following " + std::string(name));
    }
    endStatement(statement);
    return statement;
}

BashStatement Parser::requireStatement(std::string_view what) {
    auto statement = parseStatement();
    if (!statement) throw expectedError(what);
    return std::move(*statement);
}

void Parser::readRedirects(BashStatement& statement) {
    Redirects read;
    while (auto redirect = parseRedirect()) read.redirects.push_back(std::move(*redirect));
    if (!read.redirects.empty()) statement.parts.emplace_back(std::move(read));
}

void Parser::endStatement(BashStatement& statement) {
    scanner_.skipBlanks();
    statement.runInBackground = scanBackgroundMark();
    const bool isTerminated = scanner_.take(';') || scanner_.take('\n');
    if (!isTerminated && !scanner_.atEnd() && !statement.runInBackground) {
        throw expectedError(std::string("terminator after ").append(kindOf(statement.parts.back())));
    }
    scanner_.skipBlanks();
}

bool Parser::scanBackgroundMark() {
    if (scanner_.standsAt("&&") || !scanner_.take('&')) return false;
    scanner_.skipBlanks();
    return true;
}

std::optional<BashStatementPart> Parser::parseAndOr() {
    const bool isBehindBlank = scanner_.isBehindBlank();
    const bool isAnd = scanner_.take("&&");
    if (!isAnd && !scanner_.take("||")) return std::nullopt;
    if (!isBehindBlank || !scanner_.skipBlanks()) {
        throw expectedError(isAnd ? "whitespace surrounding &&" : "whitespace surrounding ||");
    }
    if (isAnd) return And{};
    return Or{};
}

bool Parser::appendStatementPart(std::vector<BashStatementPart>& parts) {
    if (parsePipeline(std::get<BashPipeline>(parts.emplace_back(BashPipeline{})))) return true;
    parts.pop_back();
    if (auto statement = parseIf()) {
        parts.emplace_back(std::move(*statement));
    } else if (auto forLoop = parseForLoop()) {
        parts.emplace_back(std::move(*forLoop));
    } else if (auto whileLoop = parseWhileLoop()) {
        parts.emplace_back(std::move(*whileLoop));
    } else {
        return false;
    }
    return true;
}

// --- compound statements ---

bool Parser::scanKeyword(std::string_view keyword) {
    if (!scanner_.standsAtPlainWord(keyword)) return false;
    scanner_.setPosition(scanner_.position() + keyword.size());
    scanner_.skipBlanks();
    return true;
}

void Parser::requireKeyword(std::string_view keyword, std::string_view what) {
    if (!scanKeyword(keyword)) throw expectedError(what);
}

std::optional<BashIfStatement> Parser::parseIf() {
    BashIfStatement statement;
    if (!parseBranch("if", statement)) return std::nullopt;
    while (parseBranch("elif", statement)) {
    }
    if (scanKeyword("else")) {
        const NestingGuard guard(*this);
        statement.elseBranch = requireStatementList("inner statements after else");
    }
    requireKeyword("fi", "fi after if statement");
    return statement;
}

bool Parser::parseBranch(std::string_view keyword, BashIfStatement& statement) {
    if (!scanKeyword(keyword)) return false;
    const NestingGuard guard(*this);
    const std::string name(keyword);
    BashIfBranch branch;
    branch.condition = requireStatement("condition after " + name);
    requireKeyword("then", "'then' after " + name + " condition");
    branch.innerStatementList = requireStatementList("inner statements after " + name);
    statement.branches.push_back(std::move(branch));
    return true;
}

std::optional<BashForLoop> Parser::parseForLoop() {
    if (!scanKeyword("for")) return std::nullopt;
    const NestingGuard guard(*this);
    BashForLoop loop;
    loop.variableName = std::string(scanner_.scanName());
    if (loop.variableName.empty()) throw expectedError("variable name after for");
    if (!scanner_.skipBlanks()) throw expectedError("whitespace after variable name");
    requireKeyword("in", "'in' after for loop's variable name");
    loop.iterableList = parseIterableList();
    scanner_.skipBlanks();
    requireKeyword("do", "'do' inside for loop");
    loop.innerStatementList = requireStatementList("inner statements after for loop");
    if (!scanKeyword("done")) {
        // The word that stands here counts as read.
        scanPlainText();
        throw expectedError("'done' after for loop");
    }
    return loop;
}

std::vector<BashWord> Parser::parseIterableList() {
    std::vector<BashWord> words;
    do {
        words.push_back(requireWord("terminator after for loop's iterable list"));
    } while (!scanner_.take(';') && !scanner_.take('\n') && !scanner_.atEnd());
    return words;
}

std::optional<BashWhileLoop> Parser::parseWhileLoop() {
    if (!scanKeyword("while")) return std::nullopt;
    const NestingGuard guard(*this);
    BashWhileLoop loop;
    loop.condition = requireStatement("condition after while");
    // The cursor stays: what was read so far is neither a statement nor an error of its own.
    if (!scanKeyword("do")) return std::nullopt;
    loop.innerStatementList = requireStatementList("inner statements after while");
    requireKeyword("done", "'done' after while loop");
    return loop;
}

}  // namespace brindlet
