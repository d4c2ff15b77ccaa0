#include <gtest/gtest.h>

#include "plugins/ffmpeg/LeadIn.h"
#include "tests/plugins_ffmpeg/SoundParts.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

constexpr int rate = 48000;

/// Packets of one size and length.
SoundIndex packets(uint32_t count, uint32_t sampleCount, uint32_t byteCount, std::vector<bool> isStart = {}) {
    SoundPacket packet;
    packet.byteCount = byteCount;
    packet.sampleCount = sampleCount;
    return SoundIndex(std::vector<SoundPacket>(count, packet), std::move(isStart), KeptSamples());
}

LeadIn settled(AVCodecID codec, uint32_t packetSamples, int profile = FF_PROFILE_UNKNOWN) {
    LeadIn leadIn(codec);
    leadIn.settle(profile, rate, packetSamples);
    return leadIn;
}

TEST(LeadIn, IsNotNeededWherePacketsStandAlone) {
    EXPECT_EQ(settled(AV_CODEC_ID_FLAC, 4096).startFor(50, packets(100, 4096, 9000)), 50U);
    EXPECT_EQ(settled(AV_CODEC_ID_ALAC, 4096).startFor(50, packets(100, 4096, 9000)), 50U);
}

TEST(LeadIn, IsOnePacketWhereTwoOverlap) {
    for (AVCodecID const codec : {AV_CODEC_ID_VORBIS, AV_CODEC_ID_MP2, AV_CODEC_ID_AC3, AV_CODEC_ID_DTS}) {
        EXPECT_EQ(settled(codec, 1024).startFor(50, packets(100, 1024, 400)), 49U);
    }
}

TEST(LeadIn, IsOnePacketOfPlainAac) {
    EXPECT_EQ(settled(AV_CODEC_ID_AAC, 1024, FF_PROFILE_AAC_LOW).startFor(50, packets(100, 1024, 400)), 49U);
}

TEST(LeadIn, IsMoreOfAacWithReconstructedHighs) {
    EXPECT_EQ(settled(AV_CODEC_ID_AAC, 2048, FF_PROFILE_AAC_LOW).startFor(50, packets(100, 2048, 400)), 34U);
    EXPECT_EQ(settled(AV_CODEC_ID_AAC, 1024, FF_PROFILE_AAC_HE).startFor(50, packets(100, 1024, 400)), 34U);
}

TEST(LeadIn, BeginsAtTheFirstPacketAtTheEarliest) {
    EXPECT_EQ(settled(AV_CODEC_ID_VORBIS, 1024).startFor(0, packets(100, 1024, 400)), 0U);
    EXPECT_EQ(settled(AV_CODEC_ID_OPUS, 960).startFor(3, packets(100, 960, 400)), 0U);
}

TEST(LeadIn, FillsTheReservoirOfMpegLayer3) {
    // 417 bytes hold 379 of main data, so two packets before the one before.
    EXPECT_EQ(settled(AV_CODEC_ID_MP3, 1152).startFor(50, packets(100, 1152, 417)), 47U);
}

TEST(LeadIn, FillsTheReservoirWithManySmallPackets) {
    // 104 bytes hold 66 of main data: 511 bytes are in eight of them.
    EXPECT_EQ(settled(AV_CODEC_ID_MP3, 1152).startFor(50, packets(100, 1152, 104)), 41U);
}

TEST(LeadIn, FillsTheSmallerReservoirOfLowRates) {
    // 72 bytes hold 49: 255 bytes are in six of them.
    EXPECT_EQ(settled(AV_CODEC_ID_MP3, 576).startFor(50, packets(100, 576, 72)), 43U);
}

TEST(LeadIn, LooksForTheReservoirNoFurtherThanItMay) {
    EXPECT_EQ(settled(AV_CODEC_ID_MP3, 1152).startFor(900, packets(1000, 1152, 0)), 899U - 256U);
}

TEST(LeadIn, IsTheReservoirAloneForTheLastSamplesOfMpegLayer3) {
    LeadIn const leadIn = settled(AV_CODEC_ID_MP3, 1152);
    EXPECT_EQ(leadIn.startFor(50, packets(100, 1152, 576), 1055), 48U);
    EXPECT_EQ(leadIn.startFor(50, packets(100, 1152, 576), 1056), 49U);
}

TEST(LeadIn, SaysFromWhichSampleOnItIsEnough) {
    LeadIn const leadIn = settled(AV_CODEC_ID_MP3, 1152);
    EXPECT_EQ(leadIn.rightFrom(1055), 0U);
    EXPECT_EQ(leadIn.rightFrom(1100), 1056U);
}

TEST(LeadIn, IsTheSameForAllSamplesWherePacketsHaveOneGranule) {
    LeadIn const leadIn = settled(AV_CODEC_ID_MP3, 576);
    EXPECT_EQ(leadIn.startFor(50, packets(100, 576, 300), 575), 48U);
    EXPECT_EQ(leadIn.rightFrom(575), 0U);
}

TEST(LeadIn, IsHalfASecondOfOpus) {
    EXPECT_EQ(settled(AV_CODEC_ID_OPUS, 960).startFor(50, packets(100, 960, 200)), 25U);
}

TEST(LeadIn, IsTwoSecondsOfOpusThatPredictsSpeech) {
    LeadIn leadIn(AV_CODEC_ID_OPUS);
    leadIn.take(*packetOf(std::string(1, '\x48')));
    leadIn.settle(FF_PROFILE_UNKNOWN, rate, 960);
    EXPECT_EQ(leadIn.startFor(150, packets(200, 960, 200)), 50U);
}

TEST(LeadIn, TellsOpusMusicFromSpeechByItsFirstBits) {
    LeadIn leadIn(AV_CODEC_ID_OPUS);
    leadIn.take(*packetOf(std::string(1, '\xfc')));
    leadIn.settle(FF_PROFILE_UNKNOWN, rate, 960);
    EXPECT_EQ(leadIn.startFor(50, packets(100, 960, 200)), 25U);
}

TEST(LeadIn, IsTwoSecondsOfCodersThatForgetSlowly) {
    EXPECT_EQ(settled(AV_CODEC_ID_ADPCM_G722, 960).startFor(150, packets(200, 960, 200)), 50U);
}

TEST(LeadIn, GoesOnBackToAPacketThatDecodingMayBeginAt) {
    std::vector<bool> isStart(100, false);
    isStart[16] = true;
    EXPECT_EQ(settled(AV_CODEC_ID_TRUEHD, 40).startFor(50, packets(100, 40, 200, isStart)), 16U);
}

}  // namespace
}  // namespace test
