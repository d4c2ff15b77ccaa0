#include <gtest/gtest.h>

#include "tests/real/OpenClip.h"
#include "tests/real/RealMedia.h"

namespace test {
namespace {

class LinearDecode : public testing::TestWithParam<std::string> {};

std::string nameOf(testing::TestParamInfo<std::string> const& clip) {
    return std::to_string(clip.index) + "_" + testNameOf(clip.param);
}

TEST_P(LinearDecode, EveryFrameIsTheOneThatIsShown) {
    std::vector<std::string> const shown = shownFrames(GetParam());
    OpenClip const clip(GetParam());
    ASSERT_EQ(clip.frameCount(), shown.size());
    for (std::uint32_t frame = 0; frame < clip.frameCount(); ++frame) {
        ASSERT_EQ(clip.sumOf(frame), shown[frame]) << "frame " << frame;
    }
}

TEST_P(LinearDecode, EveryFrameIsTheSameBackward) {
    std::vector<std::string> const shown = shownFrames(GetParam());
    OpenClip const clip(GetParam());
    ASSERT_EQ(clip.frameCount(), shown.size());
    std::uint32_t const last = clip.frameCount();
    std::uint32_t const tried = std::min(last, turns(100));
    for (std::uint32_t frame = last; frame > last - tried; --frame) {
        ASSERT_EQ(clip.sumOf(frame - 1), shown[frame - 1]) << "frame " << frame - 1;
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, LinearDecode, testing::ValuesIn(clipsWithPictures()), nameOf);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(LinearDecode);

}  // namespace
}  // namespace test
