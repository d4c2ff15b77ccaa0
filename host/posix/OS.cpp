#include "ole/os/OS.h"

#include <atomic>

#include "host/posix/PosixOS.h"

namespace {

constinit std::atomic<iOS*> installedOS{nullptr};

}  // namespace

iOS* OS() noexcept {
    iOS* const os = installedOS.load(std::memory_order_acquire);
    return os ? os : &posixOS();
}

iOS* installOS(iOS* os) noexcept {
    iOS* const before = installedOS.exchange(os);
    return before ? before : &posixOS();
}
