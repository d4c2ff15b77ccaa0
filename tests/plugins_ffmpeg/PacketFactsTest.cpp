/// How packets get the numbers of their frames.
#include "plugins/ffmpeg/PacketFacts.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using playfile_ffmpeg::numberFrames;
using playfile_ffmpeg::PacketEntry;
using playfile_ffmpeg::PacketFacts;

using ePicture = PacketFacts::ePicture;

/// The frame numbers of packets, in decoding order.
std::vector<int32_t> numbersOf(std::vector<PacketFacts> const& packets, bool timesAreTrue = true,
                               AVCodecID codec = AV_CODEC_ID_H264) {
    std::vector<int32_t> numbers;
    for (PacketEntry const& entry : numberFrames(packets, codec, timesAreTrue)) {
        numbers.push_back(entry.frame);
    }
    return numbers;
}

PacketFacts shownAt(int64_t pts, int64_t dts = AV_NOPTS_VALUE) {
    PacketFacts packet;
    packet.pts = pts;
    packet.dts = dts;
    return packet;
}

PacketFacts inOrder(int32_t order, bool beginsSequence = false) {
    PacketFacts packet;
    packet.hasPictureOrder = true;
    packet.pictureOrder = order;
    packet.beginsSequence = beginsSequence;
    return packet;
}

PacketFacts ofType(ePicture picture) {
    PacketFacts packet;
    packet.picture = picture;
    return packet;
}

TEST(FrameNumbers, FollowTheTimesOfShowing) {
    EXPECT_EQ(numbersOf({shownAt(0), shownAt(30), shownAt(10), shownAt(20)}), (std::vector{0, 3, 1, 2}));
}

TEST(FrameNumbers, FollowTheOrderOfDecodingOfACodecThatDoesNotReorder) {
    EXPECT_EQ(numbersOf({shownAt(30), shownAt(10)}, true, AV_CODEC_ID_PRORES), (std::vector{0, 1}));
}

TEST(FrameNumbers, CountOnWhereTimesBeginAnew) {
    EXPECT_EQ(numbersOf({shownAt(1000, 100), shownAt(1010, 110), shownAt(0, 0), shownAt(10, 10)}),
              (std::vector{0, 1, 2, 3}));
}

TEST(FrameNumbers, PreferTimesToTheOrderThatPicturesState) {
    PacketFacts first = inOrder(0);
    first.pts = 20;
    PacketFacts second = inOrder(1);
    second.pts = 10;
    EXPECT_EQ(numbersOf({first, second}), (std::vector{1, 0}));
}

TEST(FrameNumbers, FollowTheOrderThatPicturesStateWhereTimesAreNotTrue) {
    PacketFacts first = inOrder(0);
    first.pts = 20;
    PacketFacts second = inOrder(1);
    second.pts = 10;
    EXPECT_EQ(numbersOf({first, second}, false), (std::vector{0, 1}));
}

TEST(FrameNumbers, FollowTheOrderThatPicturesStateWhereATimeIsMissing) {
    PacketFacts first = inOrder(2);
    first.pts = 10;
    EXPECT_EQ(numbersOf({first, inOrder(1)}), (std::vector{1, 0}));
}

TEST(FrameNumbers, CountOnWhereTheOrderOfPicturesBeginsAnew) {
    EXPECT_EQ(numbersOf({inOrder(0, true), inOrder(4), inOrder(2), inOrder(0, true), inOrder(2)}, false),
              (std::vector{0, 2, 1, 3, 4}));
}

TEST(FrameNumbers, PreferTheOrderThatPicturesStateToTheirTypes) {
    PacketFacts first = inOrder(0);
    first.picture = ePicture::reference;
    PacketFacts second = inOrder(1);
    second.picture = ePicture::bidirectional;
    EXPECT_EQ(numbersOf({first, second}, false), (std::vector{0, 1}));
}

TEST(FrameNumbers, LetPicturesThatOthersReferToWaitForTheNextOfTheirKind) {
    EXPECT_EQ(
        numbersOf({ofType(ePicture::reference), ofType(ePicture::reference), ofType(ePicture::bidirectional),
                   ofType(ePicture::bidirectional), ofType(ePicture::reference)},
                  false, AV_CODEC_ID_MPEG4),
        (std::vector{0, 3, 1, 2, 4}));
}

TEST(FrameNumbers, FollowTheOrderOfDecodingWithoutBidirectionalPictures) {
    EXPECT_EQ(numbersOf({ofType(ePicture::reference), ofType(ePicture::reference)}, false, AV_CODEC_ID_MPEG4),
              (std::vector{0, 1}));
}

TEST(FrameNumbers, LeaveOutWhatAnEditListCutsOff) {
    PacketFacts cutOff = shownAt(0);
    cutOff.isCutOff = true;
    EXPECT_EQ(numbersOf({cutOff, shownAt(10)}), (std::vector{-1, 0}));
}

TEST(FrameNumbers, LeaveOutHiddenPictures) {
    PacketFacts hidden = shownAt(0);
    hidden.isHidden = true;
    EXPECT_EQ(numbersOf({hidden, shownAt(0)}), (std::vector{-1, 0}));
}

TEST(FrameNumbers, LeaveOutSecondFields) {
    PacketFacts second = shownAt(1);
    second.isSecondField = true;
    EXPECT_EQ(numbersOf({shownAt(0), second, shownAt(2)}), (std::vector{0, -1, 1}));
}

TEST(FrameNumbers, KeepTheOrderOfDecodingOfEqualTimes) {
    EXPECT_EQ(numbersOf({shownAt(5), shownAt(5)}), (std::vector{0, 1}));
}

TEST(FrameTimes, AreThoseOfDecodingWhereNoOtherIsKnown) {
    EXPECT_EQ(numberFrames({shownAt(AV_NOPTS_VALUE, 7)}, AV_CODEC_ID_MJPEG, true)[0].pts, 7);
}

TEST(FrameTimes, AscendWithTheNumbersWhereOnlyTimesOfDecodingAreKept) {
    PacketFacts key = ofType(ePicture::reference);
    key.dts = 0;
    PacketFacts later = ofType(ePicture::reference);
    later.dts = 1;
    PacketFacts between = ofType(ePicture::bidirectional);
    between.dts = 2;
    auto const entries = numberFrames({key, later, between}, AV_CODEC_ID_MPEG4, false);
    EXPECT_EQ(entries[1].pts, 2);
    EXPECT_EQ(entries[2].pts, 1);
}

}  // namespace
}  // namespace test
