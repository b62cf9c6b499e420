#include "ui/json.h"

#include <utility>

#include "text/overloaded.h"

namespace brindlet {

std::string jsonText(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json taggedJson(std::string_view name, Json payload) {
    Json tagged = Json::object();
    tagged[std::string(name)] = std::move(payload);
    return tagged;
}

Json recordJson(std::initializer_list<JsonField> fields) {
    Json record = Json::object();
    auto& object = record.get_ref<Json::object_t&>();
    object.reserve(fields.size());
    for (const JsonField& field : fields) object.emplace(std::string(field.name), std::move(field.value));
    return record;
}

Json toJson(const SimString& text) {
    return text.isKnown() ? taggedJson("known", text.text()) : taggedJson("unknown");
}

Json toJson(const PredictedChange& predicted) {
    const FileChange& change = predicted.change;
    return recordJson({{"type", caseName(change.type)},
                       {"path", change.url.text()},
                       {"source", change.sourceURL ? Json(change.sourceURL->text()) : Json()},
                       {"isDirectory", predicted.isDirectory}});
}

Json toJson(const SideEffectType& type) {
    const std::string_view name = caseName(type);
    return std::visit(
        Overloaded{
            [&](PowerAction action) { return taggedJson(name, caseName(action)); },
            [&](const ExtraFileChanges& extra) {
                return taggedJson(name, recordJson({{"kind", caseName(extra.kind)}, {"count", extra.count}}));
            },
            [&](const ComplexCommand& complex) { return taggedJson(name, complex.message); },
            [&](PlainSideEffect) { return taggedJson(name); },
        },
        type);
}

Json toJson(const SideEffect& sideEffect) {
    return recordJson({{"type", toJson(sideEffect.type)},
                       {"specificDescription", optionalJson(sideEffect.specificDescription)},
                       {"description", sideEffect.description()}});
}

Json toJson(const CommandError& error) {
    return recordJson({{"friendly", error.friendly}, {"technical", error.technical}});
}

Json toJson(const BasherAnalysisError& error) {
    const std::string_view name = caseName(error.kind);
    return error.kind == BasherAnalysisError::Kind::noFilesSelected ? taggedJson(name) : taggedJson(name, error.text);
}

Json toJson(const std::set<CommandEffect>& effects) {
    Json rawValues = Json::array();
    for (const CommandEffect effect : effects) rawValues.push_back(rawValue(effect));
    return rawValues;
}

Json toJson(const ChangesViewIconAndText& row) {
    return recordJson({{"icon", row.icon ? Json(row.icon->symbolName) : Json()},
                       {"color", row.icon ? Json(row.icon->color) : Json()},
                       {"text", row.text},
                       {"subtitle", optionalJson(row.subtitle)}});
}

}  // namespace brindlet
