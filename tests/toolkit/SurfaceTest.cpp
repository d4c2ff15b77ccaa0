#include "toolkit/image/Surface.h"

#include <gtest/gtest.h>

#include "tests/fakes/ByteHolder.h"
#include "tests/support/Threads.h"

namespace test {
namespace {

using Ox::Image::Plane;
using Ox::Image::Surface;

class SurfaceTest : public ::testing::Test {
protected:
    static Surface make(Ox::Image::Format format, std::uint32_t width, std::uint32_t height,
                        Ox::Image::eAlloc allocation = Ox::Image::showForeignMemory,
                        std::uint32_t stride = 0) {
        auto const* known = Ox::Image::describeFormat(format);
        return {width,
                height,
                format,
                known ? known->bitsPerComponent : std::uint16_t(8),
                known ? known->bitsPerPixel : std::uint16_t(20),
                Ox::Image::layoutTopDown,
                allocation,
                stride};
    }
};

TEST_F(SurfaceTest, WithoutABodyHasNoPixelsAndIsFinished) {
    Surface surface;
    surface.set();
    surface.addEvent();
    surface.setDataPtr(Ox::makePtr<ByteHolder>(16));
    EXPECT_FALSE(surface.valid());
    EXPECT_EQ(Surface::waitFinished, surface.wait(0));
    EXPECT_EQ(nullptr, surface.getPlane(0).data);
}

TEST_F(SurfaceTest, WithoutPixelsIsNotValid) {
    EXPECT_FALSE(make(Ox::Image::rgba, 4, 2).valid());
}

TEST_F(SurfaceTest, WithMemoryOfItsOwnIsValidAndBlack) {
    Surface const surface = make(Ox::Image::rgba, 4, 2, Ox::Image::allocateOwn);
    ASSERT_TRUE(surface.valid());
    EXPECT_EQ(16, surface.getPlane(0).stride);
    EXPECT_EQ(0, surface.getPlane(0).data[31]);
}

TEST_F(SurfaceTest, ShowsForeignMemoryWithoutCopyingAndHoldsIt) {
    auto memory = Ox::makePtr<ByteHolder>(32);
    auto const alive = memory->alive();
    void* const start = memory->getBuffer();
    {
        Surface surface = make(Ox::Image::rgba, 4, 2);
        surface.setDataPtr(memory);
        memory = nullptr;
        EXPECT_EQ(start, surface.getPlane(0).data);
        EXPECT_TRUE(*alive);
    }
    EXPECT_FALSE(*alive);
}

TEST_F(SurfaceTest, DoesNotShowMemoryThatIsTooSmall) {
    Surface surface = make(Ox::Image::rgba, 4, 2);
    surface.setDataPtr(Ox::makePtr<ByteHolder>(31));
    EXPECT_FALSE(surface.valid());
    EXPECT_TRUE(surface.getOwner());
}

TEST_F(SurfaceTest, PlanesFollowOneAnother) {
    Surface const surface = make(Ox::Image::yuv420p, 5, 3, Ox::Image::allocateOwn);
    EXPECT_EQ(15, surface.getPlane(1).data - surface.getPlane(0).data);
    EXPECT_EQ(6, surface.getPlane(2).data - surface.getPlane(1).data);
    EXPECT_EQ(3, surface.getPlane(2).stride);
    EXPECT_EQ(nullptr, surface.getPlane(3).data);
    EXPECT_EQ(nullptr, surface.getPlane(99).data);
}

TEST_F(SurfaceTest, StridesOfAllPlanesAreInProportion) {
    Surface const surface = make(Ox::Image::yuv420p, 6, 2, Ox::Image::allocateOwn, 64);
    EXPECT_EQ(64, surface.getPlane(0).stride);
    EXPECT_EQ(32, surface.getPlane(1).stride);
    EXPECT_EQ(128, surface.getPlane(1).data - surface.getPlane(0).data);
}

TEST_F(SurfaceTest, AFormatThatNobodyDescribedIsOnePlane) {
    Surface surface = make(Ox::Image::formatFor("nobody's"), 3, 2);
    surface.setDataPtr(Ox::makePtr<ByteHolder>(16));
    ASSERT_TRUE(surface.valid());
    EXPECT_EQ(8, surface.getPlane(0).stride);
}

TEST_F(SurfaceTest, ACopyShowsPixelsThatComeLater) {
    Surface surface = make(Ox::Image::rgba, 4, 2);
    Surface const copy = surface;
    surface.setDataPtr(Ox::makePtr<ByteHolder>(32));
    EXPECT_TRUE(copy.valid());
    EXPECT_TRUE(copy.isSameAs(surface));
    EXPECT_FALSE(copy.isSameAs(make(Ox::Image::rgba, 4, 2)));
}

TEST_F(SurfaceTest, WithoutAnEventIsFinishedFromTheStart) {
    EXPECT_EQ(Surface::waitFinished, make(Ox::Image::rgba, 4, 2).wait(0xFFFFFFFF));
}

TEST_F(SurfaceTest, WithAnEventIsFinishedWhenSet) {
    Surface surface = make(Ox::Image::rgba, 4, 2);
    surface.addEvent();
    EXPECT_EQ(Surface::waitTimedOut, surface.wait(0));
    surface.set();
    EXPECT_EQ(Surface::waitFinished, surface.wait(0));
    EXPECT_FALSE(surface.valid());
}

TEST_F(SurfaceTest, ASecondEventKeepsThoseWhoWait) {
    Surface surface = make(Ox::Image::rgba, 4, 2);
    surface.addEvent();
    surface.set();
    surface.addEvent();
    EXPECT_EQ(Surface::waitFinished, surface.wait(0));
}

TEST_F(SurfaceTest, PixelsCanBeReadByAllWhoWaited) {
    Surface surface = make(Ox::Image::rgba, 4, 2);
    surface.addEvent();
    std::atomic<int> sum{0};
    {
        Threads const readers(3, [&, copy = surface] {
            static_cast<void>(copy.wait(0xFFFFFFFF));
            sum += copy.valid() ? copy.getPlane(0).data[5] : 0;
        });
        auto const memory = Ox::makePtr<ByteHolder>(32);
        static_cast<std::uint8_t*>(memory->getBuffer())[5] = 7;
        surface.setDataPtr(memory);
        surface.set();
    }
    EXPECT_EQ(21, sum);
}

TEST_F(SurfaceTest, ShowsPlanesThatLieAnywhere) {
    std::uint8_t first[8] = {};
    std::uint8_t second[8] = {};
    Surface surface = make(Ox::Image::formatFor("nv12"), 2, 2);
    surface.setPlanes({Plane{first, 4}, Plane{second, -2}, Plane{}, Plane{}}, nullptr);
    EXPECT_EQ(first, surface.getPlane(0).data);
    EXPECT_EQ(-2, surface.getPlane(1).stride);
}

TEST_F(SurfaceTest, KeepsItsDescriptionForAllCopies) {
    Surface surface = make(Ox::Image::rgba, 4, 2);
    Surface const copy = surface;
    surface.setOrientation(6);
    surface.setFormatUID(99);
    surface.setSampleData({Ox::Image::eFieldOrder::topFirst, 1.5});
    EXPECT_EQ(6, copy.getOrientation());
    EXPECT_EQ(99U, copy.getFormatUID());
    EXPECT_EQ(1.5, copy.getSampleData().timeSeconds);
}

}  // namespace
}  // namespace test
