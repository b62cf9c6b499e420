// Models that answer what a test has laid ready, and keep what they were sent.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "ai/model_caller.h"

namespace brindlet {

struct FakeModels final : ModelCalling {
    struct Asked {
        std::vector<AIMessage> messages;
        std::string model;
    };
    std::deque<Result<std::string>> answers;
    std::vector<Asked> asked;
    std::optional<std::string> problem;

    Result<std::string> callModel(const std::vector<AIMessage>& messages, const AIModel& model,
                                  const std::stop_token&) override {
        asked.push_back({messages, model.name});
        if (answers.empty()) return Failure{"no answer was laid ready"};
        auto answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }
    std::optional<std::string> whyUnusable(const AIModel&) override { return problem; }
};

}  // namespace brindlet
