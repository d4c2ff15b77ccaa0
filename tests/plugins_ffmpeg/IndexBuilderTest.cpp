/// Where the index of a clip comes from, and that it is what libavformat brings.
#include "plugins/ffmpeg/IndexBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/plugins_ffmpeg/BuiltIndexOf.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

class IndexBuilderTest : public ::testing::Test {
protected:
    /// A copy of a clip in which the byte `offset` bytes behind the word is one more.
    [[nodiscard]] std::string damaged(std::string const& name, std::string const& word,
                                      std::size_t offset) const {
        std::ifstream file(medium(name), std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        ++bytes.at(bytes.find(word) + word.size() + offset);
        folder_.write(name, bytes);
        return folder_.file(name);
    }

    TemporaryFolder folder_;
};

/// How a clip's packets come to be known.
struct Source {
    char const* name;
    bool isScanned;   ///< By a look at all packets, as the container has no index that tells all.
    bool liesInFile;  ///< The bytes in the file are those of the packets.
};

void PrintTo(Source const& clip, std::ostream* out) {
    *out << clip.name;
}

class IndexOfClip : public ::testing::TestWithParam<Source> {};

TEST_P(IndexOfClip, ComesFromTheContainerOrFromAScan) {
    EXPECT_EQ(builtIndexOf(medium(GetParam().name)).isScanned, GetParam().isScanned);
}

TEST_P(IndexOfClip, KnowsWhetherThePacketsLieInTheFile) {
    EXPECT_EQ(builtIndexOf(medium(GetParam().name)).liesInFile, GetParam().liesInFile);
}

INSTANTIATE_TEST_SUITE_P(
    Clips, IndexOfClip,
    ::testing::Values(Source{"h264-bframes-aac.mp4", false, true}, Source{"h264-edit-list.mp4", false, true},
                      Source{"prores-422-pcm.mov", false, true}, Source{"h264-fragmented.mp4", true, true},
                      Source{"vp9-hidden-frames.mp4", true, true}, Source{"mjpeg.avi", false, true},
                      Source{"mpeg4-bframes.avi", true, true}, Source{"mpeg4-packed.avi", true, false},
                      Source{"dnxhr-sq.mxf", false, false}, Source{"h264-matroska.mkv", true, false},
                      Source{"h264-mpegts.ts", true, false}, Source{"h264-raw.h264", true, true}),
    [](::testing::TestParamInfo<Source> const& clip) { return testNameOf(clip.param.name); });

TEST_F(IndexBuilderTest, ComesFromAScanOfAMovieWithDamagedTables) {
    std::size_t const lowestByteOfCount = 11;
    EXPECT_TRUE(builtIndexOf(damaged("h264-bframes-aac.mp4", "stsz", lowestByteOfCount)).isScanned);
}

TEST_F(IndexBuilderTest, ComesFromAScanOfAnAviWhoseIndexIsWrong) {
    EXPECT_TRUE(builtIndexOf(damaged("mjpeg.avi", "movi00dc", 0)).isScanned);
}

TEST_F(IndexBuilderTest, DoesNotTakeABidirectionalPictureForAKey) {
    BuiltIndex const built = builtIndexOf(medium("mpeg4-packed.avi"));
    EXPECT_TRUE(std::none_of(built.packets.begin(), built.packets.end(), [](PacketFacts const& packet) {
        return packet.isKey && packet.picture == PacketFacts::ePicture::bidirectional;
    }));
}

TEST_F(IndexBuilderTest, HidesThePicturesThatAreNeverShown) {
    BuiltIndex const built = builtIndexOf(medium("vp9-hidden-frames.webm"));
    auto const shown = std::count_if(built.packets.begin(), built.packets.end(),
                                     [](PacketFacts const& packet) { return !packet.isHidden; });
    EXPECT_EQ(shown, 100);
    EXPECT_GT(built.packets.size(), 100U);
}

}  // namespace
}  // namespace test
