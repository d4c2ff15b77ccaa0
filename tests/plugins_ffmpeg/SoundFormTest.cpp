#include "plugins/ffmpeg/SoundForm.h"

#include <gtest/gtest.h>

#include <cstring>

namespace test {
namespace {

using namespace playfile_ffmpeg;

using Bytes = std::vector<uint8_t>;

/// A frame of one stretch of memory after the other.
AvPtr<AVFrame> frameOf(AVSampleFormat format, int channels, std::vector<Bytes> const& planes) {
    AvPtr<AVFrame> frame = makeFrame();
    frame->format = format;
    av_channel_layout_default(&frame->ch_layout, channels);
    size_t const bytesOfSample = static_cast<size_t>(av_get_bytes_per_sample(format));
    size_t const perPlane = planes[0].size() / bytesOfSample;
    bool const isPlanar = av_sample_fmt_is_planar(format) != 0;
    frame->nb_samples = static_cast<int>(isPlanar ? perPlane : perPlane / static_cast<size_t>(channels));
    EXPECT_GE(av_frame_get_buffer(frame.get(), 0), 0);
    for (size_t plane = 0; plane < planes.size(); ++plane) {
        std::memcpy(frame->extended_data[plane], planes[plane].data(), planes[plane].size());
    }
    return frame;
}

Bytes copied(AVFrame const& frame, int channel, int64_t from, uint32_t count, Aud::eSampleFormat form) {
    Bytes bytes(size_t{count} * Aud::bytesPerSampleOf(form));
    copyChannel(frame, channel, from, count, form, bytes.data());
    return bytes;
}

TEST(SoundForm, TakesAChannelOutOfAPlane) {
    auto const frame = frameOf(AV_SAMPLE_FMT_S16P, 2, {{1, 0, 2, 0, 3, 0}, {4, 0, 5, 0, 6, 0}});
    EXPECT_EQ(copied(*frame, 1, 1, 2, Aud::sampleS16), (Bytes{5, 0, 6, 0}));
}

TEST(SoundForm, TakesAChannelFromBetweenTheOthers) {
    auto const frame = frameOf(AV_SAMPLE_FMT_S16, 2, {{1, 0, 4, 0, 2, 0, 5, 0, 3, 0, 6, 0}});
    EXPECT_EQ(copied(*frame, 1, 1, 2, Aud::sampleS16), (Bytes{5, 0, 6, 0}));
}

TEST(SoundForm, TakesSamplesOfEverySizeFromBetweenOthers) {
    for (AVSampleFormat const format :
         {AV_SAMPLE_FMT_U8, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_FLT, AV_SAMPLE_FMT_DBL}) {
        size_t const bytes = static_cast<size_t>(av_get_bytes_per_sample(format));
        Bytes memory(4 * bytes, 0);
        std::fill_n(memory.begin() + static_cast<std::ptrdiff_t>(3 * bytes), bytes, uint8_t{7});
        auto const frame = frameOf(format, 2, {memory});
        EXPECT_EQ(copied(*frame, 1, 1, 1, formOf(format, AV_CODEC_ID_FLAC, 0)), Bytes(bytes, 7));
    }
}

TEST(SoundForm, PacksTheUpperBytesTo24Bits) {
    auto const frame = frameOf(AV_SAMPLE_FMT_S32P, 1, {{0, 1, 2, 3, 0, 4, 5, 6}});
    EXPECT_EQ(copied(*frame, 0, 0, 2, Aud::sampleS24), (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(SoundForm, MakesFloatingPointOf64Bits) {
    int64_t const half = int64_t{1} << 62;
    Bytes memory(8);
    std::memcpy(memory.data(), &half, 8);
    Bytes const bytes = copied(*frameOf(AV_SAMPLE_FMT_S64, 1, {memory}), 0, 0, 1, Aud::sampleF64);
    double value = 0.0;
    std::memcpy(&value, bytes.data(), 8);
    EXPECT_EQ(value, 0.5);
}

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
