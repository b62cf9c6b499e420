#include "ui/json.h"

#include <gtest/gtest.h>

#include "analysis/described_changes.h"
#include "ui/predict_report.h"
#include "ui/terminal/shown_text.h"

namespace brindlet {
namespace json_tests {

std::string lineJson(std::string_view line) {
    return jsonText(toJson(Basher(std::string(line)).parse()));
}

TEST(Json, Lines) {
    EXPECT_EQ(lineJson("ls"),
              R"({"statements":[{"parts":[{"pipeline":{"components":[{"command":{"command":{"elements":)"
              R"([{"text":{"value":"ls","raw":"ls"}}]},"arguments":[],"redirects":[]}}]}}],)"
              R"("runInBackground":false}]})");
    EXPECT_EQ(jsonText(toJson(BashStatementList{})), R"({"statements":[]})");
    const BashStatementList list = Basher("A=1 (( 2 ))").parse();
    EXPECT_EQ(jsonText(toJson(list.statements.at(0).parts.at(0))),
              R"({"pipeline":{"components":[{"assignment":{"name":"A","value":{"elements":)"
              R"([{"text":{"value":"1","raw":"1"}}]}}},{"arithmeticExpression":" 2 "}]}})");
}

// Each case by itself, since a parser need not make every one.
TEST(Json, Nodes) {
    const Text a{"a", "a"};
    const std::string aJson = R"({"text":{"value":"a","raw":"a"}})";
    const std::string wordJson = R"({"elements":[)" + aJson + "]}";
    const BashWord word{{a}};
    const BashCommand command{word, {}, {}, {}};
    const std::string commandJson = R"({"command":)" + wordJson + R"(,"arguments":[],"redirects":[]})";
    const BashPipeline pipeline{{command}};
    const std::string pipelineJson = R"({"components":[{"command":)" + commandJson + "}]}";
    const BashStatement statement{{And{}, Or{}}, true};
    const std::string statementJson = R"({"parts":[{"and":{}},{"or":{}}],"runInBackground":true})";
    const BashStatementList list{{statement}};
    const std::string listJson = R"({"statements":[)" + statementJson + "]}";

    const std::pair<Json, std::string> cases[] = {
        {toJson(BashStatementPart(BashIfStatement{{{statement, list}}, {}})),
         R"({"ifStatement":{"branches":[{"condition":)" + statementJson + R"(,"innerStatementList":)" + listJson +
             R"(}],"elseBranch":null}})"},
        {toJson(BashStatementPart(BashForLoop{"f", {word}, list})),
         R"({"forLoop":{"variableName":"f","iterableList":[)" + wordJson + R"(],"innerStatementList":)" + listJson +
             "}}"},
        {toJson(BashStatementPart(BashWhileLoop{statement, list})),
         R"({"whileLoop":{"condition":)" + statementJson + R"(,"innerStatementList":)" + listJson + "}}"},
        {toJson(BashStatementPart(Redirects{{{">>", 2, word, {}}, {">", {}, {}, 1}}})),
         R"({"redirects":[{"operatorName":">>","sourceFileDescriptor":2,"targetFilename":)" + wordJson +
             R"(,"targetFileDescriptor":null},{"operatorName":">","sourceFileDescriptor":null,)"
             R"("targetFilename":null,"targetFileDescriptor":1}]})"},
        {toJson(BashPipelineComponent(NestedPipeline{pipeline})), R"({"nestedPipeline":)" + pipelineJson + "}"},
        {toJson(BashWordElement(CommandSubstitution{pipeline})), R"({"commandSubstitution":)" + pipelineJson + "}"},
        {toJson(BashWordElement(ProcessSubstitution{command})), R"({"processSubstitution":)" + commandJson + "}"},
        {toJson(BashWordElement(DoubleQuotedExpansion{{a}})), R"({"doubleQuotedExpansion":[)" + aJson + "]}"},
        {toJson(BashWordElement(SingleQuotedText{"'\""})), R"({"singleQuotedText":"'\""})"},
        {toJson(BashWordElement(VariableReference{"?", false})),
         R"({"variableReference":{"name":"?","hasBraces":false}})"},
        {toJson(BashWordElement(BraceExpansion{{"a", "b"}, "a,b"})),
         R"({"braceExpansion":{"elements":["a","b"],"originalInnerText":"a,b"}})"},
        {toJson(BashWordElement(ParameterExpansion{"x", RemoveShortestMatchEnd{".*"}})),
         R"({"parameterExpansion":{"name":"x","operation":{"removeShortestMatchEnd":".*"}}})"},
        {toJson(ParameterOperation(Substring{1, {}})), R"({"substring":{"offset":1,"length":null}})"},
        {toJson(ParameterOperation(ReplaceAll{"a", "b"})), R"({"replaceAll":{"pattern":"a","replacement":"b"}})"},
        {toJson(ParameterOperation(Length{})), R"({"length":{}})"},
        {toJson(BasherError(BasherError::Kind::expected, "x")), R"({"expected":"x"})"},
    };
    for (const auto& [json, expected] : cases) EXPECT_EQ(jsonText(json), expected);
}

TEST(Json, Patterns) {
    EXPECT_EQ(jsonText(jsonList(Pattern("a*[a-z[:alpha:]]@(a|)**?").sections())),
              R"([{"constant":"a"},{"componentWildcard":{}},{"oneOf":{"classes":[{"range":["a","z"]},)"
              R"({"named":"alpha"}],"isNegated":false}},{"patternList":{"style":"one","alternatives":)"
              R"([[{"constant":"a"}],[]]}},{"pathWildcard":{}},{"singleCharacter":{}}])");
    EXPECT_EQ(jsonText(toJson(PatternParsingError{PatternParsingError::Kind::invalidNamedCharacterClass, "foo"})),
              R"({"invalidNamedCharacterClass":"foo"})");
    EXPECT_EQ(jsonText(toJson(PatternParsingError{PatternParsingError::Kind::rangeNotClosed, ""})),
              R"({"rangeNotClosed":{}})");
}

TEST(Json, SideEffectTypes) {
    const std::pair<SideEffectType, std::string_view> cases[] = {
        {PowerAction::sleep, R"({"powerAction":"sleep"})"},
        {ExtraFileChanges{ExtraFileChanges::Kind::moves, 5}, R"({"extraFileChanges":{"kind":"moves","count":5}})"},
        {ComplexCommand{"\xff"}, "{\"complexCommand\":\"\uFFFD\"}"},
        {PlainSideEffect::networkAccess, R"({"networkAccess":{}})"},
    };
    for (const auto& [type, expected] : cases) EXPECT_EQ(jsonText(toJson(type)), expected);
}

PredictReport report() {
    PredictReport report{.command = "mv a.txt b.txt",
                         .result = resultOf({"overwrite /w/b.txt", "move /w/a.txt /w/b.txt"},
                                            {{PlainSideEffect::runningUnknownScript, "Runs 'x\n\x1b[2J'"}}),
                         .runs = "once",
                         .folder = FilePath("/w"),
                         .home = FilePath("/home/u"),
                         .toggles = {CommandEffect::harmless, CommandEffect::haveSignificantSideEffects},
                         .missingPackage = {}};
    report.result.exitCode = 0;
    report.result.rewrittenCommand = report.command;
    report.result.requiredPackages = {"FFmpeg", "7zip"};
    return report;
}

TEST(PredictReport, Json) {
    EXPECT_EQ(jsonText(toJson(report())),
              R"({"command":"mv a.txt b.txt","rewrittenCommand":"mv a.txt b.txt","runs":"once","exitCode":0,)"
              R"("output":{"known":""},"changes":[)"
              R"({"type":"move","path":"/w/b.txt","source":"/w/a.txt","isDirectory":false},)"
              R"({"type":"overwrite","path":"/w/b.txt","source":null,"isDirectory":false}],)"
              R"("sideEffects":[{"type":{"runningUnknownScript":{}},"specificDescription":"Runs 'x\n\u001b[2J'",)"
              R"("description":"Runs 'x\n\u001b[2J'"}],"commandErrors":[],"analysisError":null,)"
              R"("requiredPackages":["7zip","FFmpeg"],"missingPackage":null,"effects":["Harmless commands",)"
              R"("Rename files","Have significant side effects","Delete or overwrite files",)"
              R"("Run unknown scripts or commands"],"risk":"high","reasons":["Rename files",)"
              R"("Delete or overwrite files","Run unknown scripts or commands"],"rows":[)"
              R"({"icon":"exclamationmark","color":"red","text":"Overwrites b.txt","subtitle":null},)"
              R"({"icon":"character.cursor.ibeam","color":"blue","text":"Renames a.txt to b.txt","subtitle":null},)"
              R"({"icon":"applescript","color":"red","text":"Runs unpredictable script","subtitle":)"
              R"("Proceed with caution: Runs 'x\n\u001b[2J'\nMay control apps or modify files."}]})");

    PredictReport stopped = report();
    stopped.result = {};
    stopped.result.output = SimString::unknown();
    stopped.result.analysisError = BasherAnalysisError{BasherAnalysisError::Kind::noFilesSelected, ""};
    const Json json = toJson(stopped);
    EXPECT_EQ(jsonText(json["exitCode"]), "null");
    EXPECT_EQ(jsonText(json["output"]), R"({"unknown":{}})");
    EXPECT_EQ(jsonText(json["analysisError"]), R"({"noFilesSelected":{}})");
}

TEST(PredictReport, TextForATerminal) {
    EXPECT_EQ(predictionText(report(), {.hasColor = false, .hasUnicode = false}),
              "Brindlet predicts:\n"
              "  ! Overwrites b.txt\n"
              "  I Renames a.txt to b.txt\n"
              "  S Runs unpredictable script\n"
              "    Proceed with caution: Runs 'x\\n\\x1b[2J'\n"
              "    May control apps or modify files.\n"
              "Risk: high\n"
              "Asks before running: Rename files, Delete or overwrite files, Run unknown scripts or commands\n");

    PredictReport plain = report();
    plain.result = resultOf({});
    EXPECT_EQ(predictionText(plain, {.hasColor = true}),
              "\x1b[1mBrindlet predicts:\x1b[0m\n"
              "  No file changes or known side effects; likely informational only.\n"
              "Risk: \x1b[32mlow\x1b[0m\n");
}

TEST(ShownText, NothingSteersTheTerminal) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"né \\ 👩‍👩‍👧", "né \\ 👩‍👩‍👧"},
        {"a\n\r\t\x1b[31m\x07\x7f", "a\\n\\r\\t\\x1b[31m\\x07\\x7f"},
        {std::string_view("\0", 1), "\\x00"},
        {"\xff\xc3", "\\xff\\xc3"},
        {"\u009b31m", "\\u{9b}31m"},  // a control sequence in one character
        {"gpj.\u202eexe\u2069", "gpj.\\u{202e}exe\\u{2069}"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(shownText(text), shown);
}

}  // namespace json_tests
}  // namespace brindlet
