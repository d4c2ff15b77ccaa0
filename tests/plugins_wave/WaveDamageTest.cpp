/// Good files that are cut or changed at random: they are read as far as they can be, or refused.
///
/// The seed is printed; the environment's PLAYFILE_TEST_SEED sets it.
#include <array>
#include <cstdlib>
#include <iostream>
#include <random>

#include "tests/plugins_wave/WaveFixture.h"

namespace {

using namespace test;

constexpr std::uint32_t defaultSeed = 20261121;
constexpr unsigned turnCount = 500;
constexpr std::uint32_t sampleTotal = 200;
wave::Shape const shape{3, Aud::sampleS24};

/// A file with everything in it that the parser knows.
std::string richFile() {
    return wave::file(
        "RF64",
        wave::sizes64(0, sampleTotal * shape.blockAlign(), wave::tableEntry("iXML", 10)) +
            wave::chunk("bext", std::string(700, 'b')) + wave::chunk("note", "odd") +
            wave::chunk("fmt ", wave::extensible(shape, 24, 24)) +
            wave::chunk("LIST", "INFO" + wave::chunk("INAM", "A title") + wave::chunk("IART", "Nobody")) +
            wave::chunk("iXML", "<BWFXML/> ", wave::noLength) +
            wave::chunk("data", wave::samples(shape, 0, sampleTotal), wave::noLength) +
            wave::chunk("cue ", "1234"),
        wave::noLength);
}

class WaveDamageTest : public WaveFixture {
protected:
    WaveDamageTest() { std::cout << "PLAYFILE_TEST_SEED=" << seed_ << std::endl; }

    [[nodiscard]] std::size_t below(std::size_t limit) { return random_() % limit; }

    [[nodiscard]] std::uint32_t anyNumber() { return static_cast<std::uint32_t>(random_()); }

    /// A chunk of noise, of the length that it states or of another.
    [[nodiscard]] std::string anyChunk() {
        constexpr std::array codes{"fmt ", "data", "ds64", "bext", "LIST", "iXML"};
        std::string contents(below(60), '\0');
        for (char& byte : contents) {
            byte = static_cast<char>(anyNumber());
        }
        auto const length = static_cast<std::uint32_t>(contents.size());
        return wave::chunk(codes[below(codes.size())], contents, below(2) != 0 ? length : anyNumber());
    }

    /// Opens the bytes and reads from all over, whatever comes of it: one line at most is said of a file
    /// that is refused, and no read gives more than was asked for.
    void readWhatCanBeHad(std::string const& bytes) {
        log.clear();
        open(bytes);
        if (!reader) {
            EXPECT_EQ(log.log().size(), 1U);
            return;
        }
        std::uint64_t const total = sampleCount();
        ASSERT_LE(total * reader->metadata->audioStreams.front().bytesPerSample, bytes.size());
        for (std::uint64_t const first : {std::uint64_t{0}, total / 2, total - 1, total}) {
            Block const block = readBlock(first, 100);
            EXPECT_LE(block.samplesRead, 100U);
            EXPECT_LE(first < total ? block.samplesRead : 0U, total);
        }
        EXPECT_LE(readChannel(0, 0, 50).size(), 50U * stream().bytesPerSample);
    }

private:
    static std::uint32_t chosenSeed() {
        char const* const text = std::getenv("PLAYFILE_TEST_SEED");
        return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : defaultSeed;
    }

    std::uint32_t const seed_ = chosenSeed();
    std::mt19937 random_{seed_};
};

TEST_F(WaveDamageTest, TheFileIsGoodBefore) {
    openGood(richFile());
    EXPECT_EQ(complaint(), "");
    EXPECT_EQ(text("iXML"), "<BWFXML/>");
    EXPECT_EQ(text("tag.title"), "A title");
    EXPECT_EQ(readBlock(0, sampleTotal).bytes, wave::samples(shape, 0, sampleTotal));
}

TEST_F(WaveDamageTest, FilesThatAreCutAtRandomAreReadOrRefused) {
    std::string const whole = richFile();
    for (unsigned turn = 0; turn < turnCount; ++turn) {
        readWhatCanBeHad(whole.substr(0, below(whole.size())));
    }
}

TEST_F(WaveDamageTest, FilesThatAreCutInTheirHeadersAreReadOrRefused) {
    std::string const whole = richFile();
    std::size_t const headers = whole.find("data") + 8;
    for (std::size_t length = 0; length <= headers; ++length) {
        readWhatCanBeHad(whole.substr(0, length));
    }
}

TEST_F(WaveDamageTest, FilesWithFlippedBitsAreReadOrRefused) {
    std::string const whole = richFile();
    std::size_t const headers = whole.find("data") + 8;
    for (unsigned turn = 0; turn < turnCount; ++turn) {
        std::string bytes = whole;
        for (std::size_t flips = 1 + below(8); flips > 0; --flips) {
            bytes[below(headers)] ^= static_cast<char>(1U << below(8));
        }
        readWhatCanBeHad(bytes);
    }
}

TEST_F(WaveDamageTest, FilesOfRandomChunksAreReadOrRefused) {
    for (unsigned turn = 0; turn < turnCount; ++turn) {
        std::string chunks;
        for (std::size_t count = below(6); count > 0; --count) {
            chunks += anyChunk();
        }
        readWhatCanBeHad(wave::file(below(2) != 0 ? "RF64" : "RIFF", chunks, wave::noLength));
    }
}

}  // namespace
