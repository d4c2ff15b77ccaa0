#include "tools/playfile/Picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using cli::Picture;
using testing::ElementsAre;

/// A picture whose pixel i, counted along the rows, has the red value i + 1.
Picture numbered(std::uint32_t width, std::uint32_t height) {
    Picture picture(width, height);
    for (std::uint32_t i = 0; i < width * height; ++i) {
        *picture.at(i % width, i / width) = static_cast<std::uint8_t>(i + 1);
    }
    return picture;
}

/// The red values, row by row.
std::vector<int> reds(Picture const& picture) {
    std::vector<int> values;
    for (std::uint32_t i = 0; i < picture.width() * picture.height(); ++i) {
        values.push_back(*picture.at(i % picture.width(), i / picture.width()));
    }
    return values;
}

TEST(Picture, StaysAsItIsWhenUpright) {
    EXPECT_THAT(reds(numbered(3, 2).upright(1)), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(Picture, IsMirrored) {
    EXPECT_THAT(reds(numbered(3, 2).upright(2)), ElementsAre(3, 2, 1, 6, 5, 4));
    EXPECT_THAT(reds(numbered(3, 2).upright(4)), ElementsAre(4, 5, 6, 1, 2, 3));
}

TEST(Picture, IsTurnedByHalf) {
    EXPECT_THAT(reds(numbered(3, 2).upright(3)), ElementsAre(6, 5, 4, 3, 2, 1));
}

TEST(Picture, IsTurnedByAQuarter) {
    Picture const clockwise = numbered(3, 2).upright(6);
    EXPECT_EQ(clockwise.width(), 2U);
    EXPECT_EQ(clockwise.height(), 3U);
    EXPECT_THAT(reds(clockwise), ElementsAre(4, 1, 5, 2, 6, 3));
    EXPECT_THAT(reds(numbered(3, 2).upright(8)), ElementsAre(3, 6, 2, 5, 1, 4));
}

TEST(Picture, IsTurnedAndMirrored) {
    EXPECT_THAT(reds(numbered(3, 2).upright(5)), ElementsAre(1, 4, 2, 5, 3, 6));
    EXPECT_THAT(reds(numbered(3, 2).upright(7)), ElementsAre(6, 3, 5, 2, 4, 1));
}

TEST(Picture, TakesAnUnknownOrientationAsUpright) {
    EXPECT_THAT(reds(numbered(3, 1).upright(0)), ElementsAre(1, 2, 3));
    EXPECT_THAT(reds(numbered(3, 1).upright(200)), ElementsAre(1, 2, 3));
}

TEST(Picture, IsMadeSmallerByMeans) {
    EXPECT_THAT(reds(numbered(4, 2).scaled(2, 1)), ElementsAre(4, 6));
    EXPECT_THAT(reds(numbered(4, 2).scaled(4, 2)), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
}

TEST(Picture, IsMadeLargerByRepetition) {
    EXPECT_THAT(reds(numbered(2, 1).scaled(4, 2)), ElementsAre(1, 1, 2, 2, 1, 1, 2, 2));
}

TEST(Picture, IsScaledToUnevenSizes) {
    Picture const picture = numbered(5, 3).scaled(3, 2);
    EXPECT_EQ(picture.width(), 3U);
    EXPECT_EQ(picture.height(), 2U);
    EXPECT_THAT(reds(numbered(5, 1).scaled(3, 1)), ElementsAre(1, 3, 5));
}

TEST(Picture, PastesAndCutsOffWhatLiesOutside) {
    Picture picture(3, 2);
    picture.paste(numbered(2, 2), 2, 1);
    EXPECT_THAT(reds(picture), ElementsAre(0, 0, 0, 0, 0, 1));
    picture.paste(numbered(2, 2), 3, 0);
    EXPECT_THAT(reds(picture), ElementsAre(0, 0, 0, 0, 0, 1));
}

TEST(Picture, KnowsWhichOrientationsLieOnTheirSide) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        EXPECT_EQ(cli::isTransposed(static_cast<std::uint8_t>(orientation)), orientation >= 5) << orientation;
    }
}

}  // namespace
