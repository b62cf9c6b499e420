// Work that a copy of this process does, so that it can be ended whatever it hangs in and breaks nothing here.
//
//     const auto answer = runForked(2s, [] { return whatTheOtherProgramSays(); });
//     if (!answer) ...  // it hung, or crashed
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace brindlet {

// What `work` returned; none where it threw, crashed, or had not ended in time and was killed. It has this process's
// memory but no other of its threads, and what it prints is dropped.
std::optional<std::string> runForked(std::chrono::milliseconds longest, const std::function<std::string()>& work);

}  // namespace brindlet
