#include "ole/Ox/OxMultipleAccessQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/fakes/RecordedThreads.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Wide = LightweightString<wchar_t>;
using AccessQueue = Ox::MultipleAccessQueue<Wide>;

constexpr char const* waitsWithoutLimit = "wait 4294967295 for";

class OxMultipleAccessQueue : public testing::Test {
protected:
    OxMultipleAccessQueue() {
        atMaking = threads.calls();
        threads.forget();
    }

    /// Starts a thread that takes the key, notes its name and gives the key up; returns when it waits.
    std::jthread startWaiter(std::string const& name) {
        std::size_t const waiting = queue.waiterCount(key);
        std::jthread waiter([this, name] {
            queue.beginAccess(key);
            note(name);
            queue.endAccess(key);
        });
        threads.awaitCalls(waitsWithoutLimit, waiting + 1);
        return waiter;
    }
    void note(std::string const& text) {
        std::scoped_lock const lock(mutex_);
        notes.push_back(text);
    }

    test::RecordedThreads threads;
    AccessQueue queue;
    Wide const key{L"/media/a.mov"};
    Wide const otherKey{L"/media/b.mov"};
    std::vector<std::string> atMaking;
    std::vector<std::string> notes;

private:
    std::mutex mutex_;
};

TEST_F(OxMultipleAccessQueue, MakesItsGuardByName) {
    EXPECT_THAT(atMaking, ElementsAre("make lock MultipleAccessQueue"));
}

TEST_F(OxMultipleAccessQueue, TakesAFreeKeyAtOnce) {
    queue.beginAccess(key);
    EXPECT_THAT(threads.calls(), ElementsAre("lock 4294967295", "unlock"));
    EXPECT_TRUE(queue.isAccessed(key));
    EXPECT_EQ(queue.waiterCount(key), 0U);
}

TEST_F(OxMultipleAccessQueue, FreesAKeyThatNobodyWaitsFor) {
    queue.beginAccess(key);
    threads.forget();
    queue.endAccess(key);
    EXPECT_THAT(threads.calls(), ElementsAre("lock 4294967295", "unlock"));
    EXPECT_FALSE(queue.isAccessed(key));
}

TEST_F(OxMultipleAccessQueue, KeysDoNotBlockEachOther) {
    queue.beginAccess(key);
    queue.beginAccess(otherKey);
    EXPECT_TRUE(queue.isAccessed(key));
    EXPECT_TRUE(queue.isAccessed(otherKey));
    queue.endAccess(key);
    EXPECT_TRUE(queue.isAccessed(otherKey));
}

TEST_F(OxMultipleAccessQueue, TellsKeysApartByTheirText) {
    queue.beginAccess(Wide(L"a"));
    EXPECT_TRUE(queue.isAccessed(Wide(L"a")));
    EXPECT_FALSE(queue.isAccessed(Wide(L"A")));
}

TEST_F(OxMultipleAccessQueue, UnsetKeyIsTheEmptyKey) {
    Wide empty(L"x");
    empty.createImpl(1, false);
    empty.resizeFor(0);
    queue.beginAccess(Wide());
    EXPECT_TRUE(queue.isAccessed(empty));
}

TEST_F(OxMultipleAccessQueue, WaitsOnAManualEventOfItsOwnWithTheGuardFree) {
    queue.beginAccess(key);
    threads.forget();
    bool isHeldAtWait = true;
    threads.onWait = [&] { isHeldAtWait = threads.isLockHeld(); };
    std::jthread const waiter = startWaiter("waiter");
    EXPECT_THAT(threads.callsThatBegin("make event"), ElementsAre("make event 1 manual clear 0"));
    EXPECT_FALSE(isHeldAtWait);
    queue.endAccess(key);
}

TEST_F(OxMultipleAccessQueue, ServesThreadsInOrderOfArrival) {
    queue.beginAccess(key);
    {
        std::jthread const first = startWaiter("first");
        std::jthread const second = startWaiter("second");
        std::jthread const third = startWaiter("third");
        EXPECT_EQ(queue.waiterCount(key), 3U);
        EXPECT_THAT(notes, IsEmpty());
        queue.endAccess(key);
    }
    EXPECT_THAT(notes, ElementsAre("first", "second", "third"));
    EXPECT_FALSE(queue.isAccessed(key));
}

TEST_F(OxMultipleAccessQueue, HandsTheKeyOnWithoutFreeingIt) {
    queue.beginAccess(key);
    {
        std::jthread const waiter = startWaiter("waiter");
        bool isAccessed = false;
        bool isHeldAtSet = true;
        threads.onSet = [&] {
            isHeldAtSet = threads.isLockHeld();
            isAccessed = queue.isAccessed(key);
        };
        queue.endAccess(key);
        EXPECT_TRUE(isAccessed);
        EXPECT_FALSE(isHeldAtSet);
    }
    EXPECT_THAT(threads.callsThatBegin("set"), ElementsAre("set 1"));
}

TEST_F(OxMultipleAccessQueue, NobodyOvertakesThoseWhoWait) {
    queue.beginAccess(key);
    std::optional<std::jthread> late;
    {
        std::jthread const waiter = startWaiter("waiter");
        threads.onSet = [&] {
            if (!late) {
                late.emplace([this] {
                    queue.beginAccess(key);
                    note("late");
                    queue.endAccess(key);
                });
                threads.awaitCalls(waitsWithoutLimit, 2);
            }
        };
        queue.endAccess(key);
    }
    late.reset();
    EXPECT_THAT(notes, ElementsAre("waiter", "late"));
}

TEST_F(OxMultipleAccessQueue, ReleasesTheEventOfAWaiterThatWasServed) {
    queue.beginAccess(key);
    {
        std::jthread const waiter = startWaiter("waiter");
        queue.endAccess(key);
    }
    EXPECT_EQ(threads.event(1).useCount(), 2U);
}

TEST_F(OxMultipleAccessQueue, AnotherThreadMayEndAnAccess) {
    std::jthread([this] { queue.beginAccess(key); }).join();
    queue.endAccess(key);
    EXPECT_FALSE(queue.isAccessed(key));
}

TEST_F(OxMultipleAccessQueue, ThreadThatBeginsTwiceWaitsForItself) {
    std::jthread twice([this] {
        queue.beginAccess(key);
        queue.beginAccess(key);
        note("second access");
    });
    threads.awaitCalls(waitsWithoutLimit, 1);
    queue.endAccess(key);
    twice.join();
    EXPECT_THAT(notes, ElementsAre("second access"));
    queue.endAccess(key);
    EXPECT_FALSE(queue.isAccessed(key));
}

TEST_F(OxMultipleAccessQueue, EndWithoutBeginThrows) {
    try {
        queue.endAccess(key);
        FAIL() << "nothing was thrown";
    } catch (Ox::Exception::RuntimeError const& error) {
        EXPECT_STREQ(error.typeText().c_str(), "RuntimeError");
        EXPECT_STREQ(error.message().c_str(), "Uncontrolled object passed to endAccess");
        EXPECT_STREQ(error.path().c_str(), "ole/Ox/OxMultipleAccessQueue");
        EXPECT_EQ(error.line(), 136);
        EXPECT_FALSE(error.stackTrace().empty());
    }
}

TEST_F(OxMultipleAccessQueue, EndWithoutBeginThrowsAnExceptionOfTheCommonBase) {
    EXPECT_THROW(queue.endAccess(key), Ox::Exception::Base);
}

TEST_F(OxMultipleAccessQueue, EndWithoutBeginLeavesTheGuardAndTheKeyFree) {
    EXPECT_ANY_THROW(queue.endAccess(key));
    EXPECT_FALSE(threads.isLockHeld());
    queue.beginAccess(key);
    EXPECT_TRUE(queue.isAccessed(key));
}

TEST_F(OxMultipleAccessQueue, SecondEndThrows) {
    queue.beginAccess(key);
    queue.endAccess(key);
    EXPECT_THROW(queue.endAccess(key), Ox::Exception::RuntimeError);
}

TEST_F(OxMultipleAccessQueue, GivesAKeyToOneThreadAtATime) {
    constexpr int threadCount = 6;
    constexpr int rounds = 200;
    int guarded = 0;
    {
        std::vector<std::jthread> users;
        for (int i = 0; i < threadCount; ++i) {
            users.emplace_back([&] {
                for (int round = 0; round < rounds; ++round) {
                    queue.beginAccess(key);
                    ++guarded;
                    queue.endAccess(key);
                }
            });
        }
    }
    EXPECT_EQ(guarded, threadCount * rounds);
    EXPECT_FALSE(queue.isAccessed(key));
}

/// A key whose copying finds no memory.
struct HeavyKey {
    HeavyKey() = default;
    HeavyKey(HeavyKey const&) { throw std::bad_alloc(); }
    HeavyKey& operator=(HeavyKey const&) = default;
    bool operator<(HeavyKey const&) const { return false; }
};

TEST(OxMultipleAccessQueueWithoutMemory, LeavesTheGuardLocked) {
    test::RecordedThreads threads;
    Ox::MultipleAccessQueue<HeavyKey> queue;
    EXPECT_THROW(queue.beginAccess(HeavyKey()), std::bad_alloc);
    EXPECT_TRUE(threads.isLockHeld());
}

}  // namespace
