#include "plugins/ffmpeg/PictureStore.h"

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

class PictureStoreTest : public ::testing::Test {
protected:
    /// Puts frames of the size on the store, the first of which is wanted.
    void put(uint32_t first, size_t count, size_t byteCount) {
        for (size_t frame = first; frame < first + count; ++frame) {
            store_.put(static_cast<uint32_t>(frame), pictureOf(byteCount), first);
        }
    }
    [[nodiscard]] size_t countOf(size_t frames) const {
        size_t count = 0;
        for (uint32_t frame = 0; frame < frames; ++frame) {
            count += store_.find(frame) != nullptr;
        }
        return count;
    }

    static constexpr PictureStore::Limits limits_{1000, 4, 32};
    PictureStore store_{limits_};
};

TEST_F(PictureStoreTest, HasNothingAtFirst) {
    EXPECT_FALSE(store_.find(0));
}

TEST_F(PictureStoreTest, FindsAPictureByItsFrame) {
    PicturePtr const picture = pictureOf(1);
    store_.put(7, picture, 7);
    EXPECT_EQ(store_.find(7), picture);
}

TEST_F(PictureStoreTest, KeepsThePictureThatItHasOfAFrame) {
    PicturePtr const picture = pictureOf(1);
    store_.put(7, picture, 7);
    store_.put(7, pictureOf(1), 7);
    EXPECT_EQ(store_.find(7), picture);
}

TEST_F(PictureStoreTest, KeepsAtMostThirtyTwoSmallPictures) {
    put(0, 40, 1);
    EXPECT_EQ(countOf(40), limits_.most);
}

TEST_F(PictureStoreTest, KeepsAsManyPicturesAsItsBoundInBytesAllows) {
    put(0, 20, limits_.bytes / 8);
    EXPECT_EQ(countOf(20), 8U);
}

TEST_F(PictureStoreTest, KeepsFourPicturesHoweverLargeTheyAre) {
    put(0, 10, limits_.bytes);
    EXPECT_EQ(countOf(10), limits_.fewest);
}

TEST_F(PictureStoreTest, LetsTheOneGoThatLiesFarthestFromTheWantedFrame) {
    put(10, 4, limits_.bytes);
    store_.put(1, pictureOf(limits_.bytes), 11);
    EXPECT_FALSE(store_.find(1));
    EXPECT_TRUE(store_.find(13));
}

TEST_F(PictureStoreTest, DropsWhatLiesBeforeAFrame) {
    put(5, 3, 1);
    store_.keepOnly(6, 6);
    EXPECT_FALSE(store_.find(5));
    EXPECT_TRUE(store_.find(6));
}

TEST_F(PictureStoreTest, DropsWhatLiesBehindAFrame) {
    put(5, 3, 1);
    store_.keepOnly(0, 6);
    EXPECT_TRUE(store_.find(6));
    EXPECT_FALSE(store_.find(7));
}

TEST_F(PictureStoreTest, CountsEveryPictureForTheLargestOne) {
    put(0, 1, limits_.bytes / 8);
    put(1, 20, 1);
    EXPECT_EQ(store_.count(), 8U);
}

TEST_F(PictureStoreTest, TakesNewLimitsWithTheNextPicture) {
    put(0, 20, 1);
    store_.setLimits({0, 3, 3});
    put(20, 1, 1);
    EXPECT_EQ(store_.count(), 3U);
}

TEST_F(PictureStoreTest, TakesNewLimitsWhenItShrinks) {
    put(0, 10, 1);
    store_.setLimits({0, 2, 2});
    store_.shrink(5);
    EXPECT_EQ(store_.count(), 2U);
    EXPECT_TRUE(store_.find(5));
}

TEST_F(PictureStoreTest, DoesNotTakeAPictureThatLiesFarthestItself) {
    put(10, 4, limits_.bytes);
    store_.put(30, pictureOf(1), 10);
    EXPECT_FALSE(store_.find(30));
    EXPECT_EQ(store_.count(), 4U);
}

TEST_F(PictureStoreTest, IsEmptyOnceItIsCleared) {
    put(5, 3, 1);
    store_.clear();
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
