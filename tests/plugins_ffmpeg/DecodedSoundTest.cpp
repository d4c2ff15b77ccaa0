#include "plugins/ffmpeg/DecodedSound.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "plugins/ffmpeg/SoundForm.h"

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

/// `from` counts in the frame.
Bytes copied(AvPtr<AVFrame> const& frame, int channel, int64_t from, uint32_t count,
             Aud::eSampleFormat form) {
    constexpr int64_t place = 1000;
    DecodedSound decoded(*frame);
    decoded.placeAt(place);
    Bytes bytes(size_t{count} * Aud::bytesPerSampleOf(form));
    decoded.copyChannel(channel, place + from, count, form, bytes.data());
    return bytes;
}

TEST(DecodedSound, TakesAChannelOutOfAPlane) {
    auto frame = frameOf(AV_SAMPLE_FMT_S16P, 2, {{1, 0, 2, 0, 3, 0}, {4, 0, 5, 0, 6, 0}});
    EXPECT_EQ(copied(frame, 1, 1, 2, Aud::sampleS16), (Bytes{5, 0, 6, 0}));
}

TEST(DecodedSound, TakesAChannelFromBetweenTheOthers) {
    auto frame = frameOf(AV_SAMPLE_FMT_S16, 2, {{1, 0, 4, 0, 2, 0, 5, 0, 3, 0, 6, 0}});
    EXPECT_EQ(copied(frame, 1, 1, 2, Aud::sampleS16), (Bytes{5, 0, 6, 0}));
}

TEST(DecodedSound, TakesSamplesOfEverySizeFromBetweenOthers) {
    for (AVSampleFormat const format :
         {AV_SAMPLE_FMT_U8, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_FLT, AV_SAMPLE_FMT_DBL}) {
        size_t const bytes = static_cast<size_t>(av_get_bytes_per_sample(format));
        Bytes memory(4 * bytes, 0);
        std::fill_n(memory.begin() + static_cast<std::ptrdiff_t>(3 * bytes), bytes, uint8_t{7});
        auto frame = frameOf(format, 2, {memory});
        EXPECT_EQ(copied(frame, 1, 1, 1, formOf(format, AV_CODEC_ID_FLAC, 0)), Bytes(bytes, 7));
    }
}

TEST(DecodedSound, PacksTheUpperBytesTo24Bits) {
    auto frame = frameOf(AV_SAMPLE_FMT_S32P, 1, {{0, 1, 2, 3, 0, 4, 5, 6}});
    EXPECT_EQ(copied(frame, 0, 0, 2, Aud::sampleS24), (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(DecodedSound, MakesFloatingPointOf64Bits) {
    int64_t const half = int64_t{1} << 62;
    Bytes memory(8);
    std::memcpy(memory.data(), &half, 8);
    Bytes const bytes = copied(frameOf(AV_SAMPLE_FMT_S64, 1, {memory}), 0, 0, 1, Aud::sampleF64);
    double value = 0.0;
    std::memcpy(&value, bytes.data(), 8);
    EXPECT_EQ(value, 0.5);
}

TEST(DecodedSound, TakesAChannelBehindThosePlanesThatAFrameNotesItself) {
    std::vector<Bytes> planes(12);
    for (uint8_t channel = 0; channel < planes.size(); ++channel) {
        planes[channel] = {channel, uint8_t(channel + 100)};
    }
    EXPECT_EQ(copied(frameOf(AV_SAMPLE_FMT_U8P, 12, planes), 10, 0, 2, Aud::sampleU8), (Bytes{10, 110}));
}

TEST(DecodedSound, TakesTheMemoryOverAndLeavesTheFrameEmpty) {
    AvPtr<AVFrame> const frame = frameOf(AV_SAMPLE_FMT_S16, 2, {{1, 0, 4, 0}});
    uint8_t const* const memory = frame->buf[0]->data;
    DecodedSound decoded(*frame);
    EXPECT_EQ(frame->buf[0], nullptr);
    EXPECT_EQ(decoded.takeMemory()->data, memory);
}

TEST(DecodedSound, KeepsSamplesThatLieInSeveralPieces) {
    AvPtr<AVFrame> const frame = frameOf(AV_SAMPLE_FMT_S16P, 2, {{1, 0}, {4, 0}});
    DecodedSound decoded(*frame);
    EXPECT_FALSE(decoded.takeMemory());
    Bytes bytes(2);
    decoded.copyChannel(1, 0, 1, Aud::sampleS16, bytes.data());
    EXPECT_EQ(bytes, (Bytes{4, 0}));
}

TEST(DecodedSound, EndsBehindItsSamplesWhereverItIsPlaced) {
    DecodedSound decoded(*frameOf(AV_SAMPLE_FMT_S16P, 2, {{1, 0, 2, 0, 3, 0}, {4, 0, 5, 0, 6, 0}}));
    decoded.placeAt(70);
    EXPECT_EQ(decoded.firstSample(), 70);
    EXPECT_EQ(decoded.endSample(), 73);
}

}  // namespace
}  // namespace test
