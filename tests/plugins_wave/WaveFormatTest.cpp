/// The forms of samples: which are read, as what, and which are left to others.
#include <limits>

#include "tests/plugins_wave/WaveFixture.h"

namespace {

using namespace test;
using wave::Shape;

constexpr std::uint32_t sampleTotal = 100;

std::string fileOf(std::string const& format, Shape const& shape) {
    return wave::file(wave::chunk("fmt ", format) +
                      wave::chunk("data", wave::samples(shape, 0, sampleTotal)));
}

/// A form of samples and what is said of it.
struct Form {
    Aud::eSampleFormat format;
    char const* codec;
    std::uint32_t bits;
};

class WaveFormTest : public WaveFixture, public ::testing::WithParamInterface<Form> {
protected:
    void expectDescribed(std::uint32_t channels) const {
        EXPECT_EQ(stream().channels, channels);
        EXPECT_EQ(stream().sampleFormat, GetParam().format);
        EXPECT_EQ(stream().codec.str(), GetParam().codec);
        EXPECT_EQ(stream().bitsPerSample, GetParam().bits);
        EXPECT_EQ(stream().bytesPerSample, GetParam().bits / 8);
        EXPECT_EQ(stream().sampleRate, 48000.0);
        EXPECT_FALSE(stream().isCompressedFormat());
        EXPECT_EQ(sampleCount(), sampleTotal);
    }
};

TEST_P(WaveFormTest, IsReadInAPlainChunk) {
    Shape const shape{2, GetParam().format};
    openGood(fileOf(wave::format(shape), shape));
    expectDescribed(2);
    EXPECT_EQ(readBlock(0, sampleTotal).bytes, wave::samples(shape, 0, sampleTotal));
}

TEST_P(WaveFormTest, IsReadInAnExtensibleChunk) {
    Shape const shape{3, GetParam().format};
    openGood(fileOf(wave::extensible(shape, GetParam().bits, GetParam().bits), shape));
    expectDescribed(3);
    EXPECT_EQ(readBlock(0, sampleTotal).bytes, wave::samples(shape, 0, sampleTotal));
}

TEST_P(WaveFormTest, GivesEachOfUpTo64Channels) {
    for (std::uint32_t channels = 1; channels <= 64; ++channels) {
        Shape const shape{channels, GetParam().format};
        openGood(fileOf(wave::format(shape), shape));
        for (std::uint32_t channel = 0; channel < channels; ++channel) {
            ASSERT_EQ(readChannel(channel, 10, 80), wave::channel(shape, channel, 10, 80))
                << channel << " of " << channels;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Forms, WaveFormTest,
    ::testing::Values(Form{Aud::sampleU8, "pcm_u8", 8}, Form{Aud::sampleS16, "pcm_s16le", 16},
                      Form{Aud::sampleS24, "pcm_s24le", 24}, Form{Aud::sampleS32, "pcm_s32le", 32},
                      Form{Aud::sampleF32, "pcm_f32le", 32}, Form{Aud::sampleF64, "pcm_f64le", 64}),
    [](auto const& form) { return std::string(form.param.codec); });

class WaveFormatTest : public WaveFixture {
protected:
    /// Opens a file of the shape whose header says something of its own.
    void openAs(std::string const& format, Shape const& shape = {}) { open(fileOf(format, shape)); }
};

TEST_F(WaveFormatTest, ReadsMoreThan64Channels) {
    Shape const shape{1000, Aud::sampleS24};
    openAs(wave::format(shape), shape);
    ASSERT_TRUE(reader);
    EXPECT_EQ(stream().channels, 1000U);
    EXPECT_EQ(readChannel(999, 50, 50), wave::channel(shape, 999, 50, 50));
}

TEST_F(WaveFormatTest, Reads24ValidBitsInContainersOf32) {
    Shape const shape{2, Aud::sampleS32};
    openAs(wave::extensible(shape, 32, 24), shape);
    ASSERT_TRUE(reader);
    EXPECT_EQ(stream().sampleFormat, Aud::sampleS32);
    EXPECT_EQ(stream().bytesPerSample, 4U);
    EXPECT_EQ(stream().bitsPerSample, 24U);
    EXPECT_EQ(stream().codec.str(), "pcm_s32le");
    EXPECT_EQ(readBlock(0, sampleTotal).bytes, wave::samples(shape, 0, sampleTotal));
}

TEST_F(WaveFormatTest, BelievesTheBlockAlignOfAnExtensibleChunkThatStates24Bits) {
    Shape const shape{2, Aud::sampleS32};
    openAs(wave::extensible(shape, 24, 24), shape);
    ASSERT_TRUE(reader);
    EXPECT_EQ(stream().bytesPerSample, 4U);
    EXPECT_EQ(stream().bitsPerSample, 24U);
}

TEST_F(WaveFormatTest, ReadsBitsThatDoNotFillTheirBytes) {
    Shape const shape{2, Aud::sampleS24};
    openAs(wave::format(1, 2, 48000, 6, 20), shape);
    ASSERT_TRUE(reader);
    EXPECT_EQ(stream().sampleFormat, Aud::sampleS24);
    EXPECT_EQ(stream().bitsPerSample, 20U);
}

TEST_F(WaveFormatTest, TakesValidBitsOf0AndTooManyForAllBits) {
    Shape const shape{2, Aud::sampleS16};
    for (std::uint32_t const validBits : {0U, 17U, 40000U}) {
        openAs(wave::extensible(shape, 16, validBits), shape);
        ASSERT_TRUE(reader) << validBits;
        EXPECT_EQ(stream().bitsPerSample, 16U) << validBits;
    }
}

TEST_F(WaveFormatTest, ReadsTheHighestRateThatCanBeStated) {
    Shape const shape{1, Aud::sampleS16, std::numeric_limits<std::uint32_t>::max()};
    openAs(wave::format(shape), shape);
    ASSERT_TRUE(reader);
    EXPECT_EQ(stream().sampleRate, 4294967295.0);
    EXPECT_EQ(text("bitRate"), "68719476720");
}

/// A "fmt " chunk that another reader must look at.
struct Foreign {
    char const* name;
    std::string format;
    char const* complaint;
};

class ForeignFormatTest : public WaveFixture, public ::testing::WithParamInterface<Foreign> {};

TEST_P(ForeignFormatTest, IsLeftToOthersWithALineInTheLogAlone) {
    open(fileOf(GetParam().format, {}));
    EXPECT_FALSE(reader);
    EXPECT_EQ(complaint(), "\"fmt \" chunk at offset 12: " + std::string(GetParam().complaint) + "\n");
    EXPECT_TRUE(log.console().empty());
}

std::string withOtherGuid() {
    std::string format = wave::extensible({}, 16, 16);
    format.back() = 'x';
    return format;
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ForeignFormatTest,
    ::testing::Values(Foreign{"Adpcm", wave::format(2, 2, 48000, 1024, 4),
                              "format tag 2 with 4 bits in blocks of 1024 bytes isn't read here"},
                      Foreign{"ALaw", wave::format(6, 2, 8000, 2, 8),
                              "format tag 6 with 8 bits in blocks of 2 bytes isn't read here"},
                      Foreign{"Mp3", wave::format(0x55, 2, 48000, 1, 0),
                              "format tag 85 with 0 bits in blocks of 1 bytes isn't read here"},
                      Foreign{"AnUnknownGuid", withOtherGuid(),
                              "format tag 1 with 16 bits in blocks of 4 bytes isn't read here"},
                      Foreign{"PlainBitsInLargerBytes", wave::format(1, 2, 48000, 8, 24),
                              "format tag 1 with 24 bits in blocks of 8 bytes isn't read here"},
                      Foreign{"FloatOf16Bits", wave::format(3, 2, 48000, 4, 16),
                              "format tag 3 with 16 bits in blocks of 4 bytes isn't read here"},
                      Foreign{"IntegersOf64Bits", wave::format(1, 2, 48000, 16, 64),
                              "format tag 1 with 64 bits in blocks of 16 bytes isn't read here"},
                      Foreign{"MoreBitsThanBytes", wave::format(1, 2, 48000, 4, 24),
                              "format tag 1 with 24 bits in blocks of 4 bytes isn't read here"},
                      Foreign{"NoBits", wave::format(1, 2, 48000, 4, 0),
                              "format tag 1 with 0 bits in blocks of 4 bytes isn't read here"}),
    [](auto const& foreign) { return foreign.param.name; });

/// A "fmt " chunk that nobody can read.
using Bad = Foreign;

class BadFormatTest : public WaveFixture, public ::testing::WithParamInterface<Bad> {};

TEST_P(BadFormatTest, IsRefusedWithALineForEverybody) {
    open(fileOf(GetParam().format, {}));
    EXPECT_FALSE(reader);
    EXPECT_EQ(complaint(), "\"fmt \" chunk at offset 12: " + std::string(GetParam().complaint) + "\n");
    EXPECT_EQ(log.console(), log.log());
}

INSTANTIATE_TEST_SUITE_P(
    Formats, BadFormatTest,
    ::testing::Values(
        Bad{"Empty", "", "0 bytes, at least 16 are needed"},
        Bad{"OneByte", "x", "1 bytes, at least 16 are needed"},
        Bad{"CutShort", wave::format({}).substr(0, 14), "14 bytes, at least 16 are needed"},
        Bad{"CutShortExtensible", wave::extensible({}, 16, 16).substr(0, 38),
            "38 bytes, at least 40 are needed"},
        Bad{"NoChannels", wave::format(1, 0, 48000, 4, 16), "it has no channels"},
        Bad{"NoRate", wave::format(1, 2, 0, 4, 16), "the sample rate is 0"},
        Bad{"NoBlocks", wave::format(1, 2, 48000, 0, 16), "blocks of 0 bytes don't hold 2 channels"},
        Bad{"UnevenBlocks", wave::format(1, 3, 48000, 4, 16), "blocks of 4 bytes don't hold 3 channels"},
        Bad{"MoreChannelsThanBytes", wave::format(1, 65535, 48000, 4, 16),
            "blocks of 4 bytes don't hold 65535 channels"}),
    [](auto const& bad) { return bad.param.name; });

}  // namespace
