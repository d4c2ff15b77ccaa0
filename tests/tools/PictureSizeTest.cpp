#include "tools/playfile/PictureSize.h"

#include <gtest/gtest.h>

#include "tools/playfile/CommandError.h"

namespace {

using cli::PictureSize;

PlayFileMetadataRep metadataOf(std::uint32_t width, std::uint32_t height) {
    PlayFileMetadataRep metadata(L"clip.mov");
    metadata.image.setWidth(width);
    metadata.image.setHeight(height);
    return metadata;
}

TEST(PictureSize, ReadsWidthAndHeight) {
    PictureSize const size = PictureSize::parse("640x360");
    EXPECT_EQ(size.width, 640U);
    EXPECT_EQ(size.height, 360U);
}

TEST(PictureSize, RefusesWhatIsNoSize) {
    for (char const* const text :
         {"", "x", "640", "640x", "x360", "0x360", "640x0", "-640x360", "640x-360", "640X360", "640x360x2",
          "16385x1", "1x16385", "99999999999x1", "640 x 360"}) {
        EXPECT_THROW(static_cast<void>(PictureSize::parse(text)), cli::CommandError) << text;
    }
}

TEST(PictureSize, IsExchangedForAPictureOnItsSide) {
    EXPECT_EQ((PictureSize{640, 360}.stored(6).width), 360U);
    EXPECT_EQ((PictureSize{640, 360}.stored(3).width), 640U);
}

TEST(PictureSize, KeepsTheShapeWithinALimit) {
    PictureSize const wide = PictureSize::within({256, 256}, metadataOf(1920, 1080));
    EXPECT_EQ(wide.width, 256U);
    EXPECT_EQ(wide.height, 144U);
    PictureSize const small = PictureSize::within({256, 256}, metadataOf(50, 100));
    EXPECT_EQ(small.width, 128U);
    EXPECT_EQ(small.height, 256U);
}

TEST(PictureSize, CountsPixelsThatAreNotSquare) {
    PlayFileMetadataRep metadata = metadataOf(640, 360);
    metadata.videoData.pixelAspectNumerator = 2;
    metadata.videoData.pixelAspectDenominator = 1;
    PictureSize const size = PictureSize::within({256, 256}, metadata);
    EXPECT_EQ(size.width, 256U);
    EXPECT_EQ(size.height, 72U);
}

TEST(PictureSize, IsNeverEmpty) {
    EXPECT_EQ(PictureSize::within({256, 256}, metadataOf(10000, 1)).height, 1U);
    EXPECT_EQ(PictureSize::within({256, 256}, metadataOf(0, 0)).width, 256U);
}

}  // namespace
