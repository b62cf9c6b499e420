#include <utility>

#include "shell/parser.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// Longest first.
constexpr std::string_view redirectOperators[] = {">>", ">", "<"};

// Room for the words of a usual command, so that most argument lists are allocated once.
constexpr std::size_t usualArgumentCount = 4;

}  // namespace

bool Parser::parsePipeline(BashPipeline& pipeline) {
    bool afterPipe = false;
    while (appendComponent(pipeline.components)) {
        pipeline.components.back().followsPipe = afterPipe;
        // A line end behind ")" is left to the statement.
        if (standsAtLineEnd()) return true;
        scanner_.skipBlanks();
        afterPipe = scanner_.standsAt('|') && !scanner_.standsAt("||");
        if (!afterPipe) continue;
        scanner_.take('|');
        scanner_.skipBlanks();
    }
    if (afterPipe) throw expectedError("command after pipe");
    scanner_.skipBlanks();
    return !pipeline.components.empty();
}

BashPipeline Parser::requirePipeline(std::string_view what) {
    BashPipeline pipeline;
    if (!parsePipeline(pipeline)) throw expectedError(what);
    return pipeline;
}

bool Parser::appendComponent(std::vector<BashPipelineComponent>& components) {
    if (scanner_.take("((")) {
        components.emplace_back(parseArithmeticExpression());
        return true;
    }
    if (scanner_.take('(')) {
        const NestingGuard guard(*this);
        BashPipeline inner = requirePipeline("nested pipeline");
        requireClosing(")", "closing parenthesis");
        components.emplace_back(NestedPipeline{std::move(inner)});
        return true;
    }
    if (!mayBeginWord() || standsAtRedirectWithNumber()) return false;
    if (auto assignment = parseAssignment()) {
        components.emplace_back(std::move(*assignment));
        return true;
    }
    if (parseCommand(std::get<BashCommand>(components.emplace_back(BashCommand{})))) return true;
    components.pop_back();
    return false;
}

ArithmeticExpression Parser::parseArithmeticExpression() {
    return {parseArithmeticText("closing '))' for arithmetic expression")};
}

std::optional<Assignment> Parser::parseAssignment() {
    const std::size_t start = scanner_.position();
    const std::string_view name = scanner_.scanName();
    if (name.empty() || !scanner_.take('=')) {
        scanner_.setPosition(start);
        return std::nullopt;
    }
    return Assignment{std::string(name), requireWord("value after assignment")};
}

bool Parser::parseCommand(BashCommand& command) {
    if (!parseWord(command.command)) return false;
    for (;;) {
        if (auto redirect = parseRedirect()) {
            command.redirects.push_back(std::move(*redirect));
            continue;
        }
        if (!command.redirects.empty() || standsAtLineEnd() || !mayBeginWord()) return true;
        if (command.arguments.empty()) command.arguments.reserve(usualArgumentCount);
        if (!parseWord(command.arguments.emplace_back())) {
            command.arguments.pop_back();
            return true;
        }
    }
}

std::optional<BashRedirect> Parser::parseRedirect() {
    if (!byteClass::has(scanner_.peek(), byteClass::redirectStart)) return std::nullopt;
    const std::size_t start = scanner_.position();
    BashRedirect redirect;
    redirect.sourceFileDescriptor = parseOptionalNumber();
    for (const std::string_view name : redirectOperators) {
        if (!scanner_.take(name)) continue;
        redirect.operatorName = std::string(name);
        break;
    }
    if (redirect.operatorName.empty()) {
        scanner_.setPosition(start);
        return std::nullopt;
    }
    if (scanner_.take('&')) {
        redirect.targetFileDescriptor = parseOptionalNumber();
        if (!redirect.targetFileDescriptor) throw expectedError("file descriptor after '&'");
    } else {
        scanner_.skipBlanks();
        redirect.targetFilename = requireWord("filename after " + redirect.operatorName);
    }
    scanner_.skipBlanks();
    return redirect;
}

std::optional<std::int64_t> Parser::parseOptionalNumber() {
    const std::size_t start = scanner_.position();
    const std::string_view digits = scanner_.scanDecimalDigits();
    const auto number = digits.empty() ? std::nullopt : parsedInteger(digits);
    if (!number) scanner_.setPosition(start);
    return number;
}

// A number directly before a redirect operator belongs to the redirect, also behind ")" where no command can take it.
bool Parser::standsAtRedirectWithNumber() {
    if (!byteClass::has(scanner_.peek(), byteClass::digit)) return false;
    const std::size_t start = scanner_.position();
    const bool result = parseOptionalNumber() && (scanner_.standsAt('<') || scanner_.standsAt('>'));
    scanner_.setPosition(start);
    return result;
}

}  // namespace brindlet
