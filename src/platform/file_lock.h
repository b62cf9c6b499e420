// A lock between programs, and between threads of one, held on a file that exists only for it.
//
//     auto lock = FileLock::take(folder.child("settings.json.lock"));
//     if (!lock) return lock.failure();
#pragma once

#include <chrono>
#include <memory>

#include "platform/file_path.h"
#include "platform/result.h"

namespace brindlet {

class FileLock {
  public:
    // Makes the file where it is missing (its folder must be there) and waits for whoever has the lock, but no longer
    // than `patience`. The lock is given up with the value, or with the process.
    static Result<FileLock> take(const FilePath& file, std::chrono::milliseconds patience = std::chrono::seconds{5});

  private:
    explicit FileLock(std::shared_ptr<void> held) : held_(std::move(held)) {}

    std::shared_ptr<void> held_;
};

}  // namespace brindlet
