// The parts of the flow that outlive a call: what is out on a worker's thread, and the runs of one command. For the
// flow's own sources.
#pragma once

#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "ui/prompt_flow.h"

namespace brindlet {

struct PromptFlow::Task {
    Task(MainLoop& mainLoop, std::shared_ptr<bool> flowIsAlive) : loop(mainLoop), isAlive(std::move(flowIsAlive)) {}

    MainLoop& loop;
    std::shared_ptr<bool> isAlive;
    std::stop_source stop;

    // From any thread: what is done on the loop's thread unless the task was cancelled in the meantime. A cancelled
    // task touches nothing.
    void post(std::function<void()> work) {
        loop.post([alive = isAlive, source = stop, work = std::move(work)] {
            if (*alive && !source.stop_requested()) work();
        });
    }
};

struct PromptFlow::Run {
    std::vector<std::vector<FilePath>> selections;  // what each run gets
    FilePath folder;
    std::size_t next = 0;
    std::size_t successes = 0;
    std::string combinedOutput;
    std::vector<std::string> failures;
    bool touchesHomebrew = false;
};

}  // namespace brindlet
