/// Long-GOP files go the streaming way.
#include <gtest/gtest.h>

#include "plugins/ffmpeg/FFmpegReader.h"
#include "plugins/ffmpeg/PictureSurface.h"
#include "tests/plugins_ffmpeg/AskReader.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "tests/support/TemporaryFolder.h"
#include "video/VideoReadRequest.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;
using Ox::Image::Surface;

/// A file whose reads come on this thread, as they would on its queue's.
class FFmpegStreaming : public ::testing::Test {
protected:
    void SetUp() override { openFile(medium("h264-one-long-gop.mp4")); }

    void openFile(std::string const& path) {
        std::string error;
        reader_ = FFmpegReader::open(fromUTF8(path.c_str()), DecodeFormat(), OpenType::video, error);
        ASSERT_TRUE(reader_) << error;
    }
    /// The surface that a read hands out, which needn't be finished; without a body if it failed.
    Surface ask(std::uint32_t frame, DecodeFormat const& format = DecodeFormat()) {
        return askReader(reader_, frame, format);
    }
    Surface read(std::uint32_t frame, DecodeFormat const& format = DecodeFormat()) {
        Surface surface = ask(frame, format);
        static_cast<void>(surface.wait(iThreadEvent::noTimeLimit));
        return surface;
    }
    /// The number on a frame; -1 if it can't be had.
    int number(std::uint32_t frame) { return numberOn(pictureOf(read(frame)).get()); }
    FrameRun rangeFor(std::uint32_t frame) {
        FrameRun run{frame, frame};
        reader_->getDecodeRange(frame, run.first, run.end);
        return run;
    }
    static DecodeFormat sized(std::uint32_t width, std::uint32_t height) {
        DecodeFormat format;
        format.setWidth(width);
        format.setHeight(height);
        return format;
    }
    /// Makes a batch, has it decoded, and counts its surfaces that aren't finished.
    std::uint32_t unfinishedAfterDecoding(std::uint32_t first, std::uint32_t last) {
        batch_ = Ox::makePtr<FrameBufferRep>(reader_->metadata, first, last, FrameBufferRep::withEvents);
        reader_->decodeFrames(batch_, first);
        std::uint32_t unfinished = 0;
        for (std::uint32_t index = 0; index <= last - first; ++index) {
            unfinished += surfaceOfBatch(index).wait(0) != Surface::waitFinished;
        }
        return unfinished;
    }
    Surface surfaceOfBatch(std::uint32_t index) {
        Surface surface;
        batch_->getSurface(static_cast<std::uint16_t>(index), surface);
        return surface;
    }

    TemporaryFolder folder_;
    Ox::Ptr<FFmpegReader> reader_;
    Ox::Ptr<FrameBufferRep> batch_;
};

TEST_F(FFmpegStreaming, IsSaidOfALongGroupWhenItIsOpened) {
    EXPECT_TRUE(reader_->metadata->readStreaming());
}

TEST_F(FFmpegStreaming, IsNotForIntraCodedFiles) {
    for (char const* const name :
         {"prores-422-pcm.mov", "mjpeg.mov", "h264-intra.mov", "rawvideo-uyvy.mov"}) {
        openFile(medium(name));
        EXPECT_FALSE(reader_->metadata->readStreaming()) << name;
    }
}

TEST_F(FFmpegStreaming, IsNotForASingleFrame) {
    openFile(medium("h264-one-frame.mp4"));
    EXPECT_FALSE(reader_->metadata->readStreaming());
}

TEST_F(FFmpegStreaming, ShowsEveryFrameInAnyOrder) {
    for (std::uint32_t const frame : {0U, 1U, 2U, 3U, 4U, 50U, 49U, 48U, 90U, 10U, 12U, 8U, 99U, 98U, 0U}) {
        EXPECT_EQ(number(frame), static_cast<int>(frame));
    }
}

TEST_F(FFmpegStreaming, ShowsEveryFrameWithMemoryForAFewPictures) {
    configb least;
    least.set("streamingStoreMiB", "0");
    reader_->setDecodeOptionValues(least);
    EXPECT_EQ(reader_->decoder().room().store, 2U);
    for (std::uint32_t const frame : {30U, 29U, 28U, 27U, 60U, 61U, 62U, 63U, 5U, 90U, 7U}) {
        EXPECT_EQ(number(frame), static_cast<int>(frame));
    }
}

TEST_F(FFmpegStreaming, HandsOutTheDecodersOwnMemory) {
    Surface const surface = read(10);
    EXPECT_EQ(surface.getPlane(0).data, pictureOf(surface)->data[0]);
}

TEST_F(FFmpegStreaming, GivesAnotherSizeToWhoWantsIt) {
    EXPECT_EQ(read(10, sized(160, 90)).getWidth(), 160U);
    EXPECT_TRUE(read(10, sized(160, 90)).valid());
}

TEST_F(FFmpegStreaming, GivesFullSizeAfterASmallRequestAndTheReverse) {
    EXPECT_EQ(read(10, sized(160, 90)).getHeight(), 90U);
    EXPECT_EQ(read(10).getHeight(), 180U);
    EXPECT_EQ(read(11, sized(320, 180)).getHeight(), 180U);
    EXPECT_EQ(read(11, sized(160, 90)).getHeight(), 90U);
}

TEST_F(FFmpegStreaming, GivesAnotherDataFormatToWhoWantsIt) {
    DecodeFormat format;
    format.setDataFormat(Ox::Image::rgb24);
    EXPECT_EQ(read(10, format).getDataFormat(), Ox::Image::rgb24);
    EXPECT_NE(read(10).getDataFormat(), Ox::Image::rgb24);
}

TEST_F(FFmpegStreaming, FailsAFrameBehindTheEnd) {
    EXPECT_EQ(ask(100).getWidth(), 0U);
}

TEST_F(FFmpegStreaming, TellsTheTimeOfEachFrame) {
    EXPECT_NEAR(read(50).getSampleData().timeSeconds, 2.0, 1e-6);
}

TEST_F(FFmpegStreaming, TakesOneFrameAfterAJump) {
    EXPECT_EQ(number(0), 0);
    EXPECT_EQ(number(80), 80);
    FrameRun const run = rangeFor(80);
    EXPECT_EQ(run.first, 80U);
    EXPECT_EQ(run.end, 81U);
}

TEST_F(FFmpegStreaming, TakesEarlierFramesWhoGoesBackward) {
    EXPECT_EQ(number(80), 80);
    EXPECT_EQ(number(79), 79);
    FrameRun const run = rangeFor(79);
    EXPECT_LT(run.first, 79U);
    EXPECT_EQ(run.end, 80U);
}

/// The clip has a key every 24 frames.
TEST_F(FFmpegStreaming, GoesNoFurtherBackThanTheKey) {
    openFile(medium("h264-bframes-aac.mp4"));
    for (std::uint32_t const frame : {72U, 71U, 50U, 49U}) {
        EXPECT_EQ(number(frame), static_cast<int>(frame));
    }
    EXPECT_EQ(rangeFor(49).first, 48U);
}

TEST_F(FFmpegStreaming, DecodesNoFurtherThanItMustForAFrameAfterAJump) {
    openFile(medium("h264-bframes-aac.mp4"));
    for (std::uint32_t const frame : {90U, 1U, 70U, 20U}) {
        EXPECT_EQ(number(frame), static_cast<int>(frame));
    }
    std::uint64_t const before = reader_->decoder().counters().framesDecoded;
    EXPECT_EQ(number(50), 50);
    EXPECT_LE(reader_->decoder().counters().framesDecoded - before, 3U);
}

TEST_F(FFmpegStreaming, LeavesEverySurfaceFinished) {
    EXPECT_EQ(unfinishedAfterDecoding(10, 17), 0U);
    EXPECT_TRUE(surfaceOfBatch(7).valid());
}

TEST_F(FFmpegStreaming, LeavesEverySurfaceFinishedWithoutMemory) {
    av_max_alloc(100);
    std::uint32_t const unfinished = unfinishedAfterDecoding(10, 17);
    av_max_alloc(INT32_MAX);
    EXPECT_EQ(unfinished, 0U);
    EXPECT_FALSE(surfaceOfBatch(0).valid());
}

TEST_F(FFmpegStreaming, LeavesEverySurfaceFinishedBehindTheEnd) {
    EXPECT_EQ(unfinishedAfterDecoding(96, 105), 0U);
    EXPECT_TRUE(surfaceOfBatch(3).valid());
    EXPECT_FALSE(surfaceOfBatch(4).valid());
}

TEST_F(FFmpegStreaming, LeavesASurfaceAloneThatIsFinished) {
    EXPECT_EQ(unfinishedAfterDecoding(10, 17), 0U);
    std::uint8_t const* const before = surfaceOfBatch(2).getPlane(0).data;
    reader_->decodeFrames(batch_, 10);
    EXPECT_EQ(surfaceOfBatch(2).getPlane(0).data, before);
}

TEST_F(FFmpegStreaming, FinishesAFrameThatCannotBeDecodedWithoutPixels) {
    std::filesystem::copy_file(medium("demo.mp4"), folder_.file("cut.mp4"));
    openFile(folder_.file("cut.mp4"));
    auto const end = reader_->decoder().file().index().packet(100).position;
    std::filesystem::resize_file(folder_.file("cut.mp4"), static_cast<std::uintmax_t>(end));
    openFile(folder_.file("cut.mp4"));
    Surface const surface = read(240);
    EXPECT_EQ(surface.getWidth(), reader_->metadata->image.getWidth());
    EXPECT_FALSE(surface.valid());
}

TEST_F(FFmpegStreaming, TakesItsMemoryFromAnOption) {
    configb values;
    values.set("streamingStoreMiB", "7");
    reader_->setDecodeOptionValues(values);
    LightweightString<char> value;
    EXPECT_EQ(reader_->getDecodeOptionValues().in("streamingStoreMiB", value), 0);
    EXPECT_EQ(value, "7");
}

TEST_F(FFmpegStreaming, TakesTheDefaultForAnOptionThatIsNoNumber) {
    configb values;
    values.set("streamingStoreMiB", "lots");
    reader_->setDecodeOptionValues(values);
    LightweightString<char> value;
    static_cast<void>(reader_->getDecodeOptionValues().in("streamingStoreMiB", value));
    EXPECT_EQ(value, "384");
}

}  // namespace
}  // namespace test
