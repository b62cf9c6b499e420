// Makes predictions on a worker and waits for them no longer than anybody notices, so that a front end goes on while
// the tools that a prediction asks take their time. One at a time: a new question ends the one before.
//
//     PatientPrediction prediction(loop, workers, predict, [&] { flow.predictionArrived(); });
//     PredictReport report = prediction.predict(line, files, folder);
//     if (prediction.isOut()) ...   // it says nothing yet; asked the same again in the call, the prediction has it
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_path.h"
#include "platform/main_loop.h"
#include "ui/predict_report.h"

namespace brindlet {

// All of it on the loop's thread.
class PatientPrediction {
  public:
    using Predict = std::function<PredictReport(const std::string& line, const std::vector<FilePath>& files,
                                                const FilePath& folder)>;

    // `predict` is called on a worker, never twice at once, and must outlive the workers with all that it uses.
    PatientPrediction(MainLoop& loop, Workers& workers, Predict predict, std::function<void()> arrived,
                      std::chrono::milliseconds patience = std::chrono::milliseconds(150));
    // Gives up what is out.
    ~PatientPrediction();
    PatientPrediction(const PatientPrediction&) = delete;
    PatientPrediction& operator=(const PatientPrediction&) = delete;

    // What takes longer than the patience gives a report that stands in for it and lets nothing run unasked.
    PredictReport predict(const std::string& line, const std::vector<FilePath>& files, const FilePath& folder);
    // The last report stands in for one that hasn't been fetched.
    bool isOut() const;
    // Can be read while nobody waits for what is being predicted any more.
    int stopDescriptor() const;

  private:
    struct Asked;
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace brindlet
