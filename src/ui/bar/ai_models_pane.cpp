#include "ui/bar/ai_models_pane.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "platform/log.h"
#include "ui/bar/qt_text.h"

namespace brindlet {

namespace {

// The fields of a custom model that people fill in.
struct FieldRow {
    std::string_view name;
    void (*set)(CustomModel& model, const QVariant& value);
};
constexpr FieldRow fieldRows[] = {
    {"modelName", [](CustomModel& model, const QVariant& value) { model.modelName = value.toString().toStdString(); }},
    {"friendlyName",
     [](CustomModel& model, const QVariant& value) {
         const std::string name = value.toString().toStdString();
         model.friendlyName = name.empty() ? std::nullopt : std::optional(name);
     }},
    {"baseURL", [](CustomModel& model, const QVariant& value) { model.baseURL = value.toString().toStdString(); }},
    {"setTemperature", [](CustomModel& model, const QVariant& value) { model.setTemperature = value.toBool(); }},
    {"fastMode", [](CustomModel& model, const QVariant& value) { model.fastMode = value.toBool(); }},
    {"enabled", [](CustomModel& model, const QVariant& value) { model.enabled = value.toBool(); }},
};

QVariantList toVariant(const std::vector<ModelSection>& sections,
                       const std::function<QVariantMap(const AIModel&)>& row) {
    QVariantList list;
    for (const ModelSection& section : sections) {
        QVariantList models;
        for (const AIModel& model : section.models) models.append(row(model));
        list.append(QVariantMap{{"title", qt(section.title)}, {"models", models}});
    }
    return list;
}

AIModelProvider providerNamed(const QString& name) {
    for (const AIModelProvider provider : ProviderApiKeys::providers)
        if (qt(rawValue(provider)) == name) return provider;
    return AIModelProvider::custom;
}

std::vector<AIModel> builtInModels() {
    const auto all = AIModelList::all();
    return {all.begin(), all.end()};
}

}  // namespace

AIModelsPane::AIModelsPane(AIModelsPaneParts parts) : parts_(std::move(parts)), errands_(parts_.loop, parts_.workers) {
    look_.keys.resize(ProviderApiKeys::providers.size());
}

void AIModelsPane::refresh() {
    problem_.clear();
    parts_.models.reload();
    emit problemChanged();
    emit modelsChanged();
    lookLater(true);
}

// On a worker.
AIModelsPane::Look AIModelsPane::lookOf(const AIModelsPaneParts& parts) {
    Look seen;
    for (const AIModelProvider provider : ProviderApiKeys::providers) {
        const KeyOrigin origin = parts.keys.origin(provider);
        seen.keys.push_back({origin == KeyOrigin::stored ? qt(parts.keys.key(provider)) : QString(), origin});
    }
    std::vector<AIModel> models = builtInModels();
    for (const CustomModel& model : parts.customModels.validModels()) models.push_back(model.aiModel());
    for (const AIModel& model : models)
        if (parts.isUsable(model)) seen.usableIds.insert(model.id);
    return seen;
}

void AIModelsPane::lookLater(bool isReloading) {
    errands_.queue([this, parts = parts_, isReloading] {
        if (isReloading) {
            parts.keys.reload();
            parts.customModels.reload();
        }
        return [this, seen = lookOf(parts)] { take(seen); };
    });
}

void AIModelsPane::take(Look seen) {
    look_ = std::move(seen);
    emit keysChanged();
    customModelsHaveChanged();
}

void AIModelsPane::customModelsHaveChanged() {
    custom_ = parts_.customModels.all();
    if (std::ranges::count(custom_, selectedId_, &CustomModel::id) == 0) select({});
    emit customModelsChanged();
    emit modelsChanged();
    if (parts_.changed) parts_.changed();
}

void AIModelsPane::report(const std::optional<Failure>& failure) {
    if (failure) logError(failure->description);
    const QString problem = failure ? shown(failure->description) : QString();
    if (std::exchange(problem_, problem) != problem) emit problemChanged();
}

QVariantList AIModelsPane::sections() const {
    const std::vector<AIModel> offered = parts_.models.enabledModels(builtInModels());
    const auto row = [&](const AIModel& model) {
        return QVariantMap{{"id", qt(model.id)},
                           {"name", qt(model.friendlyName)},
                           {"usage", qt(model.usageDescription)},
                           {"provider", qt(rawValue(model.provider))},
                           {"isOn", std::ranges::count(offered, model.id, &AIModel::id) > 0}};
    };
    const std::vector<CustomModel> none;  // they have a list of their own
    return toVariant(modelSections({.mode = ModelPopupMode::all, .list = parts_.models, .customModels = none}), row);
}

QVariantList AIModelsPane::keys() const {
    QVariantList list;
    for (std::size_t at = 0; at < ProviderApiKeys::providers.size(); ++at) {
        const AIModelProvider provider = ProviderApiKeys::providers[at];
        list.append(QVariantMap{{"provider", qt(rawValue(provider))},
                                {"text", look_.keys[at].text},
                                {"placeholder", qt(keyPlaceholder(provider, look_.keys[at].origin))}});
    }
    return list;
}

QVariantList AIModelsPane::customModels() const {
    QVariantList list;
    for (const CustomModel& model : custom_)
        list.append(QVariantMap{{"id", qt(model.id)},
                                {"title", shown(titleOf(model))},
                                {"detail", shown(model.baseURL)},
                                {"isOn", model.enabled},
                                {"isValid", problemOf(model).empty()}});
    return list;
}

QString AIModelsPane::selectedId() const {
    return qt(selectedId_);
}

QVariantMap AIModelsPane::selected() const {
    const auto model = std::ranges::find(custom_, selectedId_, &CustomModel::id);
    if (model == custom_.end()) return {};
    return {{"modelName", qt(model->modelName)}, {"friendlyName", qt(model->friendlyName.value_or(""))},
            {"baseURL", qt(model->baseURL)},     {"setTemperature", model->setTemperature},
            {"fastMode", model->isFast()},       {"problem", shown(problemOf(*model))}};
}

std::vector<ModelSection> AIModelsPane::summarizationChoices() const {
    const std::vector<CustomModel> valid = parts_.customModels.validModels();
    return modelSections({.mode = ModelPopupMode::allAvailable,
                          .list = parts_.models,
                          .customModels = valid,
                          .isUsable = [this](const AIModel& model) { return look_.usableIds.contains(model.id); }});
}

QVariantList AIModelsPane::summarizationSections() const {
    return toVariant(summarizationChoices(), [](const AIModel& model) {
        return QVariantMap{{"name", qt(model.name)}, {"title", shown(model.friendlyName)}};
    });
}

QString AIModelsPane::summarizationName() const {
    return qt(parts_.models.summarizationModel().name);
}

QString AIModelsPane::summarizationTitle() const {
    const AIModel model = parts_.models.summarizationModel();
    return offers(summarizationChoices(), model) ? shown(model.friendlyName) : QString();
}

void AIModelsPane::setEnabled(const QString& id, bool isEnabled) {
    for (const AIModel& model : AIModelList::all())
        if (qt(model.id) == id) report(parts_.models.setEnabled(model, isEnabled));
    for (CustomModel model : custom_) {
        if (qt(model.id) != id) continue;
        model.enabled = isEnabled;
        report(parts_.customModels.update(model));
    }
    customModelsHaveChanged();
}

void AIModelsPane::setKey(const QString& provider, const QString& key) {
    const auto index = static_cast<std::size_t>(providerNamed(provider));
    if (index >= look_.keys.size() || look_.keys[index].text == key.trimmed()) return;
    look_.keys[index].text = key.trimmed();
    emit keysChanged();
    errands_.queue([this, provider = providerNamed(provider), text = key.toStdString(), &keys = parts_.keys] {
        const auto failure = keys.setKey(provider, text);
        return [this, failure] { report(failure); };
    });
    lookLater(false);
}

void AIModelsPane::addCustomModel() {
    const CustomModel model = CustomModel::fresh();
    const auto failure = parts_.customModels.add(model);
    report(failure);
    customModelsHaveChanged();
    if (!failure) select(qt(model.id));
    lookLater(false);
}

void AIModelsPane::select(const QString& id) {
    const std::string chosen = id.toStdString();
    if (std::exchange(selectedId_, chosen) == chosen) return;
    selectedKey_.clear();
    emit selectionChanged();
    emit customModelsChanged();
    emit selectedKeyChanged();
    readSelectedKey();
}

void AIModelsPane::readSelectedKey() {
    if (selectedId_.empty()) return;
    errands_.queue([this, id = selectedId_, &customModels = parts_.customModels] {
        const QString key = qt(customModels.apiKey(id).value_or(""));
        return [this, id, key] {
            if (id != selectedId_) return;
            selectedKey_ = key;
            emit selectedKeyChanged();
        };
    });
}

void AIModelsPane::edit(const QString& field, const QVariant& value) {
    const auto* row = std::ranges::find(fieldRows, field.toStdString(), &FieldRow::name);
    const auto model = std::ranges::find(custom_, selectedId_, &CustomModel::id);
    if (row == std::end(fieldRows) || model == custom_.end()) return;
    CustomModel edited = *model;
    row->set(edited, value);
    if (edited == *model) return;
    report(parts_.customModels.update(edited));
    customModelsHaveChanged();
    lookLater(false);
}

void AIModelsPane::setSelectedKey(const QString& key) {
    if (selectedId_.empty() || key.trimmed() == selectedKey_) return;
    selectedKey_ = key.trimmed();
    errands_.queue([this, id = selectedId_, text = key.toStdString(), &customModels = parts_.customModels] {
        const auto failure = customModels.setApiKey(id, text);
        return [this, failure] { report(failure); };
    });
    emit selectedKeyChanged();
}

void AIModelsPane::askToDelete(const QString& id) {
    modelToDelete_ = id.toStdString();
    emit deleteConfirmationChanged();
}

void AIModelsPane::answerDelete(bool isAgreed) {
    const std::string id = std::exchange(modelToDelete_, "");
    emit deleteConfirmationChanged();
    if (!isAgreed || id.empty()) return;
    report(parts_.customModels.remove(id));
    customModelsHaveChanged();
}

void AIModelsPane::selectSummarization(const QString& name) {
    report(parts_.settings.setText(AIModelList::summarizationModelNameKey, name.toStdString()));
    emit modelsChanged();
}

}  // namespace brindlet
