/// Clips that are damaged, on the whole road.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/real/Mutations.h"
#include "tests/real/OpenClip.h"
#include "tests/real/RealMedia.h"

namespace test {
namespace {

constexpr std::uint32_t mutationCount = turns(500);

/// Opens a file and asks for its first frames, its last and one past that; whatever comes of it.
void readWhatCanBeHad(std::string const& path) {
    OpenClip const clip(path);
    std::uint32_t const count = clip.frameCount();
    for (std::uint32_t const frame : {0U, 1U, 2U, count / 2, count - 1, count}) {
        static_cast<void>(clip.sumOf(frame));
    }
}

class DamagedFile : public testing::TestWithParam<std::string> {};

TEST_P(DamagedFile, IsReadAsFarAsItCanBeOrRefused) {
    readWhatCanBeHad(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedFile, testing::ValuesIn(damagedFiles()),
                         [](testing::TestParamInfo<std::string> const& file) {
                             return std::to_string(file.index) + "_" + testNameOf(file.param);
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DamagedFile);

/// Good files, damaged at random.
class VideoMutations : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(mutations_.hasFiles()); }

    Mutations mutations_{smallClips(), readWhatCanBeHad};
};

TEST_F(VideoMutations, FilesCutAtRandomNeitherCrashNorHang) {
    mutations_.readCut(mutationCount / 2);
}

TEST_F(VideoMutations, FilesWithFlippedBitsNeitherCrashNorHang) {
    mutations_.readFlipped(mutationCount / 2);
}

/// Frames that can't be decoded, of a file whose index says that they are there.
TEST(DamagedFrame, FailsAndShiftsNoOther) {
    std::vector<std::string> const files = damagedFiles();
    auto const found = std::find_if(files.begin(), files.end(), [](std::string const& file) {
        return file.ends_with("bad_nal_sizes.mp4");
    });
    if (found == files.end()) {
        return;
    }
    std::vector<std::string> const shown = shownFrames(*found);
    OpenClip const clip(*found);
    std::vector<std::string> good;
    for (std::uint32_t frame = 0; frame < clip.frameCount(); ++frame) {
        std::string const sum = clip.sumOf(frame);
        if (!sum.empty()) {
            good.push_back(sum);
        }
    }
    EXPECT_EQ(clip.frameCount(), 50U);
    EXPECT_EQ(good, shown);
}

}  // namespace
}  // namespace test
