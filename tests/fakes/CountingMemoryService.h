#pragma once

#include <array>
#include <cstddef>
#include <mutex>
#include <new>

#include "ole/os/Memory.h"

namespace test {

/// Counts what goes through the memory service while it lives, and hands everything on to the service
/// that was in force before. It knows the blocks that it has handed out and can run out of memory on
/// demand. It takes no memory for itself.
///
/// Threads  Any.
class CountingMemoryService final : public iMemoryService {
public:
    CountingMemoryService() : before_(memoryService()) { installMemoryService(this); }
    ~CountingMemoryService() { installMemoryService(&before_); }
    CountingMemoryService(CountingMemoryService const&) = delete;
    CountingMemoryService& operator=(CountingMemoryService const&) = delete;

    void* allocate(std::size_t byteCount) override {
        std::scoped_lock const lock(mutex_);
        if (countdown_ != 0 && --countdown_ == 0) {
            throw std::bad_alloc();
        }
        void* const block = before_.allocate(byteCount);
        ++allocations_;
        lastByteCount_ = byteCount;
        remember(block);
        return block;
    }

    void release(void* block) noexcept override {
        std::scoped_lock const lock(mutex_);
        if (block) {
            ++releases_;
            lastReleased_ = block;
            forget(block);
        }
        before_.release(block);
    }

    /// The allocation of that number from now on, 1 for the next, finds no memory.
    void failAt(int number) {
        std::scoped_lock const lock(mutex_);
        countdown_ = number;
    }

    [[nodiscard]] int getAllocations() const { return read(allocations_); }
    [[nodiscard]] int getReleases() const { return read(releases_); }
    /// Blocks handed out and not yet released.
    [[nodiscard]] int getLive() const { return read(liveCount_); }
    [[nodiscard]] std::size_t getLastByteCount() const { return read(lastByteCount_); }
    [[nodiscard]] void const* getLastReleased() const { return read(lastReleased_); }

    /// True if `address` is the start of a block that was handed out here and is in use.
    [[nodiscard]] bool holds(void const* address) const {
        std::scoped_lock const lock(mutex_);
        for (void const* block : live_) {
            if (block == address) {
                return true;
            }
        }
        return false;
    }

private:
    static constexpr std::size_t mostBlocks = 8192;

    template <class Value>
    Value read(Value const& value) const {
        std::scoped_lock const lock(mutex_);
        return value;
    }
    void remember(void* block) {
        for (void*& slot : live_) {
            if (!slot) {
                slot = block;
                ++liveCount_;
                return;
            }
        }
    }
    void forget(void* block) {
        for (void*& slot : live_) {
            if (slot == block) {
                slot = nullptr;
                --liveCount_;
                return;
            }
        }
    }

    iMemoryService& before_;
    mutable std::mutex mutex_;
    int allocations_ = 0;
    int releases_ = 0;
    int countdown_ = 0;
    int liveCount_ = 0;
    std::size_t lastByteCount_ = 0;
    void* lastReleased_ = nullptr;
    std::array<void*, mostBlocks> live_{};
};

}  // namespace test
