/// The pictures that the reader hands out are the decoder's own memory.
#include "plugins/ffmpeg/FFmpegReader.h"

#include <gtest/gtest.h>

#include "plugins/ffmpeg/PictureSurface.h"
#include "tests/plugins_ffmpeg/AskReader.h"
#include "tests/plugins_ffmpeg/Media.h"
#include "video/VideoReadRequest.h"

namespace test {
namespace {

using namespace playfile_ffmpeg;
using Ox::Image::Surface;

/// A picture with rows that are longer than its width.
PicturePtr grayPicture() {
    AvPtr<AVFrame> picture = makeFrame();
    picture->format = AV_PIX_FMT_YUV420P;
    picture->width = 10;
    picture->height = 6;
    EXPECT_GE(av_frame_get_buffer(picture.get(), 64), 0);
    return PicturePtr(picture.release(), AvDeleter());
}

TEST(PictureSurface, ShowsThePlanesOfThePictureItself) {
    PicturePtr const picture = grayPicture();
    Surface const surface = surfaceOf(picture, StreamFacts(), 0.0);
    for (unsigned plane = 0; plane < 3; ++plane) {
        EXPECT_EQ(surface.getPlane(plane).data, picture->data[plane]);
        EXPECT_EQ(surface.getPlane(plane).stride, picture->linesize[plane]);
    }
}

TEST(PictureSurface, HoldsThePictureAsLongAsItIsThere) {
    PicturePtr const picture = grayPicture();
    auto surface = std::make_unique<Surface>(surfaceOf(picture, StreamFacts(), 0.0));
    EXPECT_EQ(picture.use_count(), 2);
    surface = nullptr;
    EXPECT_EQ(picture.use_count(), 1);
}

TEST(PictureSurface, TakesFromTheStreamWhatThePictureDoesNotSay) {
    StreamFacts facts;
    facts.colour.matrix = AVCOL_SPC_BT709;
    EXPECT_EQ(surfaceOf(grayPicture(), facts, 0.0).getVideoData().colour.matrix, AVCOL_SPC_BT709);
}

StreamFacts factsWith(AVColorRange range, AVPixelFormat pixelFormat) {
    StreamFacts facts;
    facts.colour.range = range;
    facts.pixelFormat = pixelFormat;
    return facts;
}

TEST(ColourRange, IsTheOneThatIsStated) {
    Ox::Image::VideoData const data = videoDataOf(factsWith(AVCOL_RANGE_MPEG, AV_PIX_FMT_RGB24));
    EXPECT_TRUE(data.colour.isRangeStated);
    EXPECT_FALSE(data.colour.isFullRange);
}

TEST(ColourRange, IsTakenForLimitedWhereNoneIsStated) {
    Ox::Image::VideoData const data = videoDataOf(factsWith(AVCOL_RANGE_UNSPECIFIED, AV_PIX_FMT_YUV420P));
    EXPECT_FALSE(data.colour.isRangeStated);
    EXPECT_FALSE(data.colour.isFullRange);
}

TEST(ColourRange, IsTakenForFullInRedGreenAndBlue) {
    Ox::Image::VideoData const data = videoDataOf(factsWith(AVCOL_RANGE_UNSPECIFIED, AV_PIX_FMT_RGB24));
    EXPECT_FALSE(data.colour.isRangeStated);
    EXPECT_TRUE(data.colour.isFullRange);
}

TEST(ColourRange, IsThatOfThePictureBeforeThatOfTheStream) {
    AvPtr<AVFrame> picture = makeFrame();
    picture->format = AV_PIX_FMT_YUV420P;
    picture->color_range = AVCOL_RANGE_JPEG;
    Surface const surface = surfaceOf(PicturePtr(picture.release(), AvDeleter()),
                                      factsWith(AVCOL_RANGE_MPEG, AV_PIX_FMT_YUV420P), 0.0);
    EXPECT_TRUE(surface.getVideoData().colour.isFullRange);
}

class FFmpegReaderTest : public ::testing::Test {
protected:
    FFmpegReaderTest() {
        std::string error;
        reader_ = FFmpegReader::open(fromUTF8(medium("h264-bframes-aac.mp4").c_str()), DecodeFormat(),
                                     OpenType::video, error);
        EXPECT_TRUE(reader_) << error;
    }
    /// Not valid if the frame couldn't be read.
    [[nodiscard]] Surface read(std::uint32_t frame, DecodeFormat const& format = DecodeFormat()) const {
        Surface const surface = askReader(reader_, frame, format);
        static_cast<void>(surface.wait(iThreadEvent::noTimeLimit));
        return surface;
    }

    Ox::Ptr<FFmpegReader> reader_;
};

TEST_F(FFmpegReaderTest, HandsOutOnePictureForOneFrame) {
    Surface const first = read(10);
    Surface const second = read(10);
    ASSERT_TRUE(first.valid());
    EXPECT_EQ(first.getPlane(0).data, second.getPlane(0).data);
}

TEST_F(FFmpegReaderTest, CopiesNothingForTheSizeThatThePictureHas) {
    DecodeFormat ownSize;
    ownSize.setWidth(320);
    ownSize.setHeight(180);
    EXPECT_EQ(read(10, ownSize).getPlane(0).data, read(10).getPlane(0).data);
}

TEST_F(FFmpegReaderTest, MakesAnotherPictureForAnotherSize) {
    DecodeFormat half;
    half.setWidth(160);
    Surface const own = read(10);
    Surface const other = read(10, half);
    EXPECT_NE(other.getPlane(0).data, own.getPlane(0).data);
    EXPECT_EQ(other.getHeight(), 90U);
}

TEST_F(FFmpegReaderTest, FailsAFrameThatIsNotThere) {
    EXPECT_FALSE(read(100).valid());
}

}  // namespace
}  // namespace test
