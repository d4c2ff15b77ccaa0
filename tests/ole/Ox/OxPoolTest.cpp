#include "ole/Ox/OxPool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/fakes/Gate.h"
#include "tests/fakes/RecordedThreads.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What the pool keeps: no counter of its own, a number, and a note at its end.
struct Item {
    Item() {
        if (onMake) {
            onMake();
        }
        number = ++made;
    }
    ~Item() { destroyed.push_back(number); }
    Item(Item const&) = delete;
    Item& operator=(Item const&) = delete;

    int number = 0;

    static inline std::atomic<int> made{0};
    static inline std::vector<int> destroyed;
    static inline std::function<void()> onMake;
};

using ItemPool = Ox::Pool<Item, PlayEnginePriority>;
using ItemPtr = ItemPool::ItemPtr;

class OxPool : public testing::Test {
protected:
    OxPool() {
        Item::made = 0;
        Item::destroyed.clear();
        Item::onMake = nullptr;
    }
    /// `Shutdown` knows the pools that were made, so it has to be done with them before they go.
    ~OxPool() override { Shutdown::run(Shutdown::normalExit); }

    static void giveBack(ItemPool& pool, ItemPtr& item) {
        Ox::giveBack(pool, item);
        item.decRef();
    }
    static void shut(ItemPool& pool) { pool.shutdown(Shutdown::normalExit); }

    test::RecordedThreads threads;
    ItemPool pool{ItemPool::noLimit};
    ItemPool poolOfOne{1};
};

TEST_F(OxPool, MakesAnAutomaticClearEvent) {
    EXPECT_THAT(threads.calls(), ElementsAre("make event 1 auto clear 0", "make event 2 auto clear 0"));
}

TEST_F(OxPool, MakesAnItemWhenNoneIsFree) {
    ItemPtr const first = pool.getItem();
    ItemPtr const second = pool.getItem();
    EXPECT_EQ(first->number, 1);
    EXPECT_EQ(second->number, 2);
    EXPECT_EQ(pool.getCreated(), 2U);
    EXPECT_EQ(pool.getFreeCount(), 0U);
}

TEST_F(OxPool, HandsOutTheOnlyReference) {
    EXPECT_EQ(pool.getItem().useCount(), 1U);
}

TEST_F(OxPool, KeepsWhatComesBack) {
    ItemPtr item = pool.getItem();
    giveBack(pool, item);
    EXPECT_EQ(pool.getFreeCount(), 1U);
    EXPECT_THAT(Item::destroyed, IsEmpty());
}

TEST_F(OxPool, UsesAnItemAgainRatherThanMakeOne) {
    ItemPtr item = pool.getItem();
    giveBack(pool, item);
    ItemPtr const again = pool.getItem();
    EXPECT_EQ(again->number, 1);
    EXPECT_EQ(again.useCount(), 1U);
    EXPECT_EQ(pool.getCreated(), 1U);
    EXPECT_EQ(pool.getFreeCount(), 0U);
}

TEST_F(OxPool, UsesItemsInTheOrderInWhichTheyCameBack) {
    ItemPtr first = pool.getItem();
    ItemPtr second = pool.getItem();
    ItemPtr third = pool.getItem();
    giveBack(pool, second);
    giveBack(pool, third);
    giveBack(pool, first);
    EXPECT_EQ(pool.getItem()->number, 2);
    EXPECT_EQ(pool.getItem()->number, 3);
    EXPECT_EQ(pool.getItem()->number, 1);
}

TEST_F(OxPool, CountsItemsThatHaveGone) {
    pool.getItem().decRef();
    pool.getItem().decRef();
    EXPECT_THAT(Item::destroyed, ElementsAre(1, 2));
    EXPECT_EQ(pool.getCreated(), 2U);
}

TEST_F(OxPool, CountsAnItemOnceItIsMade) {
    std::uint64_t whileMaking = 99;
    Item::onMake = [&] { whileMaking = pool.getCreated(); };
    ItemPtr const item = pool.getItem();
    EXPECT_EQ(whileMaking, 0U);
}

TEST_F(OxPool, StaysUsableWhenAnItemCannotBeMade) {
    Item::onMake = [] { throw std::runtime_error("no thread"); };
    EXPECT_THROW(static_cast<void>(pool.getItem()), std::runtime_error);
    Item::onMake = nullptr;
    int number = 0;
    std::jthread([&] { number = pool.getItem()->number; }).join();
    EXPECT_EQ(number, 1);
    EXPECT_EQ(pool.getCreated(), 1U);
}

TEST_F(OxPool, SetsItsEventWhenAnItemComesBack) {
    ItemPtr item = pool.getItem();
    giveBack(pool, item);
    EXPECT_THAT(threads.callsThatBegin("set"), ElementsAre("set 1"));
}

TEST_F(OxPool, AtItsLimitWaitsWithoutLimitForAnItemToComeBack) {
    ItemPtr item = poolOfOne.getItem();
    auto waiter = std::async(std::launch::async, [this] { return poolOfOne.getItem(); });
    threads.awaitCalls("wait 4294967295 for 2", 1);
    giveBack(poolOfOne, item);
    EXPECT_EQ(waiter.get()->number, 1);
    EXPECT_EQ(poolOfOne.getCreated(), 1U);
}

TEST_F(OxPool, GivesTheOneItemToOneTakerAfterAnother) {
    constexpr int takers = 4;
    std::atomic<int> taken{0};
    ItemPtr item = poolOfOne.getItem();
    std::vector<std::jthread> waiting;
    for (int i = 0; i < takers; ++i) {
        waiting.emplace_back([&] {
            ItemPtr mine = poolOfOne.getItem();
            ++taken;
            giveBack(poolOfOne, mine);
        });
    }
    threads.awaitCalls("wait 4294967295 for 2", takers);
    giveBack(poolOfOne, item);
    waiting.clear();
    EXPECT_EQ(taken, takers);
    EXPECT_EQ(Item::made, 1);
}

TEST_F(OxPool, TakerThatIsWokenForNothingWaitsAgain) {
    ItemPtr item = poolOfOne.getItem();
    auto waiter = std::async(std::launch::async, [this] { return poolOfOne.getItem(); });
    threads.awaitCalls("wait 4294967295 for 2", 1);
    threads.event(2)->set();
    threads.awaitCalls("wait 4294967295 for 2", 2);
    giveBack(poolOfOne, item);
    EXPECT_EQ(waiter.get()->number, 1);
}

TEST_F(OxPool, AtItsLimitTakesAFreeItemWithoutWaiting) {
    ItemPtr item = poolOfOne.getItem();
    giveBack(poolOfOne, item);
    EXPECT_EQ(poolOfOne.getItem()->number, 1);
    EXPECT_THAT(threads.callsThatBegin("wait"), IsEmpty());
}

TEST_F(OxPool, WithoutALimitGrowsForEveryTaker) {
    std::vector<ItemPtr> items;
    for (int i = 0; i < 100; ++i) {
        items.push_back(pool.getItem());
    }
    EXPECT_EQ(pool.getCreated(), 100U);
    EXPECT_THAT(threads.callsThatBegin("wait"), IsEmpty());
}

TEST_F(OxPool, SettlesAtTheMostItemsThatWereOutAtOnce) {
    for (int round = 0; round < 10; ++round) {
        ItemPtr first = pool.getItem();
        ItemPtr second = pool.getItem();
        giveBack(pool, first);
        giveBack(pool, second);
    }
    EXPECT_EQ(pool.getCreated(), 2U);
    EXPECT_EQ(pool.getFreeCount(), 2U);
}

TEST_F(OxPool, ShutdownDropsFreeItemsOldestFirst) {
    ItemPtr first = pool.getItem();
    ItemPtr second = pool.getItem();
    giveBack(pool, second);
    giveBack(pool, first);
    shut(pool);
    EXPECT_THAT(Item::destroyed, ElementsAre(2, 1));
    EXPECT_EQ(pool.getFreeCount(), 0U);
}

TEST_F(OxPool, ShutdownLeavesItemsInUseAlone) {
    ItemPtr const item = pool.getItem();
    shut(pool);
    EXPECT_THAT(Item::destroyed, IsEmpty());
    EXPECT_EQ(item.useCount(), 1U);
}

TEST_F(OxPool, ShutdownOnlyReleasesAnItemThatSomebodyElseHolds) {
    ItemPtr item = pool.getItem();
    ItemPtr const kept(item);
    giveBack(pool, item);
    shut(pool);
    EXPECT_THAT(Item::destroyed, IsEmpty());
    EXPECT_EQ(kept.useCount(), 1U);
}

TEST_F(OxPool, ItemThatComesBackAfterShutdownDiesWithItsGiver) {
    ItemPtr item = pool.getItem();
    shut(pool);
    Ox::giveBack(pool, item);
    EXPECT_TRUE(item);
    EXPECT_EQ(pool.getFreeCount(), 0U);
    item.decRef();
    EXPECT_THAT(Item::destroyed, ElementsAre(1));
}

TEST_F(OxPool, SetsItsEventAlsoWhenItIsShut) {
    ItemPtr item = pool.getItem();
    shut(pool);
    giveBack(pool, item);
    EXPECT_THAT(threads.callsThatBegin("set"), ElementsAre("set 1"));
}

TEST_F(OxPool, StillMakesItemsWhenItIsShut) {
    ItemPtr item = pool.getItem();
    giveBack(pool, item);
    shut(pool);
    ItemPtr const another = pool.getItem();
    EXPECT_EQ(another->number, 2);
    EXPECT_EQ(pool.getCreated(), 2U);
}

TEST_F(OxPool, ShutsWithTheShutdownOfTheProcess) {
    ItemPtr item = pool.getItem();
    giveBack(pool, item);
    Shutdown::run(Shutdown::normalExit);
    EXPECT_THAT(Item::destroyed, ElementsAre(1));
}

TEST_F(OxPool, ShutsAfterTheQueuesAndInItsPlaceInTheOrder) {
    std::vector<std::size_t> destroyedBy;
    auto const note = [&](std::uint32_t order) {
        Shutdown::addCallback(
            Ox::makePtr<Ox::FunctionCallback<void, Shutdown::eExitType>>(
                [&](Shutdown::eExitType const&) { destroyedBy.push_back(Item::destroyed.size()); }),
            order);
    };
    ItemPtr item = pool.getItem();
    giveBack(pool, item);
    note(501);
    note(499);
    Shutdown::run(Shutdown::normalExit);
    EXPECT_THAT(destroyedBy, ElementsAre(0, 1));
}

TEST_F(OxPool, ServesManyThreadsWithNoMoreItemsThanThreads) {
    constexpr int takers = 8;
    {
        std::vector<std::jthread> taking;
        for (int i = 0; i < takers; ++i) {
            taking.emplace_back([this] {
                for (int round = 0; round < 300; ++round) {
                    ItemPtr item = pool.getItem();
                    EXPECT_EQ(item.useCount(), 1U);
                    giveBack(pool, item);
                }
            });
        }
    }
    EXPECT_LE(pool.getCreated(), static_cast<std::uint64_t>(takers));
    EXPECT_EQ(pool.getFreeCount(), pool.getCreated());
    EXPECT_THAT(Item::destroyed, IsEmpty());
}

/// The end of a pool comes after `Shutdown`, at process exit; these look at it in a process of their own
/// that ends at once, where nothing is shut down any more.
class OxPoolEnd : public testing::Test {
protected:
    OxPoolEnd() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    [[noreturn]] static void endWith(bool isAsExpected) { std::_Exit(isAsExpected ? 0 : 1); }
};

TEST_F(OxPoolEnd, DropsFreeItemsOldestFirst) {
    EXPECT_EXIT(
        {
            {
                ItemPool pool(ItemPool::noLimit);
                ItemPtr first = pool.getItem();
                ItemPtr second = pool.getItem();
                Ox::giveBack(pool, second);
                Ox::giveBack(pool, first);
            }
            endWith(Item::destroyed == std::vector<int>{2, 1});
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(OxPoolEnd, LeavesItemsInUseAlone) {
    EXPECT_EXIT(
        {
            ItemPtr item;
            {
                ItemPool pool(ItemPool::noLimit);
                item = pool.getItem();
            }
            endWith(Item::destroyed.empty() && item.useCount() == 1);
        },
        testing::ExitedWithCode(0), "");
}

#if defined(PLAYFILE_DEBUG_LOCKS)

/// The check of the lock order would end the process if the pool took its lock here.
TEST_F(OxPoolEnd, TakesNoLockWithoutFreeItems) {
    EXPECT_EXIT(
        {
            CriticalSection innermost(eLockRank::toolkit, "innermost");
            auto pool = std::make_unique<ItemPool>(ItemPool::noLimit);
            ItemPtr const item = pool->getItem();
            ScopedLock const scope(innermost);
            pool.reset();
            endWith(true);
        },
        testing::ExitedWithCode(0), "");
}

#endif

}  // namespace
