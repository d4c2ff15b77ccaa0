/// Where packets lie in a file, and how they are brought by their number.
#include <gtest/gtest.h>

#include <random>

#include "plugins/ffmpeg/PacketScan.h"
#include "plugins/ffmpeg/PlaceFinder.h"
#include "plugins/ffmpeg/SoundPacketReader.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/plugins_ffmpeg/SoundParts.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

/// A file of these bytes.
class FileOfBytes : public ::testing::Test {
protected:
    void write(std::string const& contents) {
        std::string error;
        folder_.write("file", contents);
        EXPECT_TRUE(file_->open(folder_.file("file"), error)) << error;
    }

    TemporaryFolder folder_;
    std::shared_ptr<ByteFile> const file_ = std::make_shared<ByteFile>();
};

class PlaceFinderTest : public FileOfBytes {
protected:
    /// Where a packet of these bytes lies of which the container says that it lies there.
    int64_t find(std::string const& bytes, int64_t stated) {
        AvPtr<AVPacket> const packet = packetOf(bytes);
        packet->pos = stated;
        return finder_.find(*packet);
    }

    PlaceFinder finder_{*file_};
};

TEST_F(PlaceFinderTest, FindsAPacketAtItsPlace) {
    write("headAAAABBBB");
    EXPECT_EQ(find("AAAA", 4), 4);
}

TEST_F(PlaceFinderTest, FindsAPacketShortlyBehindItsPlace) {
    write("headAAAABBBB");
    EXPECT_EQ(find("BBBB", 2), 8);
}

TEST_F(PlaceFinderTest, FindsPacketsOfOnePlaceOneBehindTheOther) {
    write("headAAAAAAAABBBB");
    EXPECT_EQ(find("AAAA", 0), 4);
    EXPECT_EQ(find("AAAA", 0), 8);
    EXPECT_EQ(find("BBBB", 0), 12);
}

TEST_F(PlaceFinderTest, DoesNotFindAPacketThatIsInPieces) {
    write("headAA--AA");
    EXPECT_EQ(find("AAAA", 4), PlaceFinder::nowhere);
}

TEST_F(PlaceFinderTest, DoesNotLookFarBehindItsPlace) {
    write(std::string(3000, '-') + "AAAA");
    EXPECT_EQ(find("AAAA", 0), PlaceFinder::nowhere);
}

TEST_F(PlaceFinderTest, DoesNotFindAPacketWithoutPlace) {
    write("AAAA");
    EXPECT_EQ(find("AAAA", -1), PlaceFinder::nowhere);
}

TEST_F(PlaceFinderTest, DoesNotFindAPacketBehindTheEndOfTheFile) {
    write("AAAA");
    EXPECT_EQ(find("AAAA", 2), PlaceFinder::nowhere);
    EXPECT_EQ(find("AAAA", 1000), PlaceFinder::nowhere);
}

class DirectSoundPacketsTest : public FileOfBytes {
protected:
    /// Packets that lie there.
    void lay(std::vector<std::pair<int64_t, uint32_t>> const& places) {
        std::vector<SoundPacket> packets;
        for (auto const& [position, byteCount] : places) {
            packets.push_back({position, 0, byteCount, 1});
        }
        index_ = SoundIndex(std::move(packets), {}, KeptSamples());
        reader_ = std::make_unique<DirectSoundPackets>(file_, index_);
    }
    /// A packet's bytes; "none" if it can't be read.
    std::string read(uint32_t number) {
        std::vector<uint8_t> bytes{'>'};
        bool const isThere = reader_->read(number, bytes);
        std::string const text(bytes.begin(), bytes.end());
        return isThere ? text : text == ">" ? "none" : "dirty";
    }

    SoundIndex index_;
    std::unique_ptr<DirectSoundPackets> reader_;
};

TEST_F(DirectSoundPacketsTest, PutsThePacketsBytesBehindTheOthers) {
    write("0123456789");
    lay({{2, 3}, {5, 4}});
    EXPECT_EQ(read(0), ">234");
    EXPECT_EQ(read(1), ">5678");
}

TEST_F(DirectSoundPacketsTest, ReadsPacketsInAnyOrder) {
    write("0123456789");
    lay({{0, 3}, {3, 3}, {6, 3}});
    EXPECT_EQ(read(2), ">678");
    EXPECT_EQ(read(0), ">012");
    EXPECT_EQ(read(1), ">345");
}

TEST_F(DirectSoundPacketsTest, ReadsPacketsThatDoNotFollowEachOther) {
    write("0123456789");
    lay({{6, 2}, {0, 2}});
    EXPECT_EQ(read(0), ">67");
    EXPECT_EQ(read(1), ">01");
}

TEST_F(DirectSoundPacketsTest, ReadsAPacketThatIsLargerThanItsWindow) {
    std::string const large(50'000, 'x');
    write("y" + large);
    lay({{0, 1}, {1, 50'000}});
    EXPECT_EQ(read(1), ">" + large);
}

TEST_F(DirectSoundPacketsTest, RefusesAPacketThatTheFileDoesNotHoldWhole) {
    write("0123");
    lay({{0, 2}, {2, 3}, {5, 1}});
    EXPECT_EQ(read(0), ">01");
    EXPECT_EQ(read(1), "none");
    EXPECT_EQ(read(2), "none");
}

TEST_F(DirectSoundPacketsTest, RefusesAPlaceThatIsNone) {
    write("0123");
    lay({{-1, 2}, {INT64_MAX, 2}, {0, UINT32_MAX}});
    EXPECT_EQ(read(0), "none");
    EXPECT_EQ(read(1), "none");
    EXPECT_EQ(read(2), "none");
}

/// The packets of a medium as its container brings them in one pass.
class DemuxedSoundPacketsTest : public testing::TestWithParam<std::string> {
protected:
    DemuxedSoundPacketsTest() {
        std::string error;
        SoundContainer container;
        EXPECT_TRUE(container.open(medium(GetParam()), error)) << error;
        AvPtr<AVPacket> const packet = makePacket();
        while (container.readPacket(*packet) >= 0) {
            contents_.emplace_back(packet->data, packet->data + packet->size);
            traces_.push_back(
                {packet->pos, packet->pts, static_cast<uint32_t>(packet->size), fingerprintOf(*packet)});
        }
        reader_ = std::make_unique<DemuxedSoundPackets>(medium(GetParam()), 0, traces_);
    }
    [[nodiscard]] bool isRight(size_t number) {
        std::vector<uint8_t> bytes;
        return reader_->read(static_cast<uint32_t>(number), bytes) && bytes == contents_[number];
    }

    std::vector<std::vector<uint8_t>> contents_;
    std::vector<PacketTrace> traces_;
    std::unique_ptr<DemuxedSoundPackets> reader_;
};

TEST_P(DemuxedSoundPacketsTest, BringsAllPacketsInOrder) {
    for (size_t number = 0; number < contents_.size(); ++number) {
        ASSERT_TRUE(isRight(number)) << number;
    }
}

TEST_P(DemuxedSoundPacketsTest, BringsAnyPacket) {
    std::mt19937 random(20261121);
    for (int i = 0; i < 100; ++i) {
        size_t const number = random() % contents_.size();
        ASSERT_TRUE(isRight(number)) << number;
    }
}

TEST_P(DemuxedSoundPacketsTest, BringsAllPacketsBackward) {
    for (size_t number = contents_.size(); number > contents_.size() - std::min<size_t>(contents_.size(), 50);
         --number) {
        ASSERT_TRUE(isRight(number - 1)) << number - 1;
    }
}

TEST_P(DemuxedSoundPacketsTest, DoesNotBringAPacketThatIsNotThere) {
    traces_[3].byteCount += 1;
    reader_ = std::make_unique<DemuxedSoundPackets>(medium(GetParam()), 0, traces_);
    EXPECT_FALSE(isRight(3));
    EXPECT_FALSE(isRight(3));
    EXPECT_TRUE(isRight(2));
}

INSTANTIATE_TEST_SUITE_P(Files, DemuxedSoundPacketsTest,
                         testing::Values("music-aac.ts", "music-302m.ts", "music-mp2.mpg", "music-dvd.vob",
                                         "music.ogg", "music.opus", "music.wma", "music-aac.mkv",
                                         "music-aac.mp4", "pictures-and-music.ts", "pictures-and-music.mxf",
                                         "pictures-and-music.dv"),
                         [](testing::TestParamInfo<std::string> const& file) {
                             return testNameOf(file.param);
                         });

TEST(DemuxedSoundPackets, BringsNothingOfAFileThatHasGone) {
    DemuxedSoundPackets reader("/nowhere", 0, std::vector<PacketTrace>(1));
    std::vector<uint8_t> bytes;
    EXPECT_FALSE(reader.read(0, bytes));
}

}  // namespace
}  // namespace test
