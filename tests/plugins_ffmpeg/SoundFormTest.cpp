#include "plugins/ffmpeg/SoundForm.h"

#include <gtest/gtest.h>

#include <vector>

namespace test {
namespace {

using namespace playfile_ffmpeg;

using Bytes = std::vector<uint8_t>;

TEST(SoundForm, Gives24BitsBackIfTheyWereStoredAsTheyAre) {
    EXPECT_EQ(formOf(AV_SAMPLE_FMT_S32, AV_CODEC_ID_PCM_S24LE, 24), Aud::sampleS24);
    EXPECT_EQ(formOf(AV_SAMPLE_FMT_S32, AV_CODEC_ID_S302M, 20), Aud::sampleS24);
}

TEST(SoundForm, Keeps32BitsOfCompressedSound) {
    EXPECT_EQ(formOf(AV_SAMPLE_FMT_S32P, AV_CODEC_ID_ALAC, 24), Aud::sampleS32);
}

TEST(SoundForm, KnowsNoFormOfNone) {
    EXPECT_EQ(formOf(AV_SAMPLE_FMT_NONE, AV_CODEC_ID_AAC, 0), Aud::sampleUnknown);
}

TEST(SoundForm, IsSilentInTheMiddleOfWhatHasNoSign) {
    Bytes bytes(3, 1);
    fillWithSilence(Aud::sampleU8, 3, bytes.data());
    EXPECT_EQ(bytes, Bytes(3, 0x80));
}

TEST(SoundForm, IsSilentAtZeroElsewhere) {
    Bytes bytes(6, 1);
    fillWithSilence(Aud::sampleS24, 2, bytes.data());
    EXPECT_EQ(bytes, Bytes(6, 0));
}

TEST(SoundForm, TellsStoredSamplesFromCodedOnes) {
    EXPECT_TRUE(isPcm(AV_CODEC_ID_PCM_S16LE));
    EXPECT_TRUE(isPcm(AV_CODEC_ID_PCM_VIDC));
    EXPECT_TRUE(isPcm(AV_CODEC_ID_S302M));
    EXPECT_FALSE(isPcm(AV_CODEC_ID_ADPCM_IMA_QT));
    EXPECT_FALSE(isPcm(AV_CODEC_ID_AAC));
}

}  // namespace
}  // namespace test
