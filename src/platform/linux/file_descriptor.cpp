#include "platform/linux/file_descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace brindlet {

namespace {

FileDescriptor aboveStandardStreams(int number) {
    if (number > STDERR_FILENO) return FileDescriptor(number);
    const FileDescriptor low(number);
    return FileDescriptor(::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

}  // namespace

void FileDescriptor::close() {
    if (number_ >= 0) ::close(number_);
    number_ = -1;
}

Pipe openPipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
    Pipe pipe{aboveStandardStreams(ends[0]), aboveStandardStreams(ends[1])};
    if (!pipe.readEnd || !pipe.writeEnd) return {};
    return pipe;
}

void makeNonBlocking(const FileDescriptor& file) {
    ::fcntl(file.number(), F_SETFL, ::fcntl(file.number(), F_GETFL) | O_NONBLOCK);
}

ssize_t readSome(const FileDescriptor& file, char* buffer, std::size_t size) {
    while (true) {
        const ssize_t count = ::read(file.number(), buffer, size);
        if (count >= 0 || errno != EINTR) return count;
    }
}

ssize_t writeSome(const FileDescriptor& file, std::string_view bytes) {
    while (true) {
        const ssize_t count = ::write(file.number(), bytes.data(), bytes.size());
        if (count >= 0 || errno != EINTR) return count;
    }
}

std::string systemWords(int error) {
    return std::generic_category().message(error);
}

Failure systemFailure(std::string_view what, int error) {
    return Failure{std::string(what) + ": " + systemWords(error)};
}

}  // namespace brindlet
