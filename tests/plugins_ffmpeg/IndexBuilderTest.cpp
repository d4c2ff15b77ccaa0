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

/// A clip of the MOV family, of which libavformat keeps the times of showing to itself.
class MovieClip : public IndexBuilderTest, public ::testing::WithParamInterface<char const*> {
protected:
    /// All packets as libavformat brings them.
    [[nodiscard]] static std::vector<PacketFacts> packetsRead(std::string const& path) {
        std::string error;
        OpenContainer container;
        EXPECT_TRUE(container.open(path, error)) << error;
        std::vector<PacketFacts> packets;
        AvPtr<AVPacket> const packet = makePacket();
        while (container.readVideoPacket(*packet) >= 0) {
            PacketFacts facts;
            facts.pts = packet->pts;
            facts.position = packet->pos;
            facts.byteCount = static_cast<uint32_t>(packet->size);
            facts.isKey = (packet->flags & AV_PKT_FLAG_KEY) != 0;
            facts.isCutOff = (packet->flags & AV_PKT_FLAG_DISCARD) != 0;
            packets.push_back(facts);
        }
        return packets;
    }
    /// One member of all packets.
    template <typename Member>
    [[nodiscard]] static std::vector<Member> all(std::vector<PacketFacts> const& packets,
                                                 Member PacketFacts::*member) {
        std::vector<Member> values;
        for (PacketFacts const& packet : packets) {
            values.push_back(packet.*member);
        }
        return values;
    }

    std::string const path_ = medium(GetParam());
    std::vector<PacketFacts> const built_ = build(path_).packets;
    std::vector<PacketFacts> const read_ = packetsRead(path_);
};

TEST_P(MovieClip, HasTheTimesThatLibavformatGives) {
    EXPECT_EQ(all(built_, &PacketFacts::pts), all(read_, &PacketFacts::pts));
}

TEST_P(MovieClip, HasThePlacesThatLibavformatGives) {
    EXPECT_EQ(all(built_, &PacketFacts::position), all(read_, &PacketFacts::position));
}

TEST_P(MovieClip, HasTheSizesThatLibavformatGives) {
    EXPECT_EQ(all(built_, &PacketFacts::byteCount), all(read_, &PacketFacts::byteCount));
}

TEST_P(MovieClip, HasTheKeysThatLibavformatGives) {
    EXPECT_EQ(all(built_, &PacketFacts::isKey), all(read_, &PacketFacts::isKey));
}

TEST_P(MovieClip, CutsOffWhatLibavformatCutsOff) {
    EXPECT_EQ(all(built_, &PacketFacts::isCutOff), all(read_, &PacketFacts::isCutOff));
}

INSTANTIATE_TEST_SUITE_P(Clips, MovieClip,
                         ::testing::Values("demo.mp4", "h264-bframes-aac.mp4", "h264-open-gop.mp4",
                                           "h264-edit-list.mp4", "h264-varying-rate.mp4", "h264-intra.mov",
                                           "prores-422-pcm.mov", "mjpeg.mov", "mpeg4-bframes.mp4",
                                           "two-videos.mp4"),
                         [](::testing::TestParamInfo<char const*> const& clip) {
                             return testNameOf(clip.param);
                         });

}  // namespace
}  // namespace test
