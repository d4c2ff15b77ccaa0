/// Which packets a lane reads on its way to a frame.
#include "plugins/ffmpeg/DecodeLane.h"

#include <gtest/gtest.h>

#include <cstring>

#include "plugins/ffmpeg/IndexBuilder.h"
#include "tests/plugins_ffmpeg/Media.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

/// Notes the numbers of the packets that are read, and damages them if it is told to.
class RecordingPacketReader : public PacketReader {
public:
    RecordingPacketReader(std::shared_ptr<ByteFile const> file, FrameIndex const& index)
        : reader_(std::move(file), index) {}

    std::vector<uint32_t> numbers;
    bool spoilsHalf = false;

private:
    bool readPacket(uint32_t number, AVPacket& packet) override {
        numbers.push_back(number);
        bool const isRead = reader_.read(number, packet);
        if (isRead && spoilsHalf) {
            int const whole = packet.size / 2;
            std::memset(packet.data + whole, 0x55, static_cast<size_t>(packet.size - whole));
        }
        return isRead;
    }

    DirectPacketReader reader_;
};

class DecodeLaneTest : public ::testing::Test {
protected:
    /// Makes a lane for a clip whose packets lie in the file as they are. `falseKeys`: packets that are
    /// marked as keys though they aren't.
    void open(std::string const& name, std::vector<uint32_t> const& falseKeys = {},
              FrameDecoder::eThreading threading = FrameDecoder::eThreading::throughput) {
        std::string error;
        ASSERT_TRUE(file_->open(medium(name), error) && container_.open(medium(name), error)) << error;
        BuiltIndex built = buildIndex(container_, *file_);
        ASSERT_TRUE(built.liesInFile);
        for (uint32_t const packet : falseKeys) {
            built.packets[packet].isKey = true;
        }
        AVCodecParameters const& parameters = container_.videoParameters();
        index_ = FrameIndex(numberFrames(built.packets, parameters.codec_id, built.timesAreTrue));
        auto decoder = FrameDecoder::open(parameters, index_.reorderDepth(), threading, error);
        ASSERT_TRUE(decoder) << error;
        lane_ = std::make_unique<DecodeLane>(
            index_, reader_, std::move(decoder),
            NalFraming::of(parameters.codec_id,
                           Bytes(parameters.extradata, static_cast<size_t>(parameters.extradata_size))));
    }

    /// The number on a frame; the packets read for it are those in `reader_` afterwards.
    [[nodiscard]] int fetch(uint32_t frame) {
        reader_.numbers.clear();
        return numberOn(lane_->fetch(frame, {frame, frame, UINT32_MAX}, store_).get());
    }
    /// The packet from which on the last frame was read.
    [[nodiscard]] uint32_t firstRead() const { return reader_.numbers.empty() ? 0 : reader_.numbers.front(); }

    std::shared_ptr<ByteFile> const file_ = std::make_shared<ByteFile>();
    OpenContainer container_;
    FrameIndex index_;
    RecordingPacketReader reader_{file_, index_};
    std::unique_ptr<DecodeLane> lane_;
    PictureStore store_;
};

/// The clip has a key every 24 frames.
constexpr char const* shortGroups = "h264-bframes-aac.mp4";

TEST_F(DecodeLaneTest, BeginsAtTheKeyBeforeTheFrame) {
    open(shortGroups);
    EXPECT_EQ(fetch(60), 60);
    EXPECT_EQ(firstRead(), index_.packetOf(48));
}

TEST_F(DecodeLaneTest, ReadsNothingTwiceOnTheWay) {
    open(shortGroups);
    static_cast<void>(fetch(60));
    for (size_t read = 0; read < reader_.numbers.size(); ++read) {
        EXPECT_EQ(reader_.numbers[read], firstRead() + read);
    }
}

TEST_F(DecodeLaneTest, GoesOnWhereItStandsForTheNextFrame) {
    open(shortGroups);
    static_cast<void>(fetch(60));
    uint32_t const last = reader_.numbers.back();
    for (uint32_t frame = 61; reader_.numbers.empty() || reader_.numbers.back() == last; ++frame) {
        ASSERT_EQ(fetch(frame), static_cast<int>(frame));
    }
    EXPECT_EQ(firstRead(), last + 1);
}

TEST_F(DecodeLaneTest, BeginsAtTheSameKeyForAFrameBeforeInTheGroup) {
    open(shortGroups);
    static_cast<void>(fetch(60));
    EXPECT_EQ(fetch(55), 55);
    EXPECT_EQ(firstRead(), index_.packetOf(48));
}

TEST_F(DecodeLaneTest, BeginsAtTheNewKeyForAFrameFarAhead) {
    open(shortGroups);
    static_cast<void>(fetch(5));
    EXPECT_EQ(fetch(90), 90);
    EXPECT_EQ(firstRead(), index_.packetOf(72));
}

TEST_F(DecodeLaneTest, ReadsOnToAFrameFarAheadInTheSameGroup) {
    open("h264-one-long-gop.mp4");
    static_cast<void>(fetch(5));
    uint32_t const last = reader_.numbers.back();
    EXPECT_EQ(fetch(80), 80);
    EXPECT_EQ(firstRead(), last + 1);
}

/// Frames that are shown before a key and coded after it refer to what lies before the key, too.
TEST_F(DecodeLaneTest, BeginsAtTheKeyBeforeTheOneThatAFrameIsCodedAfterButShownBefore) {
    open("h264-open-gop.mp4");
    uint32_t const frame = index_.packet(index_.packetOf(60) + 1).frame;
    ASSERT_LT(frame, 60U);
    EXPECT_EQ(fetch(frame), static_cast<int>(frame));
    EXPECT_EQ(firstRead(), index_.packetOf(40));
}

TEST_F(DecodeLaneTest, BeginsAtTheKeyBeforeAPacketThatIsFalselyMarkedAsOne) {
    open("h264-one-long-gop.mp4", {45});
    auto const frame = static_cast<uint32_t>(index_.packet(45).frame);
    EXPECT_EQ(fetch(frame), static_cast<int>(frame));
}

/// This decoder shows nothing after a false start.
TEST_F(DecodeLaneTest, TakesTheMarkOfAFalseKeyAwayThatBringsNoPicture) {
    open("h264-one-long-gop.mp4", {45});
    static_cast<void>(fetch(static_cast<uint32_t>(index_.packet(45).frame)));
    EXPECT_FALSE(index_.packet(45).isKey);
}

/// This decoder shows a wrong picture after a false start.
TEST_F(DecodeLaneTest, TakesTheMarkOfAFalseKeyAwayThatBringsAPredictedPicture) {
    open("mpeg4-bframes.mp4", {31});
    static_cast<void>(fetch(static_cast<uint32_t>(index_.packet(31).frame)));
    EXPECT_FALSE(index_.packet(31).isKey);
}

TEST_F(DecodeLaneTest, DoesNotGoToAFalseKeyTwice) {
    open("h264-one-long-gop.mp4", {45});
    static_cast<void>(fetch(80));
    EXPECT_EQ(fetch(70), 70);
    EXPECT_EQ(firstRead(), 0U);
}

TEST_F(DecodeLaneTest, KeepsTrueKeyMarks) {
    open(shortGroups);
    static_cast<void>(fetch(60));
    EXPECT_TRUE(index_.packet(index_.packetOf(48)).isKey);
}

TEST_F(DecodeLaneTest, GivesTheFirstFrameOfItsOwnPacketsAlone) {
    open(shortGroups);
    EXPECT_EQ(numberOn(lane_->fetchFirstAlone().get()), 0);
    EXPECT_EQ(reader_.numbers, (std::vector<uint32_t>{0}));
}

TEST_F(DecodeLaneTest, GivesNoFirstFrameAloneThatIsDamaged) {
    open(shortGroups, {}, FrameDecoder::eThreading::onePicture);
    reader_.spoilsHalf = true;
    EXPECT_FALSE(lane_->fetchFirstAlone());
}

TEST_F(DecodeLaneTest, ReadsThePacketsOfTheFirstFrameNoSecondTime) {
    open(shortGroups);
    static_cast<void>(lane_->fetchFirstAlone());
    EXPECT_EQ(fetch(1), 1);
    EXPECT_EQ(firstRead(), 1U);
}

TEST_F(DecodeLaneTest, PutsPicturesThatAreToBeKeptIntoTheStore) {
    open(shortGroups);
    static_cast<void>(lane_->fetch(60, {57, 57, UINT32_MAX}, store_));
    EXPECT_EQ(numberOn(store_.find(58).get()), 58);
}

TEST_F(DecodeLaneTest, PutsNoEarlierPictureIntoTheStore) {
    open(shortGroups);
    static_cast<void>(lane_->fetch(60, {57, 57, UINT32_MAX}, store_));
    EXPECT_FALSE(store_.find(56));
}

TEST_F(DecodeLaneTest, EndsAtTheFrameForWhoJumpsAbout) {
    open("h264-one-long-gop.mp4");
    for (uint32_t const frame : {90U, 70U, 50U, 30U}) {
        static_cast<void>(fetch(frame));
    }
    EXPECT_EQ(fetch(10), 10);
    EXPECT_EQ(reader_.numbers.back(), index_.packetOf(10));
}

/// Some of them are coded after it.
TEST_F(DecodeLaneTest, StoresAllFramesBeforeTheLastForWhoJumpsBackward) {
    open("h264-one-long-gop.mp4");
    for (uint32_t const frame : {90U, 70U, 50U, 40U, 30U, 29U, 20U, 19U, 18U, 17U}) {
        store_.clear();
        ASSERT_EQ(numberOn(lane_->fetch(frame, {frame - 3, frame - 3, frame}, store_).get()),
                  static_cast<int>(frame));
        EXPECT_TRUE(store_.find(frame - 1) && store_.find(frame - 2) && store_.find(frame - 3));
    }
}

TEST_F(DecodeLaneTest, GivesThePictureItsTime) {
    open(shortGroups);
    EXPECT_EQ(lane_->fetch(60, {60, 60, UINT32_MAX}, store_)->pts, index_.ptsOf(60));
}

}  // namespace
}  // namespace test
