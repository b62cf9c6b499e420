// The grammar: recursive descent directly on characters, with no tokens in between. Private to this folder; Basher is
// the way in.
//
//     Parser parser(text, "", 0);
//     BashStatementList tree = parser.parse();
//
// Names and order of the steps decide which error a refused text gets. Where a step "answers nothing" it returns
// nullopt and the caller tries the next one; every other trouble is a BasherError.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/basher.h"
#include "shell/scanner.h"
#include "shell/syntax_tree.h"

namespace brindlet {

class Parser {
  public:
    // `tail` is what stands behind `text` for an error's context, `nesting` how deep the text itself stands.
    Parser(std::string_view text, std::string_view tail, int nesting)
        : scanner_(text), tail_(tail), nesting_(nesting) {}

    // As much of the text as makes a statement list; position() tells how far it reached.
    BashStatementList parse();
    std::size_t position() const { return scanner_.position(); }

  private:
    enum class Quoting { none, inDoubleQuotes };
    class NestingGuard;
    // Unquoted text as it was written, and what it stands for where a backslash makes that another text.
    struct PlainText {
        std::string_view raw;
        bool isEscaped = false;
        std::string unescaped;

        std::string_view value() const { return isEscaped ? std::string_view(unescaped) : raw; }
    };

    // --- parse_statements.cpp ---
    std::optional<BashStatementList> parseStatementList();
    BashStatementList requireStatementList(std::string_view what);
    std::optional<BashStatement> parseStatement();
    BashStatement requireStatement(std::string_view what);
    void readRedirects(BashStatement& statement);
    void endStatement(BashStatement& statement);
    bool scanBackgroundMark();
    std::optional<BashStatementPart> parseAndOr();
    bool appendStatementPart(std::vector<BashStatementPart>& parts);
    bool scanKeyword(std::string_view keyword);
    void requireKeyword(std::string_view keyword, std::string_view what);
    std::optional<BashIfStatement> parseIf();
    bool parseBranch(std::string_view keyword, BashIfStatement& statement);
    std::optional<BashForLoop> parseForLoop();
    std::vector<BashWord> parseIterableList();
    std::optional<BashWhileLoop> parseWhileLoop();

    // --- parse_pipelines.cpp ---
    // These fill the node that they are given, where it will stay, and answer whether there was one.
    bool parsePipeline(BashPipeline& pipeline);
    BashPipeline requirePipeline(std::string_view what);
    bool appendComponent(std::vector<BashPipelineComponent>& components);
    ArithmeticExpression parseArithmeticExpression();
    std::optional<Assignment> parseAssignment();
    bool parseCommand(BashCommand& command);
    std::optional<BashRedirect> parseRedirect();
    std::optional<std::int64_t> parseOptionalNumber();
    bool standsAtRedirectWithNumber();

    // --- parse_words.cpp ---
    bool parseWord(BashWord& word);
    BashWord requireWord(std::string_view what);
    bool appendWordElement(std::vector<BashWordElement>& elements);
    void checkWordEnd();
    SingleQuotedText parseSingleQuoted();
    bool appendPlainText(std::vector<BashWordElement>& elements);
    PlainText scanPlainText();
    BashWordElement parseExpansion(Quoting quoting);
    BashWordElement parseDollar();
    std::string parseArithmeticText(std::string_view what);
    CommandSubstitution parseBackticks(Quoting quoting);
    BashPipeline parseEscapedBackticks(std::string_view inner, Quoting quoting);
    DoubleQuotedExpansion parseDoubleQuoted();
    BashWordElement parseBraces();
    // False where no word or component can begin, so that none is made in vain.
    bool mayBeginWord() const { return !scanner_.atEnd() && !byteClass::has(scanner_.peek(), byteClass::wordEnd); }
    // A newline directly behind a closing parenthesis (or the backtick that prints as one) ends the statement, anywhere
    // else it is plain word text.
    bool standsAtLineEnd() const { return scanner_.standsAt('\n') && scanner_.position() == closedAt_; }

    // "Expected <what>, but saw: " and the text from the cursor on, cut to 100 characters and to its first line.
    BasherError expectedError(std::string_view what) const;
    void require(std::string_view wanted, std::string_view what) {
        if (!scanner_.take(wanted)) throw expectedError(what);
    }

    void requireClosing(std::string_view wanted, std::string_view what) {
        require(wanted, what);
        closedAt_ = scanner_.position();
    }

    Scanner scanner_;
    std::string_view tail_;
    int nesting_ = 0;
    std::size_t closedAt_ = std::string_view::npos;  // behind the last closing parenthesis or backtick
    std::size_t rangeBytes_ = 0;                     // what brace expansions like {1..9} have taken so far
};

// Counts a level while it lives; one level too many is refused.
class Parser::NestingGuard {
  public:
    explicit NestingGuard(Parser& parser) : parser_(parser) {
        if (parser_.nesting_ >= Basher::maxNesting) {
            throw BasherError(BasherError::Kind::unsupported, "The command is nested too deeply to be read.");
        }
        ++parser_.nesting_;
    }
    ~NestingGuard() { --parser_.nesting_; }
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;

  private:
    Parser& parser_;
};

}  // namespace brindlet
