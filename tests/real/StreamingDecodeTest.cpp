/// Clips in the orders of an editor, from two threads and within little memory too, beside the frames that are
/// shown.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>

#include "tests/real/OpenClip.h"
#include "tests/real/RealMedia.h"

namespace test {
namespace {

using Frames = std::vector<std::uint32_t>;

constexpr std::uint32_t mostInARow = turns(60);
constexpr std::uint32_t mostAtRandom = turns(20);

std::string nameOf(testing::TestParamInfo<std::string> const& clip) {
    return std::to_string(clip.index) + "_" + testNameOf(clip.param);
}

class StreamingDecode : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { ASSERT_EQ(clip_.frameCount(), shown_.size()); }

    /// How many of the frames aren't those that are shown.
    [[nodiscard]] std::uint32_t wrongOf(Frames const& frames) const {
        return static_cast<std::uint32_t>(
            std::count_if(frames.begin(), frames.end(),
                          [this](std::uint32_t frame) { return clip_.sumOf(frame) != shown_[frame]; }));
    }

    /// From the middle on, which is no key.
    [[nodiscard]] Frames onward() const {
        Frames frames;
        for (std::uint32_t frame = count_ / 2; frame < std::min(count_, count_ / 2 + mostInARow); ++frame) {
            frames.push_back(frame);
        }
        return frames;
    }
    [[nodiscard]] Frames backward() const {
        Frames frames;
        for (std::uint32_t frame = count_; frame > count_ - std::min(count_, mostInARow); --frame) {
            frames.push_back(frame - 1);
        }
        return frames;
    }
    [[nodiscard]] Frames atRandom() const {
        std::mt19937 numbers(20261122);
        Frames frames(count_ == 0 ? 0 : mostAtRandom);
        std::generate(frames.begin(), frames.end(),
                      [&] { return static_cast<std::uint32_t>(numbers() % count_); });
        return frames;
    }
    /// Within 5 frames of a playhead that moves on.
    [[nodiscard]] Frames scrubbed() const {
        std::mt19937 numbers(20261122);
        Frames frames;
        for (std::uint32_t read = 0; count_ != 0 && read < mostInARow; ++read) {
            std::int64_t const frame = std::int64_t{count_ / 3} + read + std::int64_t(numbers() % 11) - 5;
            frames.push_back(static_cast<std::uint32_t>(std::clamp<std::int64_t>(frame, 0, count_ - 1)));
        }
        return frames;
    }

    OpenClip const clip_{GetParam()};
    std::vector<std::string> const shown_ = shownFrames(GetParam());
    std::uint32_t const count_ = clip_.frameCount();
};

TEST_P(StreamingDecode, ShowsTheRightFramesInEveryOrder) {
    EXPECT_EQ(wrongOf(atRandom()), 0U);
    EXPECT_EQ(wrongOf(onward()), 0U);
    EXPECT_EQ(wrongOf(backward()), 0U);
    EXPECT_EQ(wrongOf(scrubbed()), 0U);
}

TEST_P(StreamingDecode, ShowsTheRightFramesToTwoThreadsWithMemoryForFour) {
    clip_.setOption("streamingStoreMiB", "0");
    std::uint32_t wrongOfOther = 0;
    std::thread other([&] { wrongOfOther = wrongOf(scrubbed()); });
    Frames frames = backward();
    frames.resize(frames.size() / 2);
    EXPECT_EQ(wrongOf(frames), 0U);
    other.join();
    EXPECT_EQ(wrongOfOther, 0U);
    EXPECT_EQ(wrongOf(onward()), 0U);
}

INSTANTIATE_TEST_SUITE_P(Clips, StreamingDecode, testing::ValuesIn(clipsWithPictures()), nameOf);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(StreamingDecode);

}  // namespace
}  // namespace test
