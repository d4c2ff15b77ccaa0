#include "ole/os/Locks.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "tests/fakes/Gate.h"
#include "tests/support/Threads.h"

namespace test {
namespace {

TEST(CriticalSection, CanBeEnteredAgainByItsHolder) {
    CriticalSection lock;
    lock.enter();
    lock.enter();
    lock.leave();
    EXPECT_TRUE(lock.isHeldByThisThread());
    lock.leave();
    EXPECT_FALSE(lock.isHeldByThisThread());
}

TEST(CriticalSection, IsNotHeldByAnotherThread) {
    CriticalSection lock;
    ScopedLock const scope(lock);
    bool isHeldThere = true;
    {
        Threads const other(1, [&] { isHeldThere = lock.isHeldByThisThread(); });
    }
    EXPECT_FALSE(isHeldThere);
}

TEST(CriticalSection, KeepsOthersOutUntilItsLastLeaving) {
    CriticalSection lock;
    Signal began;
    int value = 0;
    lock.enter();
    lock.enter();
    {
        Threads const other(1, [&] {
            began.set();
            ScopedLock const scope(lock);
            value *= 2;
        });
        began.wait();
        lock.leave();
        value = 1;
        lock.leave();
    }
    EXPECT_EQ(2, value);
}

TEST(CriticalSection, GuardsWhatManyThreadsCount) {
    CriticalSection lock;
    int count = 0;
    {
        Threads const threads(8, [&] {
            for (int round = 0; round < 2000; ++round) {
                ScopedLock const outer(lock);
                ScopedLock const inner(lock);
                ++count;
            }
        });
    }
    EXPECT_EQ(16000, count);
}

TEST(CriticalSection, CanBeTakenByANewThreadAfterItsHolderHasGone) {
    CriticalSection lock;
    for (int round = 0; round < 100; ++round) {
        Threads const one(1, [&] { ScopedLock const scope(lock); });
    }
    EXPECT_FALSE(lock.isHeldByThisThread());
}

TEST(CriticalSection, LeavesTheSystemsLastErrorAlone) {
    CriticalSection lock;
    {
        Threads const others(2, [&] {
            for (int round = 0; round < 2000; ++round) {
                errno = ERANGE;
                lock.enter();
                lock.leave();
                ASSERT_EQ(ERANGE, errno);
            }
        });
    }
}

#ifdef PLAYFILE_DEBUG_LOCKS

TEST(LockOrder, ALockOfAHigherRankMayBeTaken) {
    CriticalSection cache(eLockRank::fileCache, "the cache");
    CriticalSection queue(eLockRank::queue, "the queue");
    ScopedLock const outer(cache);
    ScopedLock const inner(queue);
    EXPECT_TRUE(queue.isHeldByThisThread());
}

TEST(LockOrderDeathTest, ALockOfALowerRankEndsTheProcessWithBothNames) {
    CriticalSection cache(eLockRank::fileCache, "the cache");
    CriticalSection queue(eLockRank::queue, "the queue");
    ScopedLock const outer(queue);
    EXPECT_DEATH(cache.enter(), "the cache.*the queue");
}

TEST(LockOrderDeathTest, AnotherLockOfTheSameRankEndsTheProcess) {
    CriticalSection one(eLockRank::queue, "one queue");
    CriticalSection another(eLockRank::queue, "another queue");
    ScopedLock const outer(one);
    EXPECT_DEATH(another.enter(), "another queue.*one queue");
}

TEST(LockOrderDeathTest, ARankStaysHeldWhenALockIsLeftInAnotherOrder) {
    CriticalSection cache(eLockRank::fileCache, "the cache");
    CriticalSection file(eLockRank::file, "the file");
    CriticalSection queue(eLockRank::queue, "the queue");
    cache.enter();
    queue.enter();
    cache.leave();
    EXPECT_DEATH(file.enter(), "the file.*the queue");
    queue.leave();
}

TEST(LockOrder, TheSameLockMayBeTakenAgainUnderAHigherOne) {
    CriticalSection cache(eLockRank::fileCache, "the cache");
    CriticalSection queue(eLockRank::queue, "the queue");
    ScopedLock const outer(cache);
    ScopedLock const inner(queue);
    ScopedLock const again(cache);
    EXPECT_TRUE(cache.isHeldByThisThread());
}

TEST(LockOrder, LocksWithoutARankTakeNoPart) {
    CriticalSection queue(eLockRank::queue, "the queue");
    CriticalSection plain;
    ScopedLock const outer(plain);
    ScopedLock const inner(queue);
    CriticalSection another;
    ScopedLock const innermost(another);
    EXPECT_TRUE(another.isHeldByThisThread());
}

TEST(LockOrder, ALockThatWasLeftIsForgotten) {
    CriticalSection cache(eLockRank::fileCache, "the cache");
    CriticalSection queue(eLockRank::queue, "the queue");
    { ScopedLock const first(queue); }
    ScopedLock const second(cache);
    EXPECT_TRUE(cache.isHeldByThisThread());
}

#endif

}  // namespace
}  // namespace test
