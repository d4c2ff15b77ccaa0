/// Samples that lie in a file one behind the other.
#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "plugins/ffmpeg/DecodedSound.h"
#include "plugins/ffmpeg/PcmTrack.h"
#include "tests/plugins_ffmpeg/SoundParts.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;
using Bytes = std::vector<uint8_t>;

/// Codecs that store a sample of each size, in each order, with and without a sign; the stored bytes of
/// one sample and those that are delivered of it.
struct Stored {
    AVCodecID codec;
    Bytes stored;
    Bytes delivered;
    Aud::eSampleFormat form;
};

class SoundPcmForm : public testing::TestWithParam<Stored> {};

TEST_P(SoundPcmForm, DeliversSamplesLittleEndianAndSigned) {
    auto const form = PcmForm::of(*parametersOf(GetParam().codec));
    ASSERT_TRUE(form);
    Bytes bytes(GetParam().delivered.size());
    form->convert(GetParam().stored.data(), 1, bytes.data());
    EXPECT_EQ(bytes, GetParam().delivered);
}

TEST_P(SoundPcmForm, TellsTheForm) {
    EXPECT_EQ(PcmForm::of(*parametersOf(GetParam().codec))->delivered(), GetParam().form);
}

TEST_P(SoundPcmForm, GivesWhatTheDecoderGives) {
    auto const parameters = parametersOf(GetParam().codec);
    std::string error;
    auto const decoder = SoundDecoder::open(*parameters, error);
    ASSERT_TRUE(decoder->feed(GetParam().stored)) << error;
    AVFrame* const frame = decoder->receive();
    ASSERT_TRUE(frame);
    Bytes bytes(GetParam().delivered.size());
    DecodedSound(*frame).copyChannel(0, 0, 1, GetParam().form, bytes.data());
    EXPECT_EQ(bytes, GetParam().delivered);
}

INSTANTIATE_TEST_SUITE_P(
    Codecs, SoundPcmForm,
    testing::Values(Stored{AV_CODEC_ID_PCM_U8, {0x81}, {0x81}, Aud::sampleU8},
                    Stored{AV_CODEC_ID_PCM_S8, {0x01}, {0x81}, Aud::sampleU8},
                    Stored{AV_CODEC_ID_PCM_S16LE, {1, 2}, {1, 2}, Aud::sampleS16},
                    Stored{AV_CODEC_ID_PCM_S16BE, {2, 1}, {1, 2}, Aud::sampleS16},
                    Stored{AV_CODEC_ID_PCM_U16LE, {1, 0x82}, {1, 2}, Aud::sampleS16},
                    Stored{AV_CODEC_ID_PCM_U16BE, {0x82, 1}, {1, 2}, Aud::sampleS16},
                    Stored{AV_CODEC_ID_PCM_S24LE, {1, 2, 3}, {1, 2, 3}, Aud::sampleS24},
                    Stored{AV_CODEC_ID_PCM_S24BE, {3, 2, 1}, {1, 2, 3}, Aud::sampleS24},
                    Stored{AV_CODEC_ID_PCM_U24LE, {1, 2, 0x83}, {1, 2, 3}, Aud::sampleS24},
                    Stored{AV_CODEC_ID_PCM_U24BE, {0x83, 2, 1}, {1, 2, 3}, Aud::sampleS24},
                    Stored{AV_CODEC_ID_PCM_S32LE, {1, 2, 3, 4}, {1, 2, 3, 4}, Aud::sampleS32},
                    Stored{AV_CODEC_ID_PCM_S32BE, {4, 3, 2, 1}, {1, 2, 3, 4}, Aud::sampleS32},
                    Stored{AV_CODEC_ID_PCM_U32LE, {1, 2, 3, 0x84}, {1, 2, 3, 4}, Aud::sampleS32},
                    Stored{AV_CODEC_ID_PCM_U32BE, {0x84, 3, 2, 1}, {1, 2, 3, 4}, Aud::sampleS32},
                    Stored{AV_CODEC_ID_PCM_F32LE, {0, 0, 0, 0x3f}, {0, 0, 0, 0x3f}, Aud::sampleF32},
                    Stored{AV_CODEC_ID_PCM_F32BE, {0x3f, 0, 0, 0}, {0, 0, 0, 0x3f}, Aud::sampleF32},
                    Stored{AV_CODEC_ID_PCM_F64LE,
                           {0, 0, 0, 0, 0, 0, 0xe0, 0x3f},
                           {0, 0, 0, 0, 0, 0, 0xe0, 0x3f},
                           Aud::sampleF64},
                    Stored{AV_CODEC_ID_PCM_F64BE,
                           {0x3f, 0xe0, 0, 0, 0, 0, 0, 0},
                           {0, 0, 0, 0, 0, 0, 0xe0, 0x3f},
                           Aud::sampleF64},
                    // The loudest negative and the loudest positive sample of the two laws.
                    Stored{AV_CODEC_ID_PCM_MULAW, {0x00}, {0x84, 0x82}, Aud::sampleS16},
                    Stored{AV_CODEC_ID_PCM_ALAW, {0xaa}, {0x00, 0x7e}, Aud::sampleS16}),
    [](testing::TestParamInfo<Stored> const& stored) {
        return std::string(avcodec_get_name(stored.param.codec));
    });

TEST(PcmForm, IsNoneWhereSamplesDoNotLieOneByOne) {
    EXPECT_FALSE(PcmForm::of(*parametersOf(AV_CODEC_ID_PCM_S16LE_PLANAR)));
    EXPECT_FALSE(PcmForm::of(*parametersOf(AV_CODEC_ID_PCM_DVD)));
    EXPECT_FALSE(PcmForm::of(*parametersOf(AV_CODEC_ID_AAC)));
}

TEST(PcmForm, ConvertsInPlaceWhereTheSizeStays) {
    Bytes bytes{2, 1, 4, 3};
    PcmForm::of(*parametersOf(AV_CODEC_ID_PCM_S16BE))->convert(bytes.data(), 2, bytes.data());
    EXPECT_EQ(bytes, (Bytes{1, 2, 3, 4}));
}

/// Stereo samples of 16 bits in two pieces, with four bytes of something else before and between.
class PcmTrackTest : public ::testing::Test {
protected:
    PcmTrackTest() {
        std::string error;
        folder_.write("samples", "head" + rising(0, 8) + "gap." + rising(8, 6));
        EXPECT_TRUE(file_->open(folder_.file("samples"), error)) << error;
        appendExtent(extents_, 4, 4, 4);
        appendExtent(extents_, 24, 3, 4);
        kept_.append(0, 7);
    }
    std::vector<int16_t> read(int64_t first, uint32_t count, AVCodecID codec = AV_CODEC_ID_PCM_S16LE) {
        PcmTrack track(file_, *PcmForm::of(*parametersOf(codec)), 2, extents_, kept_);
        Bytes bytes(size_t{count} * 4, 0xee);
        track.read(first, count, bytes.data());
        return shortsOf(bytes);
    }
    using Samples = std::vector<int16_t>;

    TemporaryFolder folder_;
    std::shared_ptr<ByteFile> const file_ = std::make_shared<ByteFile>();
    std::vector<PcmExtent> extents_;
    KeptSamples kept_;
};

TEST_F(PcmTrackTest, ReadsSamplesFromWhereTheyLie) {
    EXPECT_EQ(read(1, 2), (Samples{2, 3, 4, 5}));
}

TEST_F(PcmTrackTest, ReadsOverTheEndOfAPiece) {
    EXPECT_EQ(read(2, 4), (Samples{4, 5, 6, 7, 8, 9, 10, 11}));
}

TEST_F(PcmTrackTest, ReadsTheLastSample) {
    EXPECT_EQ(read(6, 1), (Samples{12, 13}));
}

TEST_F(PcmTrackTest, LeavesOutWhatIsNotHeard) {
    kept_ = KeptSamples();
    kept_.append(1, 2);
    kept_.append(5, 1);
    EXPECT_EQ(read(1, 2), (Samples{4, 5, 10, 11}));
}

TEST_F(PcmTrackTest, IsSilentWhereTheFileEndsEarly) {
    appendExtent(extents_, 36, 2, 4);
    kept_ = KeptSamples();
    kept_.append(0, 9);
    EXPECT_EQ(read(6, 3), (Samples{12, 13, 0, 0, 0, 0}));
}

TEST_F(PcmTrackTest, ConvertsWhatItReads) {
    EXPECT_EQ(read(0, 1, AV_CODEC_ID_PCM_S16BE), (Samples{0, 256}));
}

TEST(PcmExtents, BecomeOneWhereTheyFollowEachOther) {
    std::vector<PcmExtent> extents;
    appendExtent(extents, 100, 10, 4);
    appendExtent(extents, 140, 5, 4);
    ASSERT_EQ(extents.size(), 1U);
    EXPECT_EQ(extents[0].sampleCount, 15);
}

TEST(PcmExtents, StayApartOverAGap) {
    std::vector<PcmExtent> extents;
    appendExtent(extents, 100, 10, 4);
    appendExtent(extents, 144, 5, 4);
    ASSERT_EQ(extents.size(), 2U);
    EXPECT_EQ(extents[1].firstSample, 10);
}

TEST(PcmExtents, AreNotMadeOfNothing) {
    std::vector<PcmExtent> extents;
    appendExtent(extents, 100, 0, 4);
    EXPECT_TRUE(extents.empty());
}

}  // namespace
}  // namespace test
