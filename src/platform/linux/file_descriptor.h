// An open file of this process, closed with its owner.
//
//     FileDescriptor file(::open(path, O_RDONLY | O_CLOEXEC));
//     if (!file) return systemFailure("Can't open it");
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "platform/result.h"

namespace brindlet {

class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() { close(); }

    explicit operator bool() const { return number_ >= 0; }
    // -1 where nothing is open, which poll(2) passes over.
    int number() const { return number_; }
    void close();

  private:
    int number_ = -1;
};

// A pipe whose two ends are closed on exec and lie above the standard streams, so that a child can put them there in
// any order. Both are empty where the system has no more.
struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};
Pipe openPipe();

void makeNonBlocking(const FileDescriptor& file);

// As read(2) and write(2), but begun again when a signal comes in between.
ssize_t readSome(const FileDescriptor& file, char* buffer, std::size_t size);
ssize_t writeSome(const FileDescriptor& file, std::string_view bytes);

// The system's own words for an error number, and a failure that joins them to `what` ("Can't read 'a'").
std::string systemWords(int error);
Failure systemFailure(std::string_view what, int error);

}  // namespace brindlet
