// Turns the signals that ask a program to end into a request that work at hand can honour: Ctrl-C, a closed terminal,
// a polite kill.
//
//     Interruption interruption;
//     runner.run(..., interruption.token());   // ends the child with all its children
//     if (interruption.requested()) return exitCancelled;
#pragma once

#include <stop_token>
#include <thread>

namespace brindlet {

// While one lives, SIGINT, SIGTERM and SIGHUP request the stop instead of ending the program. One at a time.
class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    std::stop_token token() const { return source_.get_token(); }
    bool requested() const { return source_.stop_requested(); }
    void request() { source_.request_stop(); }

    // Readable from the moment a signal has come, for use with poll(2).
    int descriptor() const;

  private:
    std::stop_source source_;
    std::thread watcher_;
};

}  // namespace brindlet
