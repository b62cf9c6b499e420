// A process of its own that answers questions, for work that may hang or crash whatever is done about it, and that
// would be slow if it began anew each time.
//
//     AnsweringProcess helper([](const std::string& question) { return answerTo(question); });   // early
//     const auto answer = helper.ask("what", 500ms);
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/linux/file_descriptor.h"

namespace brindlet {

// Two processes: one that is forked right now, and does nothing but fork the one that works: at the first question, and
// again where that one hung, crashed, or gave no answer. So `answer` keeps what it finds from question to question, and
// starts out with what this process has in its memory now.
class AnsweringProcess {
  public:
    // `answer` runs in the other process, with one thread and nowhere to print to. None: it has to begin anew.
    // To be made before this process has other threads, whose locks would stay locked there for ever.
    using Answer = std::function<std::optional<std::string>(const std::string& question)>;
    explicit AnsweringProcess(Answer answer);
    ~AnsweringProcess();
    AnsweringProcess(const AnsweringProcess&) = delete;
    AnsweringProcess& operator=(const AnsweringProcess&) = delete;

    // From any thread, one at a time. None where it gave no answer in time.
    std::optional<std::string> ask(const std::string& question, std::chrono::milliseconds longest);

  private:
    std::mutex guard_;
    FileDescriptor line_;
    pid_t keeper_ = -1;
};

}  // namespace brindlet
