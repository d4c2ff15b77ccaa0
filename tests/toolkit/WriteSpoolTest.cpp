#include "toolkit/plugins/WriteSpool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <semaphore>
#include <thread>
#include <vector>

namespace test {
namespace {

class WriteSpoolTest : public ::testing::Test {
protected:
    OxResult put(int number, std::uint64_t byteCount = 1, OxResult answer = oxSuccess) {
        return spool_->put(
            byteCount,
            [this, number, answer] {
                written_.push_back(number);
                return answer;
            },
            [this](bool isWritten) { (isWritten ? good_ : bad_)++; });
    }
    /// Puts something that is written only when the gate is opened.
    void putAtGate(std::uint64_t byteCount) {
        EXPECT_EQ(spool_->put(byteCount,
                              [this] {
                                  hasCome_.release();
                                  gate_.acquire();
                                  return oxSuccess;
                              },
                              {}),
                  oxSuccess);
    }

    std::vector<int> written_;
    std::atomic<int> good_{0};
    std::atomic<int> bad_{0};
    std::binary_semaphore hasCome_{0};
    std::binary_semaphore gate_{0};
    std::optional<WriteSpool> spool_{std::in_place, 100, 10};
};

TEST_F(WriteSpoolTest, WritesEverythingInItsOrder) {
    for (int number = 0; number < 1000; ++number) {
        EXPECT_EQ(put(number), oxSuccess);
    }
    EXPECT_EQ(spool_->waitUntilWritten(), oxSuccess);
    ASSERT_EQ(written_.size(), 1000U);
    EXPECT_TRUE(std::is_sorted(written_.begin(), written_.end()));
}

TEST_F(WriteSpoolTest, WritesEverythingBeforeItGoes) {
    put(1);
    put(2);
    spool_.reset();
    EXPECT_EQ(written_, (std::vector<int>{1, 2}));
}

TEST_F(WriteSpoolTest, HasNothingToWaitForWithoutWork) {
    EXPECT_EQ(spool_->waitUntilWritten(), oxSuccess);
    EXPECT_EQ(spool_->backlog(), 0U);
}

TEST_F(WriteSpoolTest, WritesLittleThingsToo) {
    std::binary_semaphore isDone{0};
    EXPECT_EQ(spool_->put(
                  1, [] { return oxSuccess; }, [&](bool) { isDone.release(); }),
              oxSuccess);
    isDone.acquire();
}

TEST_F(WriteSpoolTest, CountsWhatIsLeft) {
    putAtGate(10);
    hasCome_.acquire();
    put(1);
    EXPECT_EQ(spool_->backlog(), 2U);
    gate_.release();
}

TEST_F(WriteSpoolTest, HoldsTheCallerBackAboveTheBound) {
    putAtGate(60);
    hasCome_.acquire();
    std::atomic<bool> isThrough{false};
    std::thread caller([&] {
        put(1, 60);
        isThrough = true;
    });
    while (spool_->backlog() < 2) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(isThrough);
    gate_.release();
    caller.join();
    EXPECT_EQ(spool_->backlog(), 0U);
}

TEST_F(WriteSpoolTest, TakesSomethingLargerThanTheBound) {
    EXPECT_EQ(put(1, 1000), oxSuccess);
    EXPECT_EQ(spool_->backlog(), 0U);
}

TEST_F(WriteSpoolTest, WritesNothingMoreAfterAFailure) {
    put(1, 1, oxInterrupted);
    put(2);
    EXPECT_EQ(spool_->waitUntilWritten(), oxInterrupted);
    EXPECT_EQ(put(3), oxInterrupted);
    EXPECT_EQ(written_, (std::vector<int>{1}));
    EXPECT_EQ(good_, 0);
    EXPECT_EQ(bad_, 2);
}

class SettledSpoolTest : public WriteSpoolTest {
protected:
    SettledSpoolTest() {
        spool_.emplace(100, 10, [this] {
            settledAfter_.push_back(written_.size());
            leftAtSettling_ = spool_->backlog();
            toldAtSettling_ = good_ + bad_;
            return settles_.load();
        });
    }
    ~SettledSpoolTest() override { spool_.reset(); }

    /// Puts things while the thread is held up, so that it finds all of them when it comes back.
    void putTogether(std::vector<std::uint64_t> const& byteCounts) {
        putAtGate(10);
        hasCome_.acquire();
        for (std::uint64_t const byteCount : byteCounts) {
            EXPECT_EQ(put(1, byteCount), oxSuccess);
        }
        gate_.release();
    }

    std::vector<std::size_t> settledAfter_;
    std::atomic<OxResult> settles_{oxSuccess};
    std::uint64_t leftAtSettling_ = 0;
    int toldAtSettling_ = 0;
};

TEST_F(SettledSpoolTest, SettlesOnceForSoManyBytes) {
    putTogether({4, 4, 4, 4, 4});
    EXPECT_EQ(spool_->waitUntilWritten(), oxSuccess);
    EXPECT_EQ(settledAfter_, (std::vector<std::size_t>{0, 3, 5}));
}

TEST_F(SettledSpoolTest, CountsAndTellsOfARunOnlyWhenItIsSettled) {
    putTogether({5, 5});
    EXPECT_EQ(spool_->waitUntilWritten(), oxSuccess);
    EXPECT_EQ(leftAtSettling_, 2U);
    EXPECT_EQ(toldAtSettling_, 0);
    EXPECT_EQ(good_, 2);
}

TEST_F(SettledSpoolTest, LosesARunThatCantBeSettled) {
    settles_ = oxInterrupted;
    EXPECT_EQ(put(1), oxSuccess);
    EXPECT_EQ(spool_->waitUntilWritten(), oxInterrupted);
    EXPECT_EQ(put(2), oxInterrupted);
    EXPECT_EQ(good_, 0);
    EXPECT_EQ(bad_, 1);
}

TEST_F(SettledSpoolTest, SettlesWhatWasWrittenBeforeAFailure) {
    put(1, 1);
    put(2, 10, oxInterrupted);
    EXPECT_EQ(spool_->waitUntilWritten(), oxInterrupted);
    EXPECT_EQ(settledAfter_.back(), 2U);
    EXPECT_EQ(good_, 1);
    EXPECT_EQ(bad_, 1);
}

TEST_F(SettledSpoolTest, SettlesNothingMoreAfterAFailure) {
    put(1, 10, oxInterrupted);
    EXPECT_EQ(spool_->waitUntilWritten(), oxInterrupted);
    std::size_t const settled = settledAfter_.size();
    EXPECT_EQ(put(2), oxInterrupted);
    spool_.reset();
    EXPECT_EQ(settledAfter_.size(), settled);
}

}  // namespace
}  // namespace test
