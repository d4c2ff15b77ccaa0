#include "ole/os/Reclaimable.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/fakes/Gate.h"
#include "tests/support/Threads.h"

namespace test {
namespace {

/// A member that does what the test says when it is purged.
class Member final : public Reclaimable {
public:
    explicit Member(std::function<void()> onPurge = {}) : onPurge_(std::move(onPurge)) { enrol(); }
    ~Member() override { withdraw(); }

    void purge() override {
        calls.emplace_back("purge");
        if (onPurge_) {
            onPurge_();
        }
    }
    void limitUsage() override { calls.emplace_back("limit"); }
    void reportUsage() override { calls.emplace_back("report"); }

    std::vector<std::string> calls;

private:
    std::function<void()> const onPurge_;
};

TEST(Reclaimable, AsksEveryMember) {
    Member const first;
    Member const second;
    Reclaimable::limitAll();
    Reclaimable::purgeAll();
    Reclaimable::reportAll();
    EXPECT_EQ((std::vector<std::string>{"limit", "purge", "report"}), first.calls);
    EXPECT_EQ(first.calls, second.calls);
}

TEST(Reclaimable, AMemberThatHasGoneIsNotAsked) {
    int purges = 0;
    {
        Member const gone([&] { ++purges; });
    }
    Reclaimable::purgeAll();
    EXPECT_EQ(0, purges);
}

TEST(Reclaimable, AMemberMayGoInItsOwnCall) {
    std::unique_ptr<Member> member;
    member = std::make_unique<Member>([&] { member = nullptr; });
    Reclaimable::purgeAll();
    EXPECT_EQ(nullptr, member);
}

TEST(Reclaimable, AMemberThatGoesInAnothersCallIsNotAsked) {
    std::unique_ptr<Member> second;
    int purges = 0;
    Member const first([&] { second = nullptr; });
    second = std::make_unique<Member>([&] { ++purges; });
    Reclaimable::purgeAll();
    EXPECT_EQ(0, purges);
}

TEST(Reclaimable, AMemberMayJoinInACall) {
    std::unique_ptr<Member> later;
    Member const first([&] { later = std::make_unique<Member>(); });
    Reclaimable::purgeAll();
    ASSERT_TRUE(later);
    EXPECT_TRUE(later->calls.empty());
}

TEST(Reclaimable, LeavingWaitsForACallOnAnotherThread) {
    Gate gate(false);
    bool isOver = false;
    auto member = std::make_unique<Member>([&] {
        gate.pass();
        isOver = true;
    });
    Threads const asking(1, [] { Reclaimable::purgeAll(); });
    ASSERT_TRUE(gate.waitForArrivals(1));
    Threads const opening(1, [&] { gate.open(); });
    member = nullptr;
    EXPECT_TRUE(isOver);
}

/// Memory may be asked for under a lock for which a member is waiting at that moment.
TEST(Reclaimable, AsksWhileAMemberIsHeldUpOnAnotherThread) {
    Gate gate(false);
    std::atomic<bool> isHeldUp{true};
    Member const member([&] {
        if (isHeldUp.exchange(false)) {
            gate.pass();
        }
    });
    Threads const asking(1, [] { Reclaimable::purgeAll(); });
    ASSERT_TRUE(gate.waitForArrivals(1));
    Reclaimable::limitAll();
    Member const another;
    gate.open();
    EXPECT_TRUE(another.calls.empty());
}

/// A member that two threads may ask at once.
class SharedMember final : public Reclaimable {
public:
    explicit SharedMember(std::atomic<int>& calls) : calls_(calls) { enrol(); }
    ~SharedMember() override { withdraw(); }

    void purge() override { ++calls_; }
    void limitUsage() override { ++calls_; }
    void reportUsage() override { ++calls_; }

private:
    std::atomic<int>& calls_;
};

TEST(Reclaimable, MembersComeAndGoWhileAllAreAsked) {
    std::atomic<int> rounds{0};
    std::atomic<int> calls{0};
    {
        Threads const asking(2, [&] {
            while (rounds < 2000) {
                Reclaimable::limitAll();
                std::this_thread::yield();
            }
        });
        while (++rounds < 2000) {
            SharedMember const member(calls);
        }
    }
    int const callsOfThoseThatLived = calls;
    Reclaimable::limitAll();
    EXPECT_EQ(callsOfThoseThatLived, calls);
}

}  // namespace
}  // namespace test
