#include "candidate.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <utility>

namespace brindlet::tools {

namespace {

double secondsOf(const struct statx_timestamp& time) {
    return static_cast<double>(time.tv_sec) + time.tv_nsec / 1e9;
}

}  // namespace

void Candidate::look() {
    if (std::exchange(hasLooked_, true)) return;
    struct statx status {};
    if (::statx(AT_FDCWD, path_.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) return;
    const bool hasBirth = (status.stx_mask & STATX_BTIME) != 0;
    times_ = {.changed = secondsOf(status.stx_mtime),
              .made = secondsOf(hasBirth ? status.stx_btime : status.stx_mtime),
              .used = secondsOf(status.stx_atime)};
    size_ = static_cast<double>(status.stx_size);
}

const FileTimes& Candidate::times() {
    look();
    return times_;
}

double Candidate::size() {
    look();
    return size_;
}

const std::string& Candidate::text() {
    if (!text_) text_ = isFolder_ ? "" : reader_.textOf(path_);
    return *text_;
}

}  // namespace brindlet::tools
