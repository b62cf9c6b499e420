// The values that the program prints with --json. A record is an object of its fields in order, a tagged union an
// object whose one key is the case's name, an absent optional null.
//
//     print(jsonText(toJson(Basher("ls").parse())));  // {"statements":[{"parts":[{"pipeline":...
#pragma once

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/analysis_result.h"
#include "analysis/risk.h"
#include "glob/pattern.h"
#include "shell/basher.h"
#include "shell/syntax_tree.h"
#include "ui/prediction_rows.h"

namespace brindlet {

using Json = nlohmann::ordered_json;

// On one line. Bytes that are no UTF-8 are printed as U+FFFD, so that the text is JSON whatever the values hold.
std::string jsonText(const Json& json);

// {"name": payload}; an empty object stands for a case without payload.
Json taggedJson(std::string_view name, Json payload = Json::object());

struct JsonField {
    std::string_view name;
    mutable Json value;  // moved out by recordJson
};

// An object of the fields in order. Json's own list of pairs would do, but growing an object that way copies all that
// is in it already, which for a tree is a copy of the rest at every level.
Json recordJson(std::initializer_list<JsonField> fields);

// The items in order.
template <class Items>
Json jsonList(const Items& items) {
    Json list = Json::array();
    for (const auto& item : items) list.push_back(toJson(item));
    return list;
}

// The value, or null.
template <class Value>
Json optionalJson(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

// A prediction's parts.
Json toJson(const SimString& text);
Json toJson(const PredictedChange& change);
Json toJson(const SideEffectType& type);
Json toJson(const SideEffect& sideEffect);
Json toJson(const CommandError& error);
Json toJson(const BasherAnalysisError& error);
Json toJson(const std::set<CommandEffect>& effects);
Json toJson(const ChangesViewIconAndText& row);

// A parsed line. What only concerns its printing (rewrite rules, where a pipe was written) is left out.
Json toJson(const BashStatementList& list);
Json toJson(const BashStatement& statement);
Json toJson(const BashStatementPart& part);
Json toJson(const BashIfBranch& branch);
Json toJson(const BashPipeline& pipeline);
Json toJson(const BashPipelineComponent& component);
Json toJson(const BashCommand& command);
Json toJson(const BashRedirect& redirect);
Json toJson(const BashWord& word);
Json toJson(const BashWordElement& element);
Json toJson(const ParameterOperation& operation);
Json toJson(const BasherError& error);

// A file-name pattern.
Json toJson(const Pattern::Section& section);
Json toJson(const Pattern::CharacterClass& characters);
Json toJson(const PatternParsingError& error);

}  // namespace brindlet
