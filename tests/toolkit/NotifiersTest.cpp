#include <gtest/gtest.h>

#include <functional>

#include "tests/fakes/Gate.h"
#include "tests/support/Threads.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/Repository.h"

namespace test {
namespace {

using Event = iAssetRepository::Event;

class RepositoryListeners : public ::testing::Test {
protected:
    static Ox::Ptr<Ox::Guard> listen(std::function<void(Event const&)> listener) {
        return AssetRepositoryManager::addListener(Ox::makePtr<Ox::FunctionCallback<int, Event>>(
            [listener = std::move(listener)](Event const& event) {
                listener(event);
                return 0;
            }));
    }
    static void fire() { AssetRepositoryManager::fire({Event::reachabilityFlag, Event::becameAvailable}); }
};

TEST_F(RepositoryListeners, AreToldInTheOrderOfSubscription) {
    std::string told;
    auto const first = listen([&](Event const&) { told += "a"; });
    auto const second = listen([&](Event const&) { told += "b"; });
    fire();
    EXPECT_EQ("ab", told);
}

TEST_F(RepositoryListeners, SeeTheEvent) {
    Event seen;
    auto const guard = listen([&](Event const& event) { seen = event; });
    fire();
    EXPECT_EQ(Event::reachabilityFlag, seen.flags);
    EXPECT_EQ(Event::becameAvailable, seen.kind);
}

TEST_F(RepositoryListeners, AreNotToldOnceTheirGuardHasGone) {
    int told = 0;
    auto guard = listen([&](Event const&) { ++told; });
    guard = nullptr;
    fire();
    EXPECT_EQ(0, told);
}

TEST_F(RepositoryListeners, MayEndTheirOwnSubscription) {
    int told = 0;
    Ox::Ptr<Ox::Guard> guard;
    guard = listen([&](Event const&) {
        ++told;
        guard = nullptr;
    });
    fire();
    fire();
    EXPECT_EQ(1, told);
}

TEST_F(RepositoryListeners, OneThatIsEndedByAnotherIsNotTold) {
    int told = 0;
    Ox::Ptr<Ox::Guard> second;
    auto const first = listen([&](Event const&) { second = nullptr; });
    second = listen([&](Event const&) { ++told; });
    fire();
    EXPECT_EQ(0, told);
}

TEST_F(RepositoryListeners, MaySubscribeInACall) {
    int told = 0;
    Ox::Ptr<Ox::Guard> later;
    auto const first = listen([&](Event const&) { later = listen([&](Event const&) { ++told; }); });
    fire();
    EXPECT_EQ(0, told);
    fire();
    EXPECT_LE(told, 1);
}

TEST_F(RepositoryListeners, TheEndOfASubscriptionWaitsForACallOnAnotherThread) {
    Gate gate(false);
    bool isOver = false;
    auto guard = listen([&](Event const&) {
        gate.pass();
        isOver = true;
    });
    Threads const firing(1, [] { fire(); });
    ASSERT_TRUE(gate.waitForArrivals(1));
    Threads const opening(1, [&] { gate.open(); });
    guard = nullptr;
    EXPECT_TRUE(isOver);
}

TEST_F(RepositoryListeners, MaySubscribeWhileAnotherIsBeingTold) {
    Gate gate(false);
    auto const slow = listen([&](Event const&) { gate.pass(); });
    Threads const firing(1, [] { fire(); });
    ASSERT_TRUE(gate.waitForArrivals(1));
    EXPECT_TRUE(listen([](Event const&) {}));
    gate.open();
}

TEST(DiskManager, TellsWhatIsSaid) {
    DiskNotification seen;
    auto const guard = DiskManager::instance().addListener(
        Ox::makePtr<Ox::FunctionCallback<int, DiskNotification>>([&](DiskNotification const& said) {
            seen = said;
            return 0;
        }));
    DiskNotification notification;
    notification.message = DiskNotification::mediaChanged;
    notification.type = NotifyMsgTypeDictionary::instance().getDiskChangeType();
    DiskManager::instance().notify(notification);
    EXPECT_EQ(DiskNotification::mediaChanged, seen.message);
    EXPECT_EQ(notification.type, seen.type);
}

TEST(NotifyMsgTypeDictionary, GivesEachNameOneNumber) {
    auto& dictionary = NotifyMsgTypeDictionary::instance();
    EXPECT_EQ(dictionary.getType("a"), dictionary.getType("a"));
    EXPECT_NE(dictionary.getType("a"), dictionary.getType("b"));
    EXPECT_NE(0U, dictionary.getType("a"));
}

}  // namespace
}  // namespace test
