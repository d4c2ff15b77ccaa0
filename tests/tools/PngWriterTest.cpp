#include "tools/playfile/PngWriter.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <vector>

namespace {

/// The bytes of a PNG file in memory, read back as 8-bit RGB.
struct ReadBack {
    png_image image{};
    std::vector<std::uint8_t> pixels;
};

ReadBack readBack(std::vector<char> const& file) {
    ReadBack result;
    result.image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&result.image, file.data(), file.size()) != 0) {
        result.image.format = PNG_FORMAT_RGB;
        result.pixels.resize(PNG_IMAGE_SIZE(result.image));
        png_image_finish_read(&result.image, nullptr, result.pixels.data(), 0, nullptr);
    }
    return result;
}

std::vector<char> write(cli::Picture const& picture) {
    std::FILE* const stream = std::tmpfile();
    std::string error;
    EXPECT_TRUE(cli::writePng(picture, stream, error)) << error;
    std::vector<char> bytes(static_cast<std::size_t>(std::ftell(stream)));
    std::rewind(stream);
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), stream), bytes.size());
    std::fclose(stream);
    return bytes;
}

cli::Picture gradient(std::uint32_t width, std::uint32_t height) {
    cli::Picture picture(width, height);
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            std::uint8_t* const pixel = picture.at(x, y);
            pixel[0] = static_cast<std::uint8_t>(x * 3);
            pixel[1] = static_cast<std::uint8_t>(y * 5);
            pixel[2] = static_cast<std::uint8_t>(x * y);
        }
    }
    return picture;
}

TEST(PngWriter, WritesEveryPixelAsItIs) {
    cli::Picture const picture = gradient(61, 37);
    ReadBack const result = readBack(write(picture));
    ASSERT_EQ(result.image.width, 61U);
    ASSERT_EQ(result.image.height, 37U);
    std::vector<std::uint8_t> const written(picture.at(0, 0), picture.at(0, 0) + result.pixels.size());
    EXPECT_EQ(result.pixels, written);
}

TEST(PngWriter, WritesASinglePixel) {
    EXPECT_EQ(readBack(write(gradient(1, 1))).pixels.size(), 3U);
}

TEST(PngWriter, RefusesAnEmptyPicture) {
    std::string error;
    EXPECT_FALSE(cli::writePng(cli::Picture(), stderr, error));
    EXPECT_FALSE(error.empty());
}

TEST(PngWriter, TellsWhenTheDiskIsFull) {
    std::FILE* const stream = std::fopen("/dev/full", "wb");
    ASSERT_NE(stream, nullptr);
    std::string error;
    EXPECT_FALSE(cli::writePng(gradient(400, 400), stream, error));
    EXPECT_FALSE(error.empty());
    std::fclose(stream);
}

}  // namespace
