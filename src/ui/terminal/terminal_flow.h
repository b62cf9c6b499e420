// The flow of a request in a terminal: FlowHost with a loop of its own.
//
//     TerminalFlow terminal(context, files, {.summarizes = false});
//     terminal.flow().submitCommand(command);
//     terminal.runUntilIdle();
//     print(terminal.prediction());
#pragma once

#include <utility>
#include <vector>

#include "platform/main_loop.h"
#include "ui/terminal/flow_host.h"

namespace brindlet {

// Stands before what uses the loop.
struct OwnLoop {
    PollLoop ownLoop;
};

class TerminalFlow : private OwnLoop, public FlowHost {
  public:
    TerminalFlow(CommandLineContext& context, std::vector<FilePath> files, FlowOptions options)
        : FlowHost(context, ownLoop, std::move(files), std::move(options)) {}

    PollLoop& loop() { return ownLoop; }
    // Until nothing is out any more.
    void runUntilIdle() {
        ownLoop.runUntil([this] { return !flow().isBusy(); });
    }
};

}  // namespace brindlet
