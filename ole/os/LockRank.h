#pragma once

#include <cstdint>

/// The place of a lock in the one order in which locks may be taken: a thread that holds a lock takes
/// only locks of a higher rank. Taking the same lock again is always allowed.
enum class eLockRank : std::uint8_t {
    fileCache = 10,    ///< the lock of a `PlayFileCache` of one's own
    sharedCache = 15,  ///< that of `PlayFileCache::Shared()`, which every cache calls
    file = 20,         ///< `PlayFile::lock`
    pool = 30,         ///< `Ox::Pool`'s lock
    queue = 40,        ///< the lock of a read queue
    audioReader = 45,  ///< the lock of an `AudioChannelCache`, held for a whole audio read
    issuers = 50,      ///< `IssuersT`'s lock
    accessQueue = 60,  ///< the guard of `Ox::MultipleAccessQueue`
    toolkit = 200,     ///< locks of the host and the toolkit: innermost, nothing is called under them
    unranked = 255,    ///< takes no part in the check
};

/// Follows what the calling thread holds and ends a debug build, with both names on the console, when
/// a lock is taken out of order. In builds without `PLAYFILE_DEBUG_LOCKS` nothing is followed.
class LockOrder {
public:
    /// Called before `lock` is taken for the first time by this thread.
    static void aboutToTake(void const* lock, eLockRank rank, char const* name) noexcept;
    /// Called after the last release of `lock` by this thread.
    static void released(void const* lock) noexcept;
};
