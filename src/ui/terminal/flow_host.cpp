#include "ui/terminal/flow_host.h"

#include <string>
#include <utility>

#include "analysis/risk.h"
#include "ui/terminal/prediction.h"

namespace brindlet {

namespace {

class ContextPackages final : public FlowPackages {
  public:
    explicit ContextPackages(CommandLineContext& context) : context_(context) {}

    std::optional<std::string> firstMissingPackage(const std::set<std::string>& requiredPackages) override {
        return context_.packages().firstMissingPackage(requiredPackages);
    }
    bool needsHomebrew(const std::string& package) override {
        const PackageInfo* info = context_.packages().packageNamed(package);
        return info != nullptr && info->source == PackageSource::homebrew && !context_.packages().brewPath();
    }
    bool requiresInstallForPrediction(const std::string& package) override {
        const PackageInfo* info = context_.packages().packageNamed(package);
        return info != nullptr && info->requiresInstallForPrediction;
    }
    std::optional<Failure> install(const std::string& package,
                                   const std::function<void(const CommandProgress&)>& onProgress,
                                   const std::stop_token& stop) override {
        return context_.packages().install(package, onProgress, stop);
    }
    void refresh() override { context_.packages().refresh(); }

  private:
    CommandLineContext& context_;
};

std::vector<std::string> textsOf(const std::vector<FilePath>& files) {
    std::vector<std::string> texts;
    texts.reserve(files.size());
    for (const FilePath& file : files) texts.push_back(file.text());
    return texts;
}

}  // namespace

std::unique_ptr<FlowPackages> flowPackages(CommandLineContext& context) {
    return std::make_unique<ContextPackages>(context);
}

FlowHost::FlowHost(CommandLineContext& context, MainLoop& loop, std::vector<FilePath> files, FlowOptions options)
    : context_(context),
      files_(std::move(files)),
      options_(std::move(options)),
      loop_(loop),
      models_(context),
      packages_(flowPackages(context)),
      presenter_(openFilePresenter(context.environment(), options_.tell)),
      workers_(std::make_unique<ThreadWorkers>()),
      finder_(loop_, *workers_, context.files(), source()) {
    if (options_.remembers) history_.emplace(dataFolder(), context.settings());
    if (!options_.finderSource) select(std::move(files_));
    if (options_.predictsBeside) predictBeside();
    flow_ = std::make_unique<PromptFlow>(services());
    finder_.onChange([this] { flow_->selectionChanged(); });
}

FlowHost::~FlowHost() {
    flow_.reset();
    finish();
}

void FlowHost::finish() {
    patient_.reset();
    workers_.reset();
}

void FlowHost::predictBeside() {
    patient_ = std::make_unique<PatientPrediction>(
        loop_, *workers_,
        [this](const std::string& line, const std::vector<FilePath>& files, const FilePath& folder) {
            return predictCommand(line, files, folder, context_);
        },
        [this] {
            if (flow_) flow_->predictionArrived();
        });
    context_.endPredictionsOn(patient_->stopDescriptor());
    context_.packages();  // the rest of what predictions use is theirs alone, or there already
}

FinderSource FlowHost::source() {
    if (options_.finderSource) return options_.finderSource;
    return [this]() -> Result<std::optional<FinderSelection>> {
        return std::optional(FinderSelection{textsOf(files_), context_.folder().text()});
    };
}

FlowServices FlowHost::services() {
    return {.loop = loop_,
            .workers = *workers_,
            .finder = finder_,
            .generator = models_.generator(),
            .models = models_.models(),
            .modelList = context_.models(),
            .packages = *packages_,
            .analyse =
                [this](const std::string& line, const std::vector<FilePath>& files, const FilePath& folder) {
                    prediction_ = patient_ ? patient_->predict(line, files, folder)
                                           : predictCommand(line, files, folder, context_);
                    return prediction_->result;
                },
            .allowedEffects = [this] { return AnalysisConfirmationToggleList(context_.settings()).toggles(); },
            .run =
                [this](const std::string& line, const std::vector<FilePath>& files, const FilePath& folder,
                       const std::function<void(const CommandProgress&)>& onProgress, const std::stop_token& stop) {
                    CommandRunner runner(context_.searchPath(), presenter_.get(), options_.trackers);
                    if (options_.prepareRunner) options_.prepareRunner(runner);
                    return runner.run(line, files, folder, context_.environment(), options_.onLine, onProgress, stop);
                },
            .reveal = options_.reveals
                          ? [this](const std::vector<FilePath>& created) { presenter_->selectInFileManager(created); }
                          : std::function<void(const std::vector<FilePath>&)>(),
            .exists = [this](const FilePath& file) { return context_.files().look(file) != ItemKind::missing; },
            .history = history_ ? &*history_ : nullptr,
            .model = options_.model,
            .summarizes = options_.summarizes,
            .fansOut = options_.fansOut,
            .alwaysAsks = options_.alwaysAsks,
            .isPredictionOut = [this] { return patient_ && patient_->isOut(); },
            .isSelectionDoubtful = options_.isSelectionDoubtful};
}

std::optional<PredictReport> FlowHost::currentPrediction() const {
    std::optional<PredictReport> report = prediction_;
    if (report) report->missingPackage = flow_->view().missingPackageName;
    return report;
}

// The folder and the selection are known here, so that nobody need wait for a round of asking.
void FlowHost::select(std::vector<FilePath> files) {
    files_ = std::move(files);
    finder_.take({textsOf(files_), context_.folder().text()});
}

}  // namespace brindlet
