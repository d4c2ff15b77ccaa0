#include "ole/os/ThreadNumber.h"

#include <atomic>

namespace {

constinit std::atomic<std::uint32_t> lastNumber{0};
constinit thread_local std::uint32_t numberOfThisThread = 0;

}  // namespace

std::uint32_t currentThreadNumber() noexcept {
    if (numberOfThisThread == 0) {
        numberOfThisThread = lastNumber.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    return numberOfThisThread;
}
