#include "tools/playfile/FrameOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>

#include "tools/playfile/CommandError.h"

namespace {

using testing::ElementsAre;

using Frames = std::vector<std::uint32_t>;

Frames framesFrom(std::uint32_t first, std::size_t count) {
    Frames frames(count);
    std::iota(frames.begin(), frames.end(), first);
    return frames;
}

Frames orderOf(std::string const& order, Frames const& frames, std::optional<std::uint64_t> count = {}) {
    return cli::FrameOrder::parse(order).apply(frames, count);
}

Frames sorted(Frames frames) {
    std::sort(frames.begin(), frames.end());
    return frames;
}

TEST(FrameOrder, ForwardKeepsTheOrder) {
    EXPECT_THAT(orderOf("forward", {2, 5, 9}), ElementsAre(2, 5, 9));
}

TEST(FrameOrder, BackwardBeginsAtTheEnd) {
    EXPECT_THAT(orderOf("backward", {2, 5, 9}), ElementsAre(9, 5, 2));
}

TEST(FrameOrder, CountTakesTheFirstInThatOrder) {
    EXPECT_THAT(orderOf("forward", {2, 5, 9}, 2), ElementsAre(2, 5));
    EXPECT_THAT(orderOf("backward", {2, 5, 9}, 2), ElementsAre(9, 5));
}

TEST(FrameOrder, CountAboveTheFramesChangesNothingForward) {
    EXPECT_THAT(orderOf("forward", {2, 5, 9}, 100), ElementsAre(2, 5, 9));
}

TEST(FrameOrder, RandomTakesEachFrameOnce) {
    Frames const frames = framesFrom(10, 100);
    Frames const order = orderOf("random:7", frames);
    EXPECT_NE(order, frames);
    EXPECT_EQ(sorted(order), frames);
}

TEST(FrameOrder, RandomTakesEachFrameOnceBeforeAnyComesAgain) {
    Frames const frames = framesFrom(0, 30);
    Frames const order = orderOf("random:7", frames, 75);
    ASSERT_EQ(order.size(), 75U);
    EXPECT_EQ(sorted({order.begin(), order.begin() + 30}), frames);
    EXPECT_EQ(sorted({order.begin() + 30, order.begin() + 60}), frames);
}

TEST(FrameOrder, OneSeedGivesOneOrder) {
    Frames const frames = framesFrom(0, 50);
    EXPECT_EQ(orderOf("random:3", frames), orderOf("random:3", frames));
    EXPECT_NE(orderOf("random:3", frames), orderOf("random:4", frames));
    EXPECT_EQ(orderOf("scrub:3", frames), orderOf("scrub:3", frames));
    EXPECT_NE(orderOf("scrub:3", frames), orderOf("scrub:4", frames));
}

TEST(FrameOrder, OrdersAreTheSameOnEveryMachine) {
    EXPECT_THAT(orderOf("random:1", framesFrom(0, 8)), ElementsAre(4, 6, 3, 5, 1, 7, 2, 0));
}

TEST(FrameOrder, ScrubStaysMostlyNearItsLastPlace) {
    Frames const order = orderOf("scrub:5", framesFrom(0, 1000), 2000);
    std::size_t nearCount = 0;
    for (std::size_t i = 1; i < order.size(); ++i) {
        nearCount += std::abs(std::int64_t(order[i]) - std::int64_t(order[i - 1])) <= 26 ? 1 : 0;
    }
    EXPECT_GT(nearCount, order.size() * 9 / 10);
}

TEST(FrameOrder, ScrubGoesBothWays) {
    Frames const order = orderOf("scrub:5", framesFrom(0, 1000), 200);
    EXPECT_FALSE(std::is_sorted(order.begin(), order.end()));
    EXPECT_FALSE(std::is_sorted(order.rbegin(), order.rend()));
}

TEST(FrameOrder, OneFrameWillDoForEveryOrder) {
    for (char const* const order : {"forward", "backward", "random:1", "scrub:1"}) {
        EXPECT_THAT(orderOf(order, {4}), ElementsAre(4)) << order;
    }
}

TEST(FrameOrder, RefusesWhatItDoesNotKnow) {
    for (char const* const text : {"", "sideways", "random", "scrub", "random:", "random:x", "random:-1",
                                   "random:1 ", "forward:1", "random:99999999999999999999"}) {
        EXPECT_THROW(static_cast<void>(cli::FrameOrder::parse(text)), cli::CommandError) << text;
    }
}

}  // namespace
