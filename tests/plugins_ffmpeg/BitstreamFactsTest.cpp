#include "plugins/ffmpeg/BitstreamFacts.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace playfile_ffmpeg;
using Packet = std::vector<uint8_t>;

constexpr NalFraming startCodes{};
constexpr NalFraming fourByteLengths{4, 0};

SliceFacts h264(Packet const& packet, NalFraming const& framing = startCodes) {
    return firstSlice(AV_CODEC_ID_H264, framing, packet);
}
SliceFacts hevc(Packet const& packet) {
    return firstSlice(AV_CODEC_ID_HEVC, startCodes, packet);
}

TEST(NalFraming, IsByStartCodesWithoutAConfigurationBox) {
    EXPECT_EQ(NalFraming::of(AV_CODEC_ID_H264, Packet{0, 0, 0, 1, 0x67, 0x42}).lengthByteCount, 0U);
}

TEST(NalFraming, TakesTheLengthsOfAnAvcConfiguration) {
    EXPECT_EQ(NalFraming::of(AV_CODEC_ID_H264, Packet{1, 0x42, 0, 30, 0xff}).lengthByteCount, 4U);
}

TEST(NalFraming, TakesLengthsAndLayersOfAnHevcConfiguration) {
    Packet configuration(23);
    configuration[0] = 1;
    configuration[21] = 2 << 3 | 1;
    NalFraming const framing = NalFraming::of(AV_CODEC_ID_HEVC, configuration);
    EXPECT_EQ(framing.lengthByteCount, 2U);
    EXPECT_EQ(framing.temporalLayers, 2);
}

TEST(NalFraming, RefusesAConfigurationThatIsCutShort) {
    EXPECT_EQ(NalFraming::of(AV_CODEC_ID_H264, Packet{1, 0x42, 0, 30}).lengthByteCount, 0U);
}

TEST(FirstSlice, IsThatOfAnIdrPicture) {
    SliceFacts const slice = h264({0, 0, 1, 0x67, 1, 0, 0, 1, 0x65, 0x80});
    EXPECT_TRUE(beginsCodedSequence(AV_CODEC_ID_H264, slice));
}

TEST(FirstSlice, IsNoIdrPictureForAnotherType) {
    EXPECT_FALSE(beginsCodedSequence(AV_CODEC_ID_H264, h264({0, 0, 1, 0x41, 0x80})));
}

TEST(FirstSlice, IsFoundBehindLengths) {
    EXPECT_EQ(h264({0, 0, 0, 2, 0x09, 0x10, 0, 0, 0, 2, 0x65, 0x80}, fourByteLengths).type, 5);
}

TEST(FirstSlice, IsNotThereInAPacketWithoutPictures) {
    EXPECT_EQ(h264({0, 0, 1, 0x09, 0x10}).type, -1);
}

TEST(FirstSlice, IsNotThereInAnEmptyPacket) {
    EXPECT_EQ(h264({}, fourByteLengths).type, -1);
}

TEST(FirstSlice, IsFoundWhereALengthIsLargerThanThePacket) {
    EXPECT_EQ(h264({0xff, 0xff, 0xff, 0xff, 0x65, 0x80}, fourByteLengths).type, 5);
}

TEST(FirstSlice, CountsThePicturesThatBegin) {
    EXPECT_EQ(h264({0, 0, 1, 0x41, 0x80, 0, 0, 1, 0x41, 0x40, 0, 0, 1, 0x41, 0x80}).pictureCount, 2);
}

TEST(FirstSlice, IsDisposableIfNothingRefersToIt) {
    EXPECT_TRUE(isDisposable(AV_CODEC_ID_H264, startCodes, h264({0, 0, 1, 0x01, 0x80})));
}

TEST(FirstSlice, IsNotDisposableIfOneSliceOfThePacketIsReferredTo) {
    EXPECT_FALSE(
        isDisposable(AV_CODEC_ID_H264, startCodes, h264({0, 0, 1, 0x01, 0x80, 0, 0, 1, 0x21, 0x80})));
}

TEST(FirstSlice, TellsTheIdrPicturesOfHevc) {
    EXPECT_TRUE(beginsCodedSequence(AV_CODEC_ID_HEVC, hevc({0, 0, 1, 19 << 1, 1})));
}

TEST(FirstSlice, IsDisposableInTheHighestLayerOfHevcOnly) {
    NalFraming const twoLayers{4, 2};
    Packet const lower{0, 0, 1, 0 << 1, 1};
    Packet const highest{0, 0, 1, 0 << 1, 2};
    EXPECT_FALSE(isDisposable(AV_CODEC_ID_HEVC, twoLayers, hevc(lower)));
    EXPECT_TRUE(isDisposable(AV_CODEC_ID_HEVC, twoLayers, hevc(highest)));
}

/// The first byte of a VP9 frame: marker, profile 0, and the three flags.
uint8_t vp9(bool showsExisting, bool isPredicted, bool isShown) {
    return static_cast<uint8_t>(0x80 | showsExisting << 3 | isPredicted << 2 | isShown << 1);
}

TEST(HiddenPicture, IsAVp9FrameThatIsNotShown) {
    EXPECT_TRUE(isNeverShown(AV_CODEC_ID_VP9, Packet{vp9(false, true, false), 0}));
}

TEST(HiddenPicture, IsNoVp9FrameThatIsShown) {
    EXPECT_FALSE(isNeverShown(AV_CODEC_ID_VP9, Packet{vp9(false, true, true), 0}));
}

TEST(HiddenPicture, IsNoVp9FrameThatShowsAnEarlierOne) {
    EXPECT_FALSE(isNeverShown(AV_CODEC_ID_VP9, Packet{vp9(true, false, false), 0}));
}

TEST(HiddenPicture, IsNoVp9SuperframeWithAFrameThatIsShown) {
    Packet const superframe{vp9(false, true, false), vp9(false, true, true), 0xc1, 1, 1, 0xc1};
    EXPECT_FALSE(isNeverShown(AV_CODEC_ID_VP9, superframe));
}

TEST(HiddenPicture, IsAVp9SuperframeOfHiddenFrames) {
    Packet const superframe{vp9(false, true, false), vp9(false, true, false), 0xc1, 1, 1, 0xc1};
    EXPECT_TRUE(isNeverShown(AV_CODEC_ID_VP9, superframe));
}

TEST(HiddenPicture, IsNoVp9SuperframeWhoseSizesLeadOutOfThePacket) {
    Packet const superframe{vp9(false, true, false), vp9(false, true, false), 0xc1, 0xff, 1, 0xc1};
    EXPECT_FALSE(isNeverShown(AV_CODEC_ID_VP9, superframe));
}

TEST(HiddenPicture, IsAVp8FrameWithoutTheMarkOfShowing) {
    EXPECT_TRUE(isNeverShown(AV_CODEC_ID_VP8, Packet{0x01}));
    EXPECT_FALSE(isNeverShown(AV_CODEC_ID_VP8, Packet{0x11}));
}

TEST(HiddenPicture, IsNoEmptyPacket) {
    EXPECT_FALSE(isNeverShown(AV_CODEC_ID_VP9, Packet{}));
}

TEST(HiddenPicture, IsNoneOfAnotherCodec) {
    EXPECT_FALSE(isNeverShown(AV_CODEC_ID_H264, Packet{vp9(false, true, false), 0}));
}

}  // namespace
}  // namespace test
