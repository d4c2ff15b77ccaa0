#include "plugins/ffmpeg/PictureMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

extern "C" {
#include <libavutil/imgutils.h>
}

namespace test {
namespace {

using namespace playfile_ffmpeg;

/// A decoder that decodes into memory that it is given.
AvPtr<AVCodecContext> decoderOf(AVCodecID codec) {
    return AvPtr<AVCodecContext>(avcodec_alloc_context3(avcodec_find_decoder(codec)));
}

class PictureMemoryTest : public ::testing::Test {
protected:
    AvPtr<AVFrame> pictureOf(AVPixelFormat format, int width, int height) {
        AvPtr<AVFrame> picture = makeFrame();
        picture->format = format;
        picture->width = width;
        picture->height = height;
        EXPECT_EQ(memory_->giveTo(*decoder_, *picture, 0), 0);
        return picture;
    }

    AvPtr<AVCodecContext> decoder_ = decoderOf(AV_CODEC_ID_H264);
    std::unique_ptr<PictureMemory> memory_ = std::make_unique<PictureMemory>();
};

/// A format, and a size with odd numbers in it.
struct Shape {
    AVPixelFormat format;
    int width;
    int height;
};

class PictureMemoryShape : public PictureMemoryTest, public ::testing::WithParamInterface<Shape> {};

TEST_P(PictureMemoryShape, HasRoomForEveryPlane) {
    Shape const& shape = GetParam();
    AvPtr<AVFrame> const picture = pictureOf(shape.format, shape.width, shape.height);
    ptrdiff_t lines[4];
    size_t sizes[4];
    for (int plane = 0; plane < 4; ++plane) {
        lines[plane] = picture->linesize[plane];
        EXPECT_EQ(lines[plane] % 64, 0);
    }
    ASSERT_GE(av_image_fill_plane_sizes(sizes, shape.format, shape.height, lines), 0);
    uint8_t const* end = picture->buf[0]->data;
    for (int plane = 0; plane < 4 && sizes[plane] > 0; ++plane) {
        ASSERT_GE(picture->data[plane], end);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(picture->data[plane]) % 64, 0U);
        std::memset(picture->data[plane], plane + 1, sizes[plane]);
        end = picture->data[plane] + sizes[plane];
    }
    EXPECT_LE(end, picture->buf[0]->data + picture->buf[0]->size);
}

TEST_P(PictureMemoryShape, HoldsWholeLines) {
    Shape const& shape = GetParam();
    AvPtr<AVFrame> const picture = pictureOf(shape.format, shape.width, shape.height);
    int lines[4];
    ASSERT_GE(av_image_fill_linesizes(lines, shape.format, shape.width), 0);
    for (int plane = 0; plane < 4; ++plane) {
        EXPECT_GE(picture->linesize[plane], lines[plane]);
    }
}

/// Decoders work on whole vectors, beyond a line's end if need be.
TEST_P(PictureMemoryShape, LeavesRoomBehindEveryPlane) {
    constexpr ptrdiff_t room = 128;
    Shape const& shape = GetParam();
    AvPtr<AVFrame> const picture = pictureOf(shape.format, shape.width, shape.height);
    ptrdiff_t lines[4];
    size_t sizes[4];
    std::copy_n(picture->linesize, 4, lines);
    ASSERT_GE(av_image_fill_plane_sizes(sizes, shape.format, shape.height, lines), 0);
    uint8_t const* next = picture->buf[0]->data + picture->buf[0]->size;
    for (int plane = 3; plane >= 0; --plane) {
        if (sizes[plane] > 0) {
            EXPECT_GE(next - (picture->data[plane] + sizes[plane]), room);
            next = picture->data[plane];
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, PictureMemoryShape,
                         ::testing::Values(Shape{AV_PIX_FMT_YUV420P, 1920, 1080},
                                           Shape{AV_PIX_FMT_YUV420P, 33, 17},
                                           Shape{AV_PIX_FMT_YUV411P, 721, 577},
                                           Shape{AV_PIX_FMT_YUV422P10LE, 1919, 1079},
                                           Shape{AV_PIX_FMT_RGB24, 641, 3}, Shape{AV_PIX_FMT_PAL8, 100, 100},
                                           Shape{AV_PIX_FMT_NV12, 1280, 720}));

TEST_F(PictureMemoryTest, ComesAsZeros) {
    AvPtr<AVFrame> const large = pictureOf(AV_PIX_FMT_YUV420P, 1920, 1080);
    AvPtr<AVFrame> const small = pictureOf(AV_PIX_FMT_YUV420P, 16, 16);
    for (AVFrame const* picture : {large.get(), small.get()}) {
        uint8_t const* const piece = picture->buf[0]->data;
        EXPECT_EQ(std::count(piece, piece + picture->buf[0]->size, 0),
                  static_cast<std::ptrdiff_t>(picture->buf[0]->size));
    }
}

TEST_F(PictureMemoryTest, IsUsedAgainWhenItsPictureIsGone) {
    AvPtr<AVFrame> picture = pictureOf(AV_PIX_FMT_YUV420P, 1920, 1080);
    uint8_t const* const piece = picture->buf[0]->data;
    picture.reset();
    EXPECT_EQ(pictureOf(AV_PIX_FMT_YUV420P, 1920, 1080)->buf[0]->data, piece);
}

TEST_F(PictureMemoryTest, IsAnotherOnesWhileItsPictureIsThere) {
    AvPtr<AVFrame> const first = pictureOf(AV_PIX_FMT_YUV420P, 1920, 1080);
    EXPECT_NE(pictureOf(AV_PIX_FMT_YUV420P, 1920, 1080)->buf[0]->data, first->buf[0]->data);
}

TEST_F(PictureMemoryTest, ChangesItsSizeWithThePictures) {
    AvPtr<AVFrame> const small = pictureOf(AV_PIX_FMT_YUV420P, 320, 180);
    AvPtr<AVFrame> const large = pictureOf(AV_PIX_FMT_YUV420P, 1920, 1080);
    EXPECT_GE(large->buf[0]->size, size_t{1920} * 1080 * 3 / 2);
    std::memset(small->data[0], 1, static_cast<size_t>(small->linesize[0]) * 180);
    EXPECT_EQ(large->data[0][0], 0);
}

TEST_F(PictureMemoryTest, IsOutlivedByAPicture) {
    AvPtr<AVFrame> const picture = pictureOf(AV_PIX_FMT_YUV420P, 1920, 1080);
    memory_.reset();
    std::memset(picture->data[0], 7, static_cast<size_t>(picture->linesize[0]) * 1080);
    EXPECT_EQ(picture->data[0][0], 7);
}

/// A decoder that brings its pictures in memory of its own says so.
TEST_F(PictureMemoryTest, IsNotForADecoderThatTakesNone) {
    AVCodec const* codec = nullptr;
    void* place = nullptr;
    bool isFound = false;
    while (!isFound && (codec = av_codec_iterate(&place)) != nullptr) {
        isFound = av_codec_is_decoder(codec) != 0 && codec->type == AVMEDIA_TYPE_VIDEO &&
                  (codec->capabilities & (AV_CODEC_CAP_DR1 | AV_CODEC_CAP_HARDWARE)) == 0;
    }
    ASSERT_TRUE(isFound);
    decoder_.reset(avcodec_alloc_context3(codec));
    EXPECT_FALSE(PictureMemory::isFor(*decoder_));
    EXPECT_TRUE(PictureMemory::isFor(*decoderOf(AV_CODEC_ID_H264)));
}

}  // namespace
}  // namespace test
