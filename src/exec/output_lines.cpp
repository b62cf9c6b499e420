#include "exec/output_lines.h"

#include <algorithm>
#include <utility>

namespace brindlet {

namespace {

// More than this at once is a text, and a carriage return at its very end mostly has its newline still to come.
constexpr std::size_t mostProgressBytes = 16 * 1024;

bool isOverwritingReturn(std::string_view bytes, std::size_t at) {
    if (bytes[at] != '\r') return false;
    return at + 1 == bytes.size() ? bytes.size() <= mostProgressBytes : bytes[at + 1] != '\n';
}

}  // namespace

LineSplitter::LineSplitter(Take take, std::size_t longestLine) : take_(std::move(take)), longestLine_(longestLine) {}

void LineSplitter::feed(std::string_view bytes) {
    std::size_t begin = 0;
    std::size_t newline = bytes.find('\n');
    std::size_t carriageReturn = bytes.find('\r');
    while (newline != carriageReturn) {  // both are npos where no line ends any more
        const std::size_t end = std::min(newline, carriageReturn);
        const bool isOverwritten = takeOverwritten_ && isOverwritingReturn(bytes, end);
        endLine(bytes.substr(begin, end - begin), isOverwritten ? takeOverwritten_ : take_);
        begin = end + 1;
        // Only the one that was passed is searched again: so each byte is looked at twice, whatever the mixture.
        std::size_t& passed = newline < carriageReturn ? newline : carriageReturn;
        passed = bytes.find(bytes[end], begin);
    }
    begun_ += bytes.substr(begin);
    if (begun_.size() > longestLine_) endLine({}, take_);
}

void LineSplitter::finish() {
    endLine({}, take_);
}

void LineSplitter::endLine(std::string_view rest, const Take& take) {
    if (begun_.empty()) {  // by far the most lines lie whole in what was read
        if (!rest.empty()) take(rest);
        return;
    }
    begun_ += rest;
    take(begun_);
    begun_.clear();
}

BoundedOutput::BoundedOutput(std::size_t limit) : limit_(limit) {}

void BoundedOutput::addLine(std::string_view line) {
    headIsFull_ = headIsFull_ || head_.size() + line.size() + 1 > limit_ / 2;
    std::string& part = headIsFull_ ? tail_ : head_;
    part += line;
    part += '\n';
    if (head_.size() + tail_.size() > limit_) dropOldestOfTail();
}

// Drops half of what the tail may have, so that each byte is moved only once or twice, however long this goes on.
void BoundedOutput::dropOldestOfTail() {
    const std::size_t oldestKept = tail_.size() - std::min(limit_ / 4, tail_.size());
    const std::size_t lineEnd = tail_.find('\n', oldestKept);
    // A line that is longer than all that is kept loses its beginning.
    const bool cutsLine = lineEnd == std::string::npos || lineEnd + 1 == tail_.size();
    const std::size_t cut = cutsLine ? oldestKept : lineEnd + 1;
    const auto end = tail_.begin() + static_cast<std::string::difference_type>(cut);
    droppedLines_ += static_cast<std::size_t>(std::count(tail_.begin(), end, '\n')) + (cutsLine ? 1 : 0);
    tail_.erase(tail_.begin(), end);
}

std::string BoundedOutput::take() {
    if (droppedLines_ != 0) head_ += "[" + std::to_string(droppedLines_) + " lines of output left out here]\n";
    head_ += tail_;
    return std::move(head_);
}

}  // namespace brindlet
