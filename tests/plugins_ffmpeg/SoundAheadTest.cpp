/// The thread that feeds a decoder before its packets are asked for.
#include "plugins/ffmpeg/SoundAhead.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <thread>

#include "tests/fakes/Gate.h"
#include "tests/support/ThreadState.h"

namespace test {
namespace {

using playfile_ffmpeg::SoundAhead;

/// A stream of so many packets, of which each is counted.
class SoundAheadTest : public ::testing::Test {
protected:
    bool feed() {
        if (fed_ == packetCount_) {
            return false;
        }
        ++fed_;
        return true;
    }

    std::atomic<std::uint32_t> fed_{0};
    std::uint32_t packetCount_ = 1000;
    std::unique_ptr<SoundAhead> ahead_ = std::make_unique<SoundAhead>([this] { return feed(); });
};

TEST_F(SoundAheadTest, FeedsNothingBeforeItIsTold) {
    ahead_.reset();
    EXPECT_EQ(fed_, 0U);
}

TEST_F(SoundAheadTest, HasFedWhatIsNeededWhenItReturns) {
    EXPECT_TRUE(ahead_->goOn(0, 7, 7));
    EXPECT_EQ(fed_, 7U);
}

TEST_F(SoundAheadTest, FeedsNoFurtherThanIsWanted) {
    EXPECT_TRUE(ahead_->goOn(0, 2, 10));
    EXPECT_TRUE(ahead_->goOn(0, 10, 10));
    ahead_.reset();
    EXPECT_EQ(fed_, 10U);
}

TEST_F(SoundAheadTest, CountsFromWhatWasGivenBeforeAHalt) {
    EXPECT_TRUE(ahead_->goOn(990, 995, 995));
    EXPECT_EQ(fed_, 5U);
    ahead_->halt();
    EXPECT_TRUE(ahead_->goOn(100, 103, 103));
    EXPECT_EQ(fed_, 8U);
}

TEST_F(SoundAheadTest, FeedsNothingBetweenAHaltAndTheNextWord) {
    EXPECT_TRUE(ahead_->goOn(0, 1, 900));
    ahead_->halt();
    std::uint32_t const atHalt = fed_;
    EXPECT_TRUE(ahead_->goOn(0, 0, 0));
    ahead_.reset();
    EXPECT_EQ(fed_, atHalt);
}

TEST_F(SoundAheadTest, SaysThatAPacketCouldNotBeFed) {
    packetCount_ = 3;
    EXPECT_FALSE(ahead_->goOn(0, 5, 5));
    EXPECT_EQ(fed_, 3U);
}

TEST_F(SoundAheadTest, GoesOnAfterAFailure) {
    packetCount_ = 3;
    EXPECT_FALSE(ahead_->goOn(0, 5, 5));
    ahead_->halt();
    packetCount_ = 1000;
    EXPECT_TRUE(ahead_->goOn(3, 5, 5));
    EXPECT_EQ(fed_, 5U);
}

/// The first packet of several is held at a gate, while the second one becomes needed.
TEST(SoundAheadNeed, IsMetThoughItAroseWhileSeveralPacketsWereBeingFed) {
    Gate gate(false);
    std::atomic<std::uint32_t> fed{0};
    SoundAhead ahead([&] {
        gate.pass();
        ++fed;
        return true;
    });
    EXPECT_TRUE(ahead.goOn(0, 0, 8));
    EXPECT_TRUE(gate.waitForArrivals(1));
    std::atomic<int> const waiting{gettid()};
    std::thread opener([&] {
        waitForSleep(waiting);
        gate.open();
    });
    EXPECT_TRUE(ahead.goOn(0, 2, 8));
    opener.join();
    EXPECT_GE(fed, 2U);
}

/// The packet under way is held at a gate.
TEST(SoundAheadHalt, WaitsForThePacketThatIsBeingFed) {
    Gate gate(false);
    std::atomic<bool> isFed{false};
    SoundAhead ahead([&] {
        gate.pass();
        isFed = true;
        return true;
    });
    EXPECT_TRUE(ahead.goOn(0, 0, 1));
    EXPECT_TRUE(gate.waitForArrivals(1));
    gate.open();
    ahead.halt();
    EXPECT_TRUE(isFed);
}

}  // namespace
}  // namespace test
