#include "host/posix/PosixOS.h"

#include <sched.h>

#include <atomic>
#include <memory>

#include "host/posix/PosixErrors.h"
#include "host/posix/PosixFileManager.h"
#include "host/posix/PosixThreadService.h"
#include "ole/os/Immortal.h"

namespace {

constinit std::atomic<iFileManager*> installedFileManager{nullptr};

struct FreeCpuSet {
    void operator()(cpu_set_t* set) const { CPU_FREE(set); }
};

constexpr int firstCpuSetSize = 1024;
constexpr int largestCpuSetSize = 1024 * 1024;

/// The processors of the affinity mask; 0 if the system doesn't tell. Its size is found by trying.
unsigned allowedProcessors() {
    for (int size = firstCpuSetSize; size <= largestCpuSetSize; size *= 2) {
        std::unique_ptr<cpu_set_t, FreeCpuSet> const set(CPU_ALLOC(static_cast<std::size_t>(size)));
        std::size_t const byteCount = CPU_ALLOC_SIZE(size);
        if (set && sched_getaffinity(0, byteCount, set.get()) == 0) {
            return static_cast<unsigned>(CPU_COUNT_S(byteCount, set.get()));
        }
    }
    return 0;
}

class PosixOS final : public iOS {
public:
    [[nodiscard]] iMemoryService& getMemory() override { return memoryService(); }
    [[nodiscard]] iThreadService& getThreads() override { return threads_; }
    [[nodiscard]] iFileManager& getFileManager() override {
        iFileManager* const installed = installedFileManager.load(std::memory_order_acquire);
        return installed ? *installed : files_;
    }
    [[nodiscard]] iErrorService& getErrors() override { return errors_; }
    [[nodiscard]] iDebugService& getDebug() override { return debug_; }
    [[nodiscard]] unsigned getProcessorCount() override {
        unsigned const allowed = allowedProcessors();
        return allowed != 0 ? allowed : 1;
    }

private:
    PosixThreadService threads_;
    PosixFileManager files_;
    PosixErrorService errors_;
    PosixDebugService debug_;
};

}  // namespace

iOS& posixOS() noexcept {
    return immortal<PosixOS>();
}

iFileManager* installFileManager(iFileManager* manager) noexcept {
    return installedFileManager.exchange(manager);
}
