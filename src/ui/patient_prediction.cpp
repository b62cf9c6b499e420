#include "ui/patient_prediction.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

#include "analysis/request_analysis.h"
#include "exec/file_variables.h"
#include "platform/environment.h"
#include "platform/linux/file_descriptor.h"

namespace brindlet {

struct PatientPrediction::Asked {
    std::string line;
    std::vector<FilePath> files;
    FilePath folder;
    std::optional<PredictReport> report{};
    bool isOut = false;  // somebody was given the stand-in

    bool isFor(const std::string& otherLine, const std::vector<FilePath>& otherFiles,
               const FilePath& otherFolder) const {
        return line == otherLine && files == otherFiles && folder == otherFolder;
    }
};

struct PatientPrediction::State : std::enable_shared_from_this<PatientPrediction::State> {
    State(MainLoop& mainLoop, Workers& threads, Predict work, std::function<void()> told,
          std::chrono::milliseconds longest)
        : loop(mainLoop),
          workers(threads),
          makeReport(std::move(work)),
          arrived(std::move(told)),
          patience(longest),
          stop(openPipe()) {}

    MainLoop& loop;
    Workers& workers;
    Predict makeReport;
    std::function<void()> arrived;
    std::chrono::milliseconds patience;
    Pipe stop;
    std::mutex turn;  // of the worker that predicts
    mutable std::mutex guard;
    std::condition_variable done;
    // Of all that follows, `guard`.
    std::shared_ptr<Asked> latest{};
    bool isStopping = false;

    // Under the guard. What is being predicted for another question ends.
    void ask(std::shared_ptr<Asked> asked) {
        latest = std::move(asked);
        if (!std::exchange(isStopping, true)) writeSome(stop.writeEnd, "!");
    }

    // False: nobody wants to know any more.
    bool begin(const std::shared_ptr<Asked>& asked) {
        const std::lock_guard lock(guard);
        if (latest != asked) return false;
        char byte = 0;
        if (std::exchange(isStopping, false)) readSome(stop.readEnd, &byte, 1);
        return true;
    }

    // On a worker.
    void work(const std::shared_ptr<Asked>& asked) {
        const std::lock_guard myTurn(turn);
        if (!begin(asked)) return;
        PredictReport report = makeReport(asked->line, asked->files, asked->folder);
        {
            const std::lock_guard lock(guard);
            if (latest != asked) return;
            asked->report = std::move(report);
        }
        done.notify_all();
        loop.post([weak = weak_from_this(), asked] {
            if (const auto self = weak.lock()) self->tell(asked);
        });
    }

    void tell(const std::shared_ptr<Asked>& asked) {
        if (!isOut(asked)) return;
        arrived();
        const std::lock_guard lock(guard);
        if (latest == asked) latest.reset();  // who doesn't want it now would find it old later
    }

    bool isOut(const std::shared_ptr<Asked>& asked) const {
        const std::lock_guard lock(guard);
        return latest == asked && asked && asked->isOut;
    }
};

namespace {

PredictReport standIn(const std::string& line, const FilePath& folder) {
    return {.command = line,
            .result = failedAnalysis(line, {BasherAnalysisError::Kind::otherError, "There is no prediction yet"}),
            .runs = std::string(caseName(runMode(line))),
            .folder = folder,
            .home = homeFolder(),
            .toggles = {},
            .missingPackage = std::nullopt};
}

}  // namespace

PatientPrediction::PatientPrediction(MainLoop& loop, Workers& workers, Predict predict, std::function<void()> arrived,
                                     std::chrono::milliseconds patience)
    : state_(std::make_shared<State>(loop, workers, std::move(predict), std::move(arrived), patience)) {}

PatientPrediction::~PatientPrediction() {
    const std::lock_guard lock(state_->guard);
    state_->ask(nullptr);
}

PredictReport PatientPrediction::predict(const std::string& line, const std::vector<FilePath>& files,
                                         const FilePath& folder) {
    std::unique_lock lock(state_->guard);
    std::shared_ptr<Asked> asked = state_->latest;
    if (!asked || !asked->isFor(line, files, folder)) {
        asked = std::make_shared<Asked>(Asked{line, files, folder});
        state_->ask(asked);
        lock.unlock();
        state_->workers.start([state = state_, asked] { state->work(asked); });
        lock.lock();
        state_->done.wait_for(lock, state_->patience, [&] { return asked->report.has_value(); });
    }
    asked->isOut = !asked->report;
    if (asked->isOut) return standIn(line, folder);
    state_->latest.reset();
    return std::move(*asked->report);
}

bool PatientPrediction::isOut() const {
    const std::lock_guard lock(state_->guard);
    return state_->latest && state_->latest->isOut;
}

int PatientPrediction::stopDescriptor() const {
    return state_->stop.readEnd.number();
}

}  // namespace brindlet
