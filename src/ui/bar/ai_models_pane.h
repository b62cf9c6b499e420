// The tab "AI Models": which models the menu offers, the providers' keys, the user's own models, and the model that
// sums outputs up. Keys are read and written on workers only, as a keyring may take its time.
#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "ai/ai_model.h"
#include "ai/custom_model.h"
#include "ai/provider_api_keys.h"
#include "platform/settings_store.h"
#include "ui/errands.h"
#include "ui/settings_panes.h"

namespace brindlet {

struct AIModelsPaneParts {
    SettingsStore& settings;
    AIModelList& models;
    CustomModelList& customModels;
    ProviderApiKeys& keys;
    MainLoop& loop;
    Workers& workers;
    // Whether a request to it could go somewhere. Called on workers.
    std::function<bool(const AIModel&)> isUsable;
    // The menus of the program's other windows may have changed.
    std::function<void()> changed{};
};

class AIModelsPane final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantList sections READ sections NOTIFY modelsChanged)
    Q_PROPERTY(QVariantList keys READ keys NOTIFY keysChanged)
    Q_PROPERTY(QVariantList customModels READ customModels NOTIFY customModelsChanged)
    Q_PROPERTY(QString selectedId READ selectedId WRITE select NOTIFY selectionChanged)
    Q_PROPERTY(QVariantMap selected READ selected NOTIFY customModelsChanged)
    Q_PROPERTY(QString selectedKey READ selectedKey NOTIFY selectedKeyChanged)
    Q_PROPERTY(bool isShowingDeleteConfirmation READ isShowingDeleteConfirmation NOTIFY deleteConfirmationChanged)
    Q_PROPERTY(QVariantList summarizationSections READ summarizationSections NOTIFY modelsChanged)
    Q_PROPERTY(QString summarizationTitle READ summarizationTitle NOTIFY modelsChanged)
    Q_PROPERTY(QString summarizationName READ summarizationName NOTIFY modelsChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)

  public:
    explicit AIModelsPane(AIModelsPaneParts parts);

    // What may have been changed elsewhere is looked at anew.
    void refresh();

    QVariantList sections() const;      // {title, models: [{id, name, usage, provider, isOn}]}
    QVariantList keys() const;          // {provider, text, placeholder}
    QVariantList customModels() const;  // {id, title, detail, isOn, isValid}
    QString selectedId() const;
    QVariantMap selected() const;  // the fields of the chosen one, and what is wrong with it; empty: none is chosen
    QString selectedKey() const { return selectedKey_; }
    bool isShowingDeleteConfirmation() const { return !modelToDelete_.empty(); }
    QVariantList summarizationSections() const;  // {title, models: [{name, title}]}; empty: no model can be used
    QString summarizationName() const;
    QString summarizationTitle() const;  // empty: it can't be used
    QString problem() const { return problem_; }

    Q_INVOKABLE void setEnabled(const QString& id, bool isEnabled);
    Q_INVOKABLE void setKey(const QString& provider, const QString& key);
    Q_INVOKABLE void addCustomModel();
    void select(const QString& id);
    // One of the fields of the chosen model, by its name in the file.
    Q_INVOKABLE void edit(const QString& field, const QVariant& value);
    Q_INVOKABLE void setSelectedKey(const QString& key);
    Q_INVOKABLE void askToDelete(const QString& id);
    Q_INVOKABLE void answerDelete(bool isAgreed);
    Q_INVOKABLE void selectSummarization(const QString& name);

  signals:
    void modelsChanged();
    void keysChanged();
    void customModelsChanged();
    void selectionChanged();
    void selectedKeyChanged();
    void deleteConfirmationChanged();
    void problemChanged();

  private:
    struct KeyState {
        QString text;
        KeyOrigin origin = KeyOrigin::none;
    };
    // What only a worker may find out.
    struct Look {
        std::vector<KeyState> keys;
        std::set<std::string> usableIds;
    };

    static Look lookOf(const AIModelsPaneParts& parts);
    void lookLater(bool isReloading);
    void readSelectedKey();
    void take(Look look);
    void customModelsHaveChanged();
    void report(const std::optional<Failure>& failure);
    std::vector<ModelSection> summarizationChoices() const;

    AIModelsPaneParts parts_;
    Look look_;
    std::vector<CustomModel> custom_;
    std::string selectedId_;
    std::string modelToDelete_;
    QString selectedKey_;
    QString problem_;
    Errands errands_;
};

}  // namespace brindlet
