#include "ole/os/OS.h"

#include <atomic>

#include "host/posix/PosixOS.h"

namespace {

constinit std::atomic<iOS*> installedOS{nullptr};
/// What was in force before the memory of an installed system; null where that brought none of its own.
constinit std::atomic<iMemoryService*> memoryBefore{nullptr};

/// The library takes its memory from the system in force.
void takeMemoryOf(iOS* os) {
    if (iMemoryService* const before = memoryBefore.exchange(nullptr)) {
        installMemoryService(before);
    }
    iMemoryService* const memory = os ? &os->getMemory() : nullptr;
    if (memory && memory != &memoryService()) {
        memoryBefore = installMemoryService(memory);
    }
}

}  // namespace

iOS* OS() noexcept {
    iOS* const os = installedOS.load(std::memory_order_acquire);
    return os ? os : &posixOS();
}

iOS* installOS(iOS* os) noexcept {
    iOS* const before = installedOS.exchange(os);
    takeMemoryOf(os);
    return before ? before : &posixOS();
}
