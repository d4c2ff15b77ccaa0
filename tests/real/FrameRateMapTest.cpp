/// Files of varying rate, read by the frames of their time line.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/real/OpenClip.h"
#include "tests/real/RealMedia.h"
#include "video/iVariableFrameRateHandler.h"

namespace test {
namespace {

/// Those whose names say so.
std::vector<std::string> clipsOfVaryingRate() {
    std::vector<std::string> clips;
    for (std::string const& clip : clipsWithPictures()) {
        std::string const name = std::filesystem::path(clip).filename().string();
        for (char const* const sign : {"vfr", "varying-rate", "no_duration"}) {
            if (name.find(sign) != std::string::npos) {
                clips.push_back(clip);
            }
        }
    }
    return clips;
}

std::string nameOf(testing::TestParamInfo<std::string> const& clip) {
    return std::to_string(clip.index) + "_" + testNameOf(clip.param);
}

class VaryingRate : public testing::TestWithParam<std::string> {
protected:
    /// The stored frame that a player shows at a time: the last that has begun.
    [[nodiscard]] std::int64_t playerFrame(double seconds) const {
        constexpr double rounding = 1e-9;
        auto const next = std::upper_bound(times_.begin(), times_.end(), seconds + rounding);
        return std::max<std::int64_t>(next - times_.begin() - 1, 0);
    }

    OpenClip const clip_{GetParam(), OpenClip::eNumbering::timeline};
    /// Of all stored frames, from the first one on.
    std::vector<double> const times_ = shownTimes(GetParam());
};

TEST_P(VaryingRate, HasAMapOfItsStoredFrames) {
    ASSERT_TRUE(clip_.isOpen());
    EXPECT_EQ(clip_.metadata().videoSampleCount, times_.size());
    EXPECT_TRUE(clip_.metadata().frameRateMap);
    EXPECT_TRUE(clip_.metadata().isVariableFrameRate());
}

/// The map rounds to the nearer of two frames of one run, so it may be half a frame early, never late.
TEST_P(VaryingRate, TheMapShowsWhatAPlayerShowsToHalfAFrame) {
    auto const map = Ox::dynamicPtrCast<iVariableFrameRateHandler>(clip_.metadata().frameRateMap);
    ASSERT_TRUE(map);
    double const rate = Ox::getFramesPerSecond(clip_.metadata().videoSequence.frameRate);
    std::int64_t const last = static_cast<std::int64_t>(times_.size()) - 1;
    for (std::uint32_t frame = 0; frame / rate < times_.back(); ++frame) {
        double const time = frame / rate;
        std::int64_t const shown = std::min<std::int64_t>(map->mapVFRSample(frame), last);
        std::int64_t const played = playerFrame(time);
        ASSERT_TRUE(shown == played || shown == played + 1) << frame << ": " << shown << ", not " << played;
        if (shown == played + 1) {
            double const begins = times_[static_cast<std::size_t>(shown)];
            double const began = times_[static_cast<std::size_t>(played)];
            double const toBegin = begins - time;
            EXPECT_LE(toBegin, (begins - began) * 0.5 + 0.0011) << frame;
        }
    }
}

TEST_P(VaryingRate, AFrameIsTheStoredOneThatTheMapNames) {
    std::vector<std::string> const stored = shownFrames(GetParam());
    auto const map = Ox::dynamicPtrCast<iVariableFrameRateHandler>(clip_.metadata().frameRateMap);
    ASSERT_TRUE(map);
    std::uint32_t const behindTheEnd = static_cast<std::uint32_t>(stored.size()) * 2;
    for (std::uint32_t frame = 0; frame < turns(behindTheEnd); frame += 3) {
        std::size_t const sample = std::min<std::size_t>(map->mapVFRSample(frame), stored.size() - 1);
        ASSERT_EQ(clip_.sumOf(frame), stored[sample]) << "frame " << frame;
    }
}

TEST_P(VaryingRate, AFrameBeforeTheBeginningIsTheLastOne) {
    EXPECT_EQ(clip_.sumOf(static_cast<std::uint32_t>(-1)), shownFrames(GetParam()).back());
}

INSTANTIATE_TEST_SUITE_P(Clips, VaryingRate, testing::ValuesIn(clipsOfVaryingRate()), nameOf);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(VaryingRate);

}  // namespace
}  // namespace test
