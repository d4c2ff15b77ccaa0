#include "ole/os/Memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

/// malloc and free. It has no state, so it works before and after every other object.
class MallocService final : public iMemoryService {
public:
    void* allocate(std::size_t byteCount) override {
        void* const block = std::malloc(byteCount == 0 ? 1 : byteCount);
        if (!block) {
            throw std::bad_alloc();
        }
        return block;
    }
    void release(void* block) noexcept override { std::free(block); }
};

constinit MallocService mallocService;
constinit std::atomic<iMemoryService*> installedService{&mallocService};

}  // namespace

iMemoryService& memoryService() noexcept {
    return *installedService.load(std::memory_order_acquire);
}

iMemoryService* installMemoryService(iMemoryService* service) noexcept {
    return installedService.exchange(service ? service : &mallocService);
}
