// A launcher that launches nothing: it keeps what it was asked and answers from a queue, or by a function.
//
//     FakeLauncher launcher;
//     launcher.answers = {{.exitCode = 0, .output = "1\n"}};
//     launcher.run({.arguments = {"wc", "-l"}});
//     launcher.launches.front().arguments  // {"wc", "-l"}
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/read_only_launcher.h"

namespace brindlet {

struct FakeLauncher final : ReadOnlyLauncher {
    std::vector<ToolLaunch> launches;
    std::deque<ToolOutcome> answers;                       // taken from the front
    std::function<ToolOutcome(const ToolLaunch&)> answer;  // asked once the queue is empty; unset: nothing can be said

    ToolOutcome run(const ToolLaunch& launch) override {
        launches.push_back(launch);
        if (answers.empty()) return answer ? answer(launch) : ToolOutcome{};
        ToolOutcome next = std::move(answers.front());
        answers.pop_front();
        return next;
    }

    std::string layers() const override { return "fake"; }
};

}  // namespace brindlet
