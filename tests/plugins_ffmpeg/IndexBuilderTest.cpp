/// Where the index of a clip comes from, and that it is what libavformat brings.
#include "plugins/ffmpeg/IndexBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "tests/plugins_ffmpeg/Media.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

class IndexBuilderTest : public ::testing::Test {
protected:
    [[nodiscard]] static BuiltIndex build(std::string const& path) {
        std::string error;
        ByteFile file;
        OpenContainer container;
        if (!file.open(path, error) || !container.open(path, error)) {
            throw std::runtime_error(path + " " + error);
        }
        return buildIndex(container, file);
    }
    [[nodiscard]] static bool isScanned(std::string const& name) { return build(medium(name)).isScanned; }
    [[nodiscard]] static bool liesInFile(std::string const& name) { return build(medium(name)).liesInFile; }

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

TEST_F(IndexBuilderTest, ComesFromTheTablesOfAMovie) {
    EXPECT_FALSE(isScanned("h264-bframes-aac.mp4"));
}

TEST_F(IndexBuilderTest, ComesFromTheTablesOfAMovieWithAnEditList) {
    EXPECT_FALSE(isScanned("h264-edit-list.mp4"));
}

TEST_F(IndexBuilderTest, ComesFromAScanOfAFragmentedMovie) {
    EXPECT_TRUE(isScanned("h264-fragmented.mp4"));
}

TEST_F(IndexBuilderTest, ComesFromAScanOfAMovieThatMayHideFrames) {
    EXPECT_TRUE(isScanned("vp9-hidden-frames.mp4"));
}

TEST_F(IndexBuilderTest, ComesFromAScanOfAMovieWithDamagedTables) {
    std::size_t const lowestByteOfCount = 11;
    EXPECT_TRUE(build(damaged("h264-bframes-aac.mp4", "stsz", lowestByteOfCount)).isScanned);
}

TEST_F(IndexBuilderTest, ComesFromTheIndexOfAnAvi) {
    EXPECT_FALSE(isScanned("mjpeg.avi"));
}

TEST_F(IndexBuilderTest, ComesFromAScanOfAnAviWhoseIndexIsWrong) {
    EXPECT_TRUE(build(damaged("mjpeg.avi", "movi00dc", 0)).isScanned);
}

TEST_F(IndexBuilderTest, ComesFromAScanOfAnAviWhoseFramesAreReordered) {
    EXPECT_TRUE(isScanned("mpeg4-bframes.avi"));
}

TEST_F(IndexBuilderTest, ComesFromTheLengthOfAnIntraCodedMxf) {
    EXPECT_FALSE(isScanned("dnxhr-sq.mxf"));
}

TEST_F(IndexBuilderTest, ComesFromAScanOfATransportStream) {
    EXPECT_TRUE(isScanned("h264-mpegts.ts"));
}

TEST_F(IndexBuilderTest, KnowsWhereTheBytesOfAMovieLie) {
    EXPECT_TRUE(liesInFile("prores-422-pcm.mov"));
}

TEST_F(IndexBuilderTest, LeavesPacketsToLibavformatThatLieInPieces) {
    EXPECT_FALSE(liesInFile("h264-mpegts.ts"));
}

TEST_F(IndexBuilderTest, LeavesPacketsToLibavformatThatAreTakenApart) {
    EXPECT_FALSE(liesInFile("mpeg4-packed.avi"));
}

TEST_F(IndexBuilderTest, DoesNotTakeABidirectionalPictureForAKey) {
    BuiltIndex const built = build(medium("mpeg4-packed.avi"));
    EXPECT_TRUE(std::none_of(built.packets.begin(), built.packets.end(), [](PacketFacts const& packet) {
        return packet.isKey && packet.picture == PacketFacts::ePicture::bidirectional;
    }));
}

TEST_F(IndexBuilderTest, HidesThePicturesThatAreNeverShown) {
    BuiltIndex const built = build(medium("vp9-hidden-frames.webm"));
    auto const shown = std::count_if(built.packets.begin(), built.packets.end(),
                                     [](PacketFacts const& packet) { return !packet.isHidden; });
    EXPECT_EQ(shown, 100);
    EXPECT_GT(built.packets.size(), 100U);
}

}  // namespace
}  // namespace test
