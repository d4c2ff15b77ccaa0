#include <gtest/gtest.h>

#include "tests/real/OpenClip.h"
#include "tests/real/RealMedia.h"

namespace test {
namespace {

class Conversion : public testing::Test {
protected:
    Conversion() : clip_(smallClips().front()), format_(clip_.nativeFormat()) {}

    OpenClip const clip_;
    DecodeFormat format_;
};

TEST_F(Conversion, GivesTheWidthAndHeightThatAreAskedFor) {
    format_.setWidth(96);
    format_.setHeight(54);
    Ox::Image::Surface const picture = clip_.read(0, format_);
    EXPECT_EQ(picture.getWidth(), 96U);
    EXPECT_EQ(picture.getHeight(), 54U);
}

TEST_F(Conversion, GivesTheDataFormatThatIsAskedFor) {
    format_.setDataFormat(Ox::Image::rgb24);
    EXPECT_EQ(clip_.read(0, format_).getDataFormat(), Ox::Image::rgb24);
}

TEST_F(Conversion, KeepsTheProportionsIfOnlyTheWidthIsStated) {
    DecodeFormat narrow;
    narrow.setWidth(format_.getWidth() / 2);
    Ox::Image::Surface const picture = clip_.read(0, narrow);
    EXPECT_NEAR(picture.getHeight(), format_.getHeight() / 2.0, 1.0);
}

TEST_F(Conversion, FailsTheFrameForADataFormatThatNobodyKnows) {
    format_.setDataFormat(Ox::Image::formatFor("no such format"));
    EXPECT_FALSE(clip_.read(0, format_).valid());
}

TEST_F(Conversion, LeavesTheOwnFormatAsItIs) {
    Ox::Image::Surface const picture = clip_.read(0);
    EXPECT_EQ(picture.getWidth(), format_.getWidth());
    EXPECT_EQ(picture.getDataFormat(), format_.getDataFormat());
}

TEST_F(Conversion, RefusesAFrameBehindTheLast) {
    EXPECT_FALSE(clip_.read(clip_.frameCount()).valid());
}

}  // namespace
}  // namespace test
