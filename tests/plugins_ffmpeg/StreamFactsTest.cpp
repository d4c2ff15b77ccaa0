#include "plugins/ffmpeg/StreamFacts.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

extern "C" {
#include <libavutil/display.h>
}

#include "tests/plugins_ffmpeg/FramesAt.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;

/// A file with one video stream and one more.
class StreamTags : public ::testing::Test {
protected:
    StreamTags() {
        video_->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
        other_->codecpar->codec_type = AVMEDIA_TYPE_DATA;
        format_->iformat = av_find_input_format("mov");
    }
    static void setTimecode(AVDictionary*& tags, char const* text) {
        av_dict_set(&tags, "timecode", text, 0);
    }
    [[nodiscard]] std::string timecode() const { return factsOf(*format_, *video_).startTimecode; }

    /// No file is open, so there is none to be closed.
    std::unique_ptr<AVFormatContext, decltype(&avformat_free_context)> const format_{avformat_alloc_context(),
                                                                                     &avformat_free_context};
    AVStream* const video_ = avformat_new_stream(format_.get(), nullptr);
    AVStream* const other_ = avformat_new_stream(format_.get(), nullptr);
};

TEST_F(StreamTags, GiveNoTimecodeWhereThereIsNone) {
    EXPECT_EQ(timecode(), "");
}

TEST_F(StreamTags, GiveTheTimecodeOfTheVideoStreamFirst) {
    setTimecode(video_->metadata, "01:00:00:00");
    setTimecode(format_->metadata, "02:00:00:00");
    setTimecode(other_->metadata, "03:00:00:00");
    EXPECT_EQ(timecode(), "01:00:00:00");
}

TEST_F(StreamTags, GiveTheTimecodeOfTheFileBeforeThatOfAnotherStream) {
    setTimecode(format_->metadata, "02:00:00:00");
    setTimecode(other_->metadata, "03:00:00:00");
    EXPECT_EQ(timecode(), "02:00:00:00");
}

TEST_F(StreamTags, GiveTheTimecodeOfAnotherStreamLast) {
    setTimecode(other_->metadata, "03:00:00:00");
    EXPECT_EQ(timecode(), "03:00:00:00");
}

TEST_F(StreamTags, GiveTheReelInTheSameOrder) {
    av_dict_set(&format_->metadata, "reel_name", "file", 0);
    av_dict_set(&other_->metadata, "reel_name", "other", 0);
    EXPECT_EQ(factsOf(*format_, *video_).reel, "file");
}

StreamFacts ratesOf(std::vector<int64_t> const& times, AVRational timeBase, AVRational stated = {0, 1},
                    bool timesAreExact = true) {
    StreamFacts facts;
    facts.timeBase = timeBase;
    measureRates(facts, framesAt(times), stated, timesAreExact);
    return facts;
}

std::string textOf(AVRational rate) {
    return std::to_string(rate.num) + "/" + std::to_string(rate.den);
}

constexpr AVRational milliseconds{1, 1000};

TEST(FrameRate, IsThatOfEqualGaps) {
    EXPECT_EQ(textOf(ratesOf({0, 1001, 2002, 3003}, {1, 30000}).frameRate), "30000/1001");
}

TEST(FrameRate, IsAUsualOneThatTheRoundingOfTheTimesHides) {
    std::vector<int64_t> times;
    for (int64_t frame = 0; frame < 100; ++frame) {
        times.push_back(frame * 1000 / 30);
    }
    EXPECT_EQ(textOf(ratesOf(times, milliseconds).frameRate), "30/1");
}

TEST(FrameRate, IsTheStatedOneIfAllTimesFitIt) {
    EXPECT_EQ(textOf(ratesOf({0, 33, 67, 100, 133}, milliseconds, {30000, 1001}).frameRate), "30000/1001");
}

TEST(FrameRate, IsThatOfTheMiddleGapWhereTimesFitNoOne) {
    StreamFacts const facts = ratesOf({0, 10, 100, 150}, milliseconds);
    EXPECT_FALSE(facts.hasConstantRate);
    EXPECT_EQ(textOf(facts.frameRate), "20/1");
}

TEST(FrameRate, IsAUsualOneNearThatOfTheMiddleGap) {
    EXPECT_EQ(textOf(ratesOf({0, 5, 38, 72, 400}, milliseconds).frameRate), "30/1");
}

TEST(FrameRate, IsThatOfScreensWhereFramesLastAsSlidesDo) {
    EXPECT_EQ(textOf(ratesOf({0, 1000, 3000, 4000, 9000}, milliseconds).frameRate), "30/1");
}

TEST(FrameRate, IsThatOfScreensWhereTheMiddleGapIsTooShortForARate) {
    EXPECT_EQ(textOf(ratesOf({0, 1, 2, 3, 90}, {1, 90000}).frameRate), "30/1");
}

TEST(FrameRate, HasTheBoundsOfItsGaps) {
    StreamFacts const facts = ratesOf({0, 10, 100, 150}, milliseconds);
    EXPECT_EQ(textOf(facts.lowestRate), "100/9");
    EXPECT_EQ(textOf(facts.highestRate), "100/1");
}

TEST(FrameRate, IsTheStatedOneOfAContainerThatKeepsNoExactTimes) {
    EXPECT_EQ(textOf(ratesOf({0, 10, 100, 150}, milliseconds, {25, 1}, false).frameRate), "25/1");
}

TEST(FrameRate, IsTheStatedOneOfASingleFrame) {
    EXPECT_EQ(textOf(ratesOf({0}, milliseconds, {50, 1}).frameRate), "50/1");
}

TEST(FrameRate, IsTwentyFiveWhereNothingTellsIt) {
    EXPECT_EQ(textOf(ratesOf({0}, milliseconds).frameRate), "25/1");
}

TEST(FrameRate, DoesNotOverflowForTimesWithoutSense) {
    StreamFacts const facts = ratesOf({INT64_MIN + 1, 0, INT64_MAX}, {1001, 30000});
    EXPECT_GE(facts.frameRate.num, 0);
    EXPECT_GT(facts.frameRate.den, 0);
}

/// Turned by so many degrees to the right, and mirrored before that if asked for.
int orientationFor(double degrees, bool isMirrored = false) {
    int32_t matrix[9];
    av_display_rotation_set(matrix, degrees);
    av_display_matrix_flip(matrix, isMirrored, 0);
    return orientationOf(matrix);
}

TEST(Orientation, IsUprightWithoutATurn) {
    EXPECT_EQ(orientationFor(0), 1);
}

TEST(Orientation, IsThatOfEachQuarterTurn) {
    EXPECT_EQ(orientationFor(90), 6);
    EXPECT_EQ(orientationFor(180), 3);
    EXPECT_EQ(orientationFor(270), 8);
}

TEST(Orientation, IsThatOfAMirror) {
    EXPECT_EQ(orientationFor(0, true), 2);
}

TEST(Orientation, IsUprightForATurnThatIsNoQuarter) {
    EXPECT_EQ(orientationFor(45), 1);
}

}  // namespace
}  // namespace test
