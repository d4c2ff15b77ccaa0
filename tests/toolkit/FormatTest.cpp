#include "toolkit/image/Format.h"

#include <gtest/gtest.h>

#include "tests/support/Threads.h"

namespace test {
namespace {

using Ox::Image::describeFormat;
using Ox::Image::Format;
using Ox::Image::FormatDescription;
using Ox::Image::formatFor;

/// What a format of a name comes to for an image of 5 by 3 pixels.
struct Sizes {
    char const* name;
    unsigned bitsPerComponent;
    unsigned bitsPerPixel;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> rowBytesAndRows;
};

class UsualFormat : public ::testing::TestWithParam<Sizes> {};

TEST_P(UsualFormat, HasItsBits) {
    FormatDescription const* const format = describeFormat(formatFor(GetParam().name));
    ASSERT_TRUE(format);
    EXPECT_EQ(GetParam().bitsPerComponent, format->bitsPerComponent);
    EXPECT_EQ(GetParam().bitsPerPixel, format->bitsPerPixel);
}

TEST_P(UsualFormat, HasItsPlanes) {
    FormatDescription const* const format = describeFormat(formatFor(GetParam().name));
    ASSERT_TRUE(format);
    ASSERT_EQ(GetParam().rowBytesAndRows.size(), format->planeCount);
    for (unsigned plane = 0; plane < format->planeCount; ++plane) {
        EXPECT_EQ(GetParam().rowBytesAndRows[plane].first, planeRowBytes(*format, plane, 5)) << plane;
        EXPECT_EQ(GetParam().rowBytesAndRows[plane].second, planeRows(*format, plane, 3)) << plane;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Names, UsualFormat,
    ::testing::Values(
        Sizes{"gray", 8, 8, {{5, 3}}}, Sizes{"gray10le", 10, 10, {{10, 3}}}, Sizes{"monow", 1, 1, {{1, 3}}},
        Sizes{"ya8", 8, 16, {{10, 3}}}, Sizes{"rgb24", 8, 24, {{15, 3}}}, Sizes{"bgra", 8, 32, {{20, 3}}},
        Sizes{"rgb0", 8, 24, {{20, 3}}}, Sizes{"rgba64le", 16, 64, {{40, 3}}},
        Sizes{"yuyv422", 8, 16, {{12, 3}}}, Sizes{"uyyvyy411", 8, 12, {{12, 3}}},
        Sizes{"yuv420p", 8, 12, {{5, 3}, {3, 2}, {3, 2}}}, Sizes{"yuv410p", 8, 9, {{5, 3}, {2, 1}, {2, 1}}},
        Sizes{"yuv420p9le", 9, 13, {{10, 3}, {6, 2}, {6, 2}}},
        Sizes{"yuv420p10le", 10, 15, {{10, 3}, {6, 2}, {6, 2}}},
        Sizes{"yuv422p10le", 10, 20, {{10, 3}, {6, 3}, {6, 3}}},
        Sizes{"yuv444p12be", 12, 36, {{10, 3}, {10, 3}, {10, 3}}},
        Sizes{"yuva444p10le", 10, 40, {{10, 3}, {10, 3}, {10, 3}, {10, 3}}},
        Sizes{"yuvj422p", 8, 16, {{5, 3}, {3, 3}, {3, 3}}}, Sizes{"nv12", 8, 12, {{5, 3}, {6, 2}}},
        Sizes{"p010le", 10, 15, {{10, 3}, {12, 2}}}, Sizes{"gbrp14le", 14, 42, {{10, 3}, {10, 3}, {10, 3}}},
        Sizes{"gbrapf32le", 32, 128, {{20, 3}, {20, 3}, {20, 3}, {20, 3}}},
        Sizes{"pal8", 8, 8, {{5, 3}, {1024, 1}}}),
    [](auto const& tested) { return std::string(tested.param.name); });

TEST(Formats, AFormatWithoutANameIsUnknown) {
    EXPECT_EQ(Format::unknown, formatFor(""));
    EXPECT_EQ(nullptr, describeFormat(Format::unknown));
    Ox::Image::registerFormat({});
    EXPECT_EQ(nullptr, describeFormat(Format::unknown));
}

TEST(Formats, AFormatThatNobodyDescribedIsUnknown) {
    EXPECT_EQ(nullptr, describeFormat(formatFor("nobody's")));
}

TEST(Formats, APlaneThatIsNotThereHasNoBytes) {
    FormatDescription const* const format = describeFormat(Ox::Image::rgba);
    EXPECT_EQ(0U, planeRowBytes(*format, 1, 100));
    EXPECT_EQ(0U, planeRows(*format, 1, 100));
}

TEST(Formats, AddedOnesAreKnown) {
    FormatDescription added;
    added.name = "ours";
    added.planeCount = 1;
    added.sampleBits[0] = 40;
    Ox::Image::registerFormat(added);
    ASSERT_TRUE(describeFormat(formatFor("ours")));
    EXPECT_EQ(10U, planeRowBytes(*describeFormat(formatFor("ours")), 0, 2));
}

TEST(Formats, AKnownNameKeepsItsDescription) {
    FormatDescription const* const before = describeFormat(Ox::Image::rgba);
    FormatDescription other;
    other.name = "rgba";
    Ox::Image::registerFormat(other);
    EXPECT_EQ(before, describeFormat(Ox::Image::rgba));
    EXPECT_EQ(1U, before->planeCount);
}

TEST(Formats, ThreadsAddAndAskAtOnce) {
    std::atomic<int> thread{0};
    {
        Threads const threads(4, [&] {
            FormatDescription added;
            added.name = LightweightString<char>("ours" + std::to_string(thread++));
            for (int round = 0; round < 100; ++round) {
                Ox::Image::registerFormat(added);
                EXPECT_TRUE(describeFormat(Ox::Image::yuv422p10));
            }
        });
    }
    EXPECT_TRUE(describeFormat(formatFor("ours3")));
}

}  // namespace
}  // namespace test
