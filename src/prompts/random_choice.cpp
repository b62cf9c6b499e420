#include "prompts/random_choice.h"

#include <sys/random.h>

#include <algorithm>
#include <cerrno>
#include <random>

namespace brindlet {

namespace {

void fill(std::uint32_t* words, std::size_t count) {
    auto* bytes = reinterpret_cast<unsigned char*>(words);
    std::size_t wanted = count * sizeof *words;
    while (wanted > 0) {
        const auto got = ::getrandom(bytes, wanted, 0);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) {  // a kernel without the call: the library asks the device
            std::random_device device;
            std::generate(bytes, bytes + wanted, [&] { return static_cast<unsigned char>(device()); });
            return;
        }
        bytes += got;
        wanted -= static_cast<std::size_t>(got);
    }
}

}  // namespace

RandomChoice& RandomChoice::ofThisThread() {
    thread_local RandomChoice choice;
    return choice;
}

std::uint32_t RandomChoice::next() {
    if (used_ == drawn_.size()) {
        fill(drawn_.data(), drawn_.size());
        used_ = 0;
    }
    return drawn_[used_++];
}

// Without modulo bias: D. Lemire, "Fast Random Integer Generation in an Interval", 2019.
std::size_t RandomChoice::below(std::size_t bound) {
    const auto range = static_cast<std::uint32_t>(bound);
    std::uint64_t product = std::uint64_t{next()} * range;
    if (static_cast<std::uint32_t>(product) < range) {
        const std::uint32_t least = (0 - range) % range;
        while (static_cast<std::uint32_t>(product) < least) product = std::uint64_t{next()} * range;
    }
    return static_cast<std::size_t>(product >> 32);
}

bool RandomChoice::half() {
    if (bits_ <= 1) bits_ = next() | 0x8000'0000U;
    const bool result = (bits_ & 1) != 0;
    bits_ >>= 1;
    return result;
}

}  // namespace brindlet
