#include "ole/os/LockRank.h"

#include "ole/os/HeldLocks.h"

#if defined(PLAYFILE_DEBUG_LOCKS)

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace {

struct HeldLock {
    void const* lock;
    eLockRank rank;
    char const* name;
};

/// What the thread holds, in the order in which it was taken. Deeper nesting isn't followed.
struct HeldLocks {
    static constexpr std::size_t mostFollowed = 32;
    std::array<HeldLock, mostFollowed> locks;
    std::size_t count;
};

constinit thread_local HeldLocks held{};

[[noreturn]] void reportWrongOrder(HeldLock const& holding, char const* wanted, eLockRank rank) {
    std::fprintf(stderr, "Lock order: \"%s\" (rank %u) is wanted while \"%s\" (rank %u) is held\n", wanted,
                 static_cast<unsigned>(rank), holding.name, static_cast<unsigned>(holding.rank));
    std::abort();
}

}  // namespace

void LockOrder::aboutToTake(void const* lock, eLockRank rank, char const* name) noexcept {
    if (rank == eLockRank::unranked) {
        return;
    }
    for (std::size_t i = 0; i < held.count; ++i) {
        if (held.locks[i].rank >= rank) {
            reportWrongOrder(held.locks[i], name, rank);
        }
    }
    if (held.count < HeldLocks::mostFollowed) {
        held.locks[held.count++] = {lock, rank, name};
    }
}

void LockOrder::released(void const* lock) noexcept {
    for (std::size_t i = held.count; i > 0; --i) {
        if (held.locks[i - 1].lock == lock) {
            for (std::size_t j = i; j < held.count; ++j) {
                held.locks[j - 1] = held.locks[j];
            }
            --held.count;
            return;
        }
    }
}

void forgetHeldLocks() noexcept {
    held.count = 0;
}

#else

void forgetHeldLocks() noexcept {}
void LockOrder::aboutToTake(void const*, eLockRank, char const*) noexcept {}
void LockOrder::released(void const*) noexcept {}

#endif
