#pragma once

#include <atomic>
#include <cstdint>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"
#include "ole/os/LockRank.h"
#include "ole/os/ThreadAnnotations.h"

/// A re-entrant lock: the thread that holds it may enter again and leaves it as often.
///
/// Uncontended it costs one exchange; a thread that has to wait sleeps in the kernel.
///
/// Threads  Any. The destructor requires that nobody holds it.
class PLAYFILE_CAPABILITY("CriticalSection") CriticalSection {
public:
    /// @param rank  its place in the lock order, checked in debug builds
    /// @param name  for the message of that check; must live as long as the lock
    explicit CriticalSection(eLockRank rank = eLockRank::unranked, char const* name = "") noexcept
        : rank_(rank), name_(name) {}
    ~CriticalSection() = default;
    CriticalSection(CriticalSection const&) = delete;
    CriticalSection& operator=(CriticalSection const&) = delete;

    void enter() noexcept PLAYFILE_ACQUIRE();
    void leave() noexcept PLAYFILE_RELEASE();

    /// True if the calling thread holds it.
    [[nodiscard]] bool isHeldByThisThread() const noexcept;

private:
    /// 0 free, 1 held, 2 held and somebody may be waiting.
    std::atomic<std::uint32_t> state_{0};
    /// Number of the holding thread, 0 for none. Only the holder finds its own number here.
    std::atomic<std::uint32_t> owner_{0};
    /// How often the holder has entered; touched by the holder only.
    std::uint32_t depth_ = 0;
    eLockRank const rank_;
    char const* const name_;
};

/// Holds a `CriticalSection` for the length of a scope.
class PLAYFILE_SCOPED_CAPABILITY ScopedLock {
public:
    explicit ScopedLock(CriticalSection& lock) noexcept PLAYFILE_ACQUIRE(lock) : lock_(lock) {
        lock_.enter();
    }
    ~ScopedLock() PLAYFILE_RELEASE() { lock_.leave(); }
    ScopedLock(ScopedLock const&) = delete;
    ScopedLock& operator=(ScopedLock const&) = delete;

private:
    CriticalSection& lock_;
};

/// A plain lock from the OS object's lock factory; it need not be re-entrant.
///
/// Threads  Any thread may lock it; the one that did unlocks it.
class iAccessLock : public virtual iObject {
public:
    static constexpr std::uint32_t noTimeLimit = 0xFFFFFFFF;

    /// Waits at most `waitMs` milliseconds; true if the lock is now held.
    virtual bool lock(std::uint32_t waitMs = noTimeLimit) = 0;
    virtual void unlock() = 0;
};
