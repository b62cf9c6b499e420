// The output of a running command: cut into lines as it comes, and kept within bounds however much there is.
//
//     LineSplitter splitter([](std::string_view line) { ... });
//     while (...) splitter.feed(bytes);
//     splitter.finish();
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace brindlet {

// A newline and a carriage return end a line alike, so that the lines by which curl and ffmpeg show their progress in
// place come one by one. Empty lines are left out. Lines come byte for byte, and while the tool still runs.
class LineSplitter {
  public:
    using Take = std::function<void(std::string_view line)>;

    // A line that grows past `longestLine` bytes is passed on in pieces.
    explicit LineSplitter(Take take, std::size_t longestLine = std::size_t{16} << 20);

    // Lines that end in a carriage return with no newline right behind it go here instead. A newline that has
    // not come yet is not waited for where little comes at a time, as from a tool that shows how far it is.
    void divertOverwritten(Take takeOverwritten) { takeOverwritten_ = std::move(takeOverwritten); }

    void feed(std::string_view bytes);
    // The output has ended: what was begun is the last line.
    void finish();

  private:
    void endLine(std::string_view rest, const Take& take);

    Take take_;
    Take takeOverwritten_;
    std::size_t longestLine_;
    std::string begun_;
};

// All the lines of an output; of one that is larger than `limit` bytes the beginning and the end, with a line in
// between that says how many are missing.
class BoundedOutput {
  public:
    explicit BoundedOutput(std::size_t limit = std::size_t{64} << 20);

    void addLine(std::string_view line);
    // Each line with a newline behind it. The output is spent with that.
    std::string take();

  private:
    void dropOldestOfTail();

    std::size_t limit_;
    std::string head_;
    std::string tail_;
    bool headIsFull_ = false;
    std::size_t droppedLines_ = 0;
};

}  // namespace brindlet
