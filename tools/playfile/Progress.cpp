#include "tools/playfile/Progress.h"

#include <unistd.h>

#include <cstdio>

namespace cli {
namespace {

/// Work that is over sooner shows nothing at all.
constexpr std::chrono::milliseconds firstShowAfter{500};
constexpr std::chrono::milliseconds showInterval{100};
char const* const wipeLine = "\r\033[K";

bool isTerminal(int descriptor) {
    return ::isatty(descriptor) == 1;
}

}  // namespace

Progress::Progress(std::string label, std::uint64_t total, bool printsMeanwhile)
    : label_(std::move(label)),
      total_(total),
      isShown_(isTerminal(STDERR_FILENO) && !(printsMeanwhile && isTerminal(STDOUT_FILENO))),
      nextShow_(Clock::now() + firstShowAfter) {}

Progress::~Progress() {
    if (hasShown_) {
        std::fputs(wipeLine, stderr);
    }
}

void Progress::moveTo(std::uint64_t done) {
    done_ = done;
    if (!isShown_ || Clock::now() < nextShow_) {
        return;
    }
    nextShow_ = Clock::now() + showInterval;
    hasShown_ = true;
    std::fprintf(stderr, "%s%s: %llu", wipeLine, label_.c_str(), static_cast<unsigned long long>(done_));
    if (total_ != 0) {
        std::fprintf(stderr, " of %llu", static_cast<unsigned long long>(total_));
    }
}

}  // namespace cli
