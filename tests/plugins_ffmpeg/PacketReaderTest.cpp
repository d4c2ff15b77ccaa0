/// Packets that lie in a file as they are, and packets that libavformat must be asked for.
#include "plugins/ffmpeg/PacketReader.h"

#include <gtest/gtest.h>

#include <limits>

#include "plugins/ffmpeg/IndexBuilder.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr int64_t farthest = std::numeric_limits<int64_t>::max();
constexpr int64_t nowhere = std::numeric_limits<int64_t>::min();

class DirectPacketReaderTest : public ::testing::Test {
protected:
    DirectPacketReaderTest() {
        folder_.write("media", "0123456789");
        std::string error;
        EXPECT_TRUE(file_->open(folder_.file("media"), error)) << error;
    }
    /// Packets at these places; each of four bytes.
    void lay(std::vector<int64_t> const& positions) {
        std::vector<PacketEntry> packets;
        for (int64_t const position : positions) {
            PacketEntry packet;
            packet.position = position;
            packet.byteCount = 4;
            packet.frame = static_cast<int32_t>(packets.size());
            packets.push_back(packet);
        }
        index_ = FrameIndex(std::move(packets));
    }
    /// A packet's bytes; empty if it can't be read.
    [[nodiscard]] std::string read(uint32_t number) {
        return reader_.read(number, *packet_) ? std::string(packet_->data, packet_->data + packet_->size)
                                              : std::string();
    }

    TemporaryFolder folder_;
    std::shared_ptr<ByteFile> const file_ = std::make_shared<ByteFile>();
    FrameIndex index_;
    DirectPacketReader reader_{file_, index_};
    AvPtr<AVPacket> const packet_ = makePacket();
};

TEST_F(DirectPacketReaderTest, BringsTheBytesAtThePlaceOfThePacket) {
    lay({0, 4});
    EXPECT_EQ(read(1), "4567");
}

TEST_F(DirectPacketReaderTest, BringsWhatThereIsOfACutPacketAndMarksIt) {
    lay({8});
    EXPECT_EQ(read(0), "89");
    EXPECT_NE(packet_->flags & AV_PKT_FLAG_CORRUPT, 0);
}

TEST_F(DirectPacketReaderTest, DoesNotMarkAWholePacket) {
    lay({6});
    EXPECT_EQ(read(0), "6789");
    EXPECT_EQ(packet_->flags & AV_PKT_FLAG_CORRUPT, 0);
}

TEST_F(DirectPacketReaderTest, FailsForAPacketBehindTheEnd) {
    lay({10});
    EXPECT_EQ(read(0), "");
}

TEST_F(DirectPacketReaderTest, FailsForPlacesWithoutSense) {
    lay({-1, nowhere, farthest});
    EXPECT_EQ(read(0) + read(1) + read(2), "");
}

TEST_F(DirectPacketReaderTest, KnowsThatAPacketBehindTheEndIsMissing) {
    lay({9, 10});
    EXPECT_FALSE(reader_.isMissing(0));
    EXPECT_TRUE(reader_.isMissing(1));
}

TEST_F(DirectPacketReaderTest, CountsNoSeekForPacketsInARow) {
    lay({0, 4});
    static_cast<void>(read(0));
    static_cast<void>(read(1));
    EXPECT_EQ(reader_.seekCount(), 0U);
}

TEST_F(DirectPacketReaderTest, CountsASeekForAPacketThatIsReadAgain) {
    lay({0, 4});
    static_cast<void>(read(0));
    static_cast<void>(read(0));
    EXPECT_EQ(reader_.seekCount(), 1U);
}

/// All packets of a clip through libavformat, any of them known by its bytes.
class DemuxedPacketReaderTest : public ::testing::Test {
protected:
    void open(std::string const& name) {
        std::string error;
        ByteFile file;
        auto container = std::make_unique<OpenContainer>();
        ASSERT_TRUE(file.open(medium(name), error) && container->open(medium(name), error)) << error;
        BuiltIndex const built = buildIndex(*container, file);
        index_ = FrameIndex(
            numberFrames(built.packets, container->video().codecpar->codec_id, built.timesAreTrue));
        reader_ = std::make_unique<DemuxedPacketReader>(std::move(container), index_);
    }
    /// True if packet `number` comes when it is asked for.
    [[nodiscard]] bool brings(uint32_t number) {
        PacketEntry const& entry = index_.packet(number);
        return reader_->read(number, *packet_) && packet_->size == static_cast<int>(entry.byteCount) &&
               packet_->pos == entry.position;
    }

    FrameIndex index_;
    std::unique_ptr<DemuxedPacketReader> reader_;
    AvPtr<AVPacket> const packet_ = makePacket();
};

TEST_F(DemuxedPacketReaderTest, GoesToThePacketThatIsAskedFor) {
    for (char const* const name : {"h264-mpegts.ts", "h264-matroska.mkv", "mpeg2-program-stream.mpg",
                                   "mpeg4-packed.avi", "h264-fragmented.mp4"}) {
        open(name);
        for (uint32_t const number : {40U, 13U, 14U, 49U, 0U, 48U}) {
            EXPECT_TRUE(brings(number)) << name << " " << number;
        }
    }
}

TEST_F(DemuxedPacketReaderTest, GoesToTheBeginningOnceAfterTheScan) {
    open("h264-mpegts.ts");
    ASSERT_TRUE(brings(0));
    EXPECT_EQ(reader_->seekCount(), 1U);
}

TEST_F(DemuxedPacketReaderTest, GoesNowhereForPacketsInARow) {
    open("h264-mpegts.ts");
    ASSERT_TRUE(brings(0));
    for (uint32_t number = 1; number < 50; ++number) {
        ASSERT_TRUE(brings(number));
    }
    EXPECT_EQ(reader_->seekCount(), 1U);
}

TEST_F(DemuxedPacketReaderTest, CountsTheWayToAPacketElsewhere) {
    open("h264-mpegts.ts");
    ASSERT_TRUE(brings(0));
    ASSERT_TRUE(brings(40));
    EXPECT_GT(reader_->seekCount(), 1U);
}

}  // namespace
}  // namespace test
