#include "plugins/ffmpeg/PictureShelf.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace playfile_ffmpeg;

/// A picture whose planes take so many bytes.
PicturePtr pictureOf(size_t byteCount) {
    AvPtr<AVFrame> picture = makeFrame();
    picture->buf[0] = av_buffer_alloc(byteCount);
    return PicturePtr(picture.release(), AvDeleter());
}

class PictureShelfTest : public ::testing::Test {
protected:
    /// Puts frames of the size on the shelf, the first of which is wanted.
    void put(uint32_t first, size_t count, size_t byteCount) {
        for (size_t frame = first; frame < first + count; ++frame) {
            shelf_.put(static_cast<uint32_t>(frame), pictureOf(byteCount), first);
        }
    }
    [[nodiscard]] size_t countOf(size_t frames) const {
        size_t count = 0;
        for (uint32_t frame = 0; frame < frames; ++frame) {
            count += shelf_.find(frame) != nullptr;
        }
        return count;
    }

    PictureShelf shelf_;
};

TEST_F(PictureShelfTest, HasNothingAtFirst) {
    EXPECT_FALSE(shelf_.find(0));
}

TEST_F(PictureShelfTest, FindsAPictureByItsFrame) {
    PicturePtr const picture = pictureOf(1);
    shelf_.put(7, picture, 7);
    EXPECT_EQ(shelf_.find(7), picture);
}

TEST_F(PictureShelfTest, KeepsThePictureThatItHasOfAFrame) {
    PicturePtr const picture = pictureOf(1);
    shelf_.put(7, picture, 7);
    shelf_.put(7, pictureOf(1), 7);
    EXPECT_EQ(shelf_.find(7), picture);
}

TEST_F(PictureShelfTest, KeepsAtMostThirtyTwoSmallPictures) {
    put(0, 40, 1);
    EXPECT_EQ(countOf(40), PictureShelf::mostPictures);
}

TEST_F(PictureShelfTest, KeepsAsManyPicturesAsItsBoundInBytesAllows) {
    put(0, 20, PictureShelf::mostBytes / 8);
    EXPECT_EQ(countOf(20), 8U);
}

TEST_F(PictureShelfTest, KeepsFourPicturesHoweverLargeTheyAre) {
    put(0, 10, PictureShelf::mostBytes);
    EXPECT_EQ(countOf(10), PictureShelf::fewestPictures);
}

TEST_F(PictureShelfTest, LetsTheOneGoThatLiesFarthestFromTheWantedFrame) {
    put(10, 4, PictureShelf::mostBytes);
    shelf_.put(1, pictureOf(PictureShelf::mostBytes), 11);
    EXPECT_FALSE(shelf_.find(1));
    EXPECT_TRUE(shelf_.find(13));
}

TEST_F(PictureShelfTest, DropsWhatLiesBeforeAFrame) {
    put(5, 3, 1);
    shelf_.dropBefore(6);
    EXPECT_FALSE(shelf_.find(5));
    EXPECT_TRUE(shelf_.find(6));
}

TEST_F(PictureShelfTest, IsEmptyOnceItIsCleared) {
    put(5, 3, 1);
    shelf_.clear();
    EXPECT_EQ(countOf(10), 0U);
}

TEST(PictureBytes, AreThoseOfAllPlanes) {
    AvPtr<AVFrame> const picture = makeFrame();
    picture->buf[0] = av_buffer_alloc(100);
    picture->buf[1] = av_buffer_alloc(20);
    EXPECT_EQ(byteCountOf(*picture), 120U);
}

}  // namespace
}  // namespace test
