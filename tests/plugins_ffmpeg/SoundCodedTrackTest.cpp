/// Which packets a decoder is handed for which samples.
#include <gtest/gtest.h>

#include "plugins/ffmpeg/Bundle.h"
#include "plugins/ffmpeg/CodedTrack.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr uint32_t packetSamples = 100;
constexpr uint32_t packetCount = 200;
constexpr int64_t priming = 150;

/// Such packets fill the reservoir of the next one.
constexpr uint32_t mp3PacketSamples = 1152;
constexpr uint32_t mp3PacketBytes = 576;
/// As encoders have it: a frame that is counted from the first heard sample begins close to a packet's end.
constexpr int64_t mp3Priming = 1105;

/// A stream of 200 packets of 100 samples and one byte each, the first 150 samples of it priming. Its
/// codec wants one packet before each start.
class SoundCodedTrack : public ::testing::Test {
protected:
    SoundCodedTrack() {
        std::string error;
        folder_.write("packets", std::string(size_t{packetCount} * mp3PacketBytes, 'x'));
        EXPECT_TRUE(file_->open(folder_.file("packets"), error)) << error;
        track_ = make(AV_CODEC_ID_MP2);
    }
    [[nodiscard]] std::unique_ptr<CodedTrack> make(AVCodecID codec) const {
        return make(codec, packetSamples, 1, priming);
    }
    [[nodiscard]] std::unique_ptr<CodedTrack> makeMp3() const {
        return make(AV_CODEC_ID_MP3, mp3PacketSamples, mp3PacketBytes, mp3Priming);
    }
    [[nodiscard]] std::unique_ptr<CodedTrack> make(AVCodecID codec, uint32_t sampleCount, uint32_t byteCount,
                                                   int64_t primed) const {
        std::vector<SoundPacket> packets(packetCount);
        for (uint32_t number = 0; number < packetCount; ++number) {
            packets[number].position = int64_t{number} * byteCount;
            packets[number].byteCount = byteCount;
            packets[number].sampleCount = sampleCount;
        }
        KeptSamples kept;
        kept.append(primed, int64_t{packetCount} * sampleCount - primed);
        LeadIn leadIn(codec);
        leadIn.settle(FF_PROFILE_UNKNOWN, 1000, sampleCount);
        auto track = std::make_unique<CodedTrack>(SoundIndex(std::move(packets), {}, kept), leadIn, codec);
        track->readFrom(file_);
        return track;
    }
    Bundle bundle(int64_t first, int64_t end) {
        Bundle bundle;
        track_->bundle(first, end, bytes_);
        EXPECT_TRUE(readBundle(bytes_, bundle));
        return bundle;
    }
    /// The numbers of the packets that come with these samples.
    std::vector<int64_t> packetsFor(int64_t first, int64_t end) {
        std::vector<int64_t> numbers;
        for (Bundle::Packet const& packet : bundle(first, end).packets) {
            numbers.push_back(packet.firstSample / packet.sampleCount);
        }
        return numbers;
    }
    using Numbers = std::vector<int64_t>;

    TemporaryFolder folder_;
    std::shared_ptr<ByteFile> const file_ = std::make_shared<ByteFile>();
    std::unique_ptr<CodedTrack> track_;
    std::vector<uint8_t> bytes_;
};

TEST_F(SoundCodedTrack, HasTheSamplesThatAreHeard) {
    EXPECT_EQ(track_->sampleCount(), 19850);
}

TEST_F(SoundCodedTrack, BringsThePrimingWithTheFirstSample) {
    EXPECT_EQ(packetsFor(0, 100), (Numbers{0, 1, 2}));
}

TEST_F(SoundCodedTrack, AsksForTheDecodedSamplesBehindTheHeardOnes) {
    Bundle const first = bundle(0, 100);
    ASSERT_EQ(first.runs.size(), 1U);
    EXPECT_EQ(first.runs[0].decoded, priming);
    EXPECT_EQ(first.runs[0].count, 100);
}

TEST_F(SoundCodedTrack, HandsOverEachPacketOnceWhenReadInOrder) {
    static_cast<void>(bundle(0, 100));
    EXPECT_EQ(packetsFor(100, 200), (Numbers{3}));
    EXPECT_EQ(packetsFor(200, 300), (Numbers{4}));
}

TEST_F(SoundCodedTrack, GoesOnInOrder) {
    static_cast<void>(bundle(0, 100));
    EXPECT_FALSE(bundle(100, 200).startsAnew);
}

TEST_F(SoundCodedTrack, BringsTheLeadInAfterAJump) {
    static_cast<void>(bundle(0, 100));
    EXPECT_EQ(packetsFor(5000, 5100), (Numbers{50, 51, 52}));
}

TEST_F(SoundCodedTrack, StartsAnewAfterAJump) {
    static_cast<void>(bundle(0, 100));
    EXPECT_TRUE(bundle(5000, 5100).startsAnew);
}

TEST_F(SoundCodedTrack, BringsNothingForSamplesThatAreStillHeld) {
    static_cast<void>(bundle(5000, 5100));
    EXPECT_EQ(packetsFor(5000, 5100), Numbers());
}

TEST_F(SoundCodedTrack, GoesBackToSamplesThatAreStillHeldWithoutAJump) {
    static_cast<void>(bundle(5000, 5100));
    static_cast<void>(bundle(5100, 8000));
    EXPECT_FALSE(bundle(5000, 5100).startsAnew);
}

TEST_F(SoundCodedTrack, JumpsToSamplesThatAreNoLongerHeld) {
    static_cast<void>(bundle(0, 100));
    static_cast<void>(bundle(100, 9000));
    static_cast<void>(bundle(9000, 9100));
    EXPECT_TRUE(bundle(100, 200).startsAnew);
}

TEST_F(SoundCodedTrack, DoesNotTrustWhatTheLeadInGave) {
    static_cast<void>(bundle(5000, 5100));
    EXPECT_TRUE(bundle(4900, 5000).startsAnew);
}

TEST_F(SoundCodedTrack, WalksOverASmallGapInsteadOfJumping) {
    static_cast<void>(bundle(5000, 5100));
    EXPECT_EQ(packetsFor(5160, 5200), (Numbers{53}));
}

TEST_F(SoundCodedTrack, AlwaysBeginsAtTheFirstPacketForTheFirstSample) {
    static_cast<void>(bundle(0, 100));
    EXPECT_EQ(packetsFor(0, 100), (Numbers{0, 1, 2}));
}

TEST_F(SoundCodedTrack, TellsWhenNoPacketFollows) {
    EXPECT_FALSE(bundle(19000, 19700).endsStream);
    EXPECT_TRUE(bundle(19700, 19850).endsStream);
}

TEST_F(SoundCodedTrack, TellsThatItGoesOnWithoutBringingAnything) {
    static_cast<void>(bundle(5000, 5100));
    EXPECT_TRUE(track_->goesOnAt(5100));
    EXPECT_FALSE(track_->goesOnAt(9000));
    EXPECT_EQ(packetsFor(5100, 5200), (Numbers{53}));
}

TEST_F(SoundCodedTrack, BringsOnePacketMoreForADecoderThatHoldsBackSamples) {
    track_ = make(AV_CODEC_ID_OPUS);
    EXPECT_EQ(packetsFor(0, 100), (Numbers{0, 1, 2, 3}));
}

TEST_F(SoundCodedTrack, BringsNoPacketForTheOverlapOfMpegLayer3WhereThereIsNone) {
    track_ = makeMp3();
    EXPECT_EQ(packetsFor(50 * 1152, 51 * 1152), (Numbers{49, 50, 51}));
    EXPECT_EQ(packetsFor(90 * 1152 - 50, 91 * 1152), (Numbers{88, 89, 90, 91}));
}

TEST_F(SoundCodedTrack, DoesNotTrustThePartOfAPacketThatLacksItsOverlap) {
    track_ = makeMp3();
    static_cast<void>(bundle(50 * 1152, 51 * 1152));
    EXPECT_FALSE(bundle(50 * 1152 - 49, 51 * 1152).startsAnew);
    EXPECT_TRUE(bundle(50 * 1152 - 50, 51 * 1152).startsAnew);
}

TEST_F(SoundCodedTrack, LeavesAPacketEmptyThatTheFileDoesNotHold) {
    folder_.write("packets", "x");
    std::string error;
    auto const cut = std::make_shared<ByteFile>();
    ASSERT_TRUE(cut->open(folder_.file("packets"), error));
    track_->readFrom(cut);
    Bundle const first = bundle(0, 100);
    EXPECT_FALSE(first.packets[0].bytes.empty());
    EXPECT_TRUE(first.packets[1].bytes.empty());
}

}  // namespace
}  // namespace test
