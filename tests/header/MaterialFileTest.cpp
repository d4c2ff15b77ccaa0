/// What a reader of chunks builds on.
#include "header/MaterialFile.h"

#include <cerrno>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "ole/os/OS.h"
#include "tests/fakes/ForwardingFileManager.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class ChunkFile : public MaterialFile {
public:
    using MaterialFile::blockSize;
    using MaterialFile::file;
    using MaterialFile::isOpen;
    bool readHeaders() override { return false; }
};

/// A file manager that records what is asked of it, and says what it knows of volumes.
class Files : public test::ForwardingFileManager {
public:
    class Volume : public iVolume {
    public:
        explicit Volume(std::uint32_t size) : size_(size) {}
        [[nodiscard]] std::uint32_t getBlockSize() const override { return size_; }
        [[nodiscard]] std::uint64_t getFreeBytes() const override { return 0; }

    private:
        std::uint32_t const size_;
    };

    [[nodiscard]] Ox::Ptr<iFile> openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                          std::uint32_t share, std::uint32_t option) override {
        calls.push_back("open " + toUTF8(name).str() + " " + std::to_string(access) + " " +
                        std::to_string(behaviour) + " " + std::to_string(share));
        return ForwardingFileManager::openFile(name, access, behaviour, share, option);
    }
    [[nodiscard]] Ox::Ptr<iVolume> getVolume(Name const& path) override {
        calls.push_back("volume " + toUTF8(path).str());
        return volumeBlockSize == 0 ? Ox::Ptr<Volume>() : Ox::makePtr<Volume>(volumeBlockSize);
    }

    std::uint32_t volumeBlockSize = 8192;
    std::vector<std::string> calls;
};

class MaterialFileTest : public ::testing::Test {
protected:
    using Lines = test::LogRecorder::Lines;

    OxResult open(std::string const& name, unsigned access = iFile::readAccess) {
        return chunks.openFile(folder.name(name), access, iFile::existingOnly, iFile::shared);
    }
    /// Opens a file of these bytes.
    void openBytes(std::string const& bytes) {
        folder.write("bytes", bytes);
        ASSERT_EQ(open("bytes"), oxSuccess);
    }
    /// A file of a code and a length.
    void openChunk(std::uint32_t length) {
        std::string bytes = "fmt ";
        bytes.append(reinterpret_cast<char const*>(&length), sizeof length);
        openBytes(bytes);
    }
    static constexpr unsigned codeOf(char const (&text)[5]) {
        return static_cast<unsigned>(text[0]) | static_cast<unsigned>(text[1]) << 8 |
               static_cast<unsigned>(text[2]) << 16 | static_cast<unsigned>(text[3]) << 24;
    }
    static constexpr unsigned old = 0x5A5A5A5A;

    test::TemporaryFolder const folder;
    test::LogRecorder log;
    Files files;
    ChunkFile chunks;
    unsigned fourCC = old;
    unsigned size = old;
};

TEST_F(MaterialFileTest, HasNoFileAndBlocksOf512BytesAtFirst) {
    EXPECT_FALSE(chunks.file);
    EXPECT_FALSE(chunks.isOpen);
    EXPECT_EQ(chunks.blockSize, 512U);
}

TEST_F(MaterialFileTest, OpensAsItIsToldAndAsksForTheVolumeThen) {
    std::string const name = folder.file("new");
    EXPECT_EQ(chunks.openFile(folder.name("new"), 3, iFile::openOrCreate, iFile::exclusive), oxSuccess);
    EXPECT_EQ(files.calls, (std::vector<std::string>{"open " + name + " 3 2 0", "volume " + name}));
    EXPECT_TRUE(chunks.isOpen);
    EXPECT_TRUE(chunks.file);
}

TEST_F(MaterialFileTest, TakesTheBlockSizeOfTheVolume) {
    openBytes("x");
    EXPECT_EQ(chunks.blockSize, 8192U);
}

TEST_F(MaterialFileTest, KeepsItsBlockSizeOnAVolumeThatNobodyKnows) {
    files.volumeBlockSize = 0;
    openBytes("x");
    EXPECT_EQ(chunks.blockSize, 512U);
    files.volumeBlockSize = 4096;
    openBytes("x");
    files.volumeBlockSize = 0;
    openBytes("x");
    EXPECT_EQ(chunks.blockSize, 4096U);
}

TEST_F(MaterialFileTest, AnswersTheSystemsErrorWhereNothingOpens) {
    EXPECT_EQ(open("missing"), iErrorService::systemErrorBase + ENOENT);
    EXPECT_FALSE(chunks.isOpen);
    EXPECT_FALSE(chunks.file);
    EXPECT_EQ(files.calls.size(), 1U) << "no volume is asked for";
    EXPECT_EQ(chunks.blockSize, 512U);
}

TEST_F(MaterialFileTest, LosesItsFileWhereTheNextDoesNotOpenButWasOpenOnce) {
    openBytes("x");
    EXPECT_NE(open("missing"), oxSuccess);
    EXPECT_FALSE(chunks.file);
    EXPECT_TRUE(chunks.isOpen);
}

TEST_F(MaterialFileTest, OpensAnotherFileInPlaceOfTheFirstAtItsStart) {
    openBytes("first");
    chunks.positionAt(3);
    folder.write("second", "second");
    EXPECT_EQ(open("second"), oxSuccess);
    char text[7] = {};
    EXPECT_EQ(chunks.getPosition(), 0U);
    EXPECT_EQ(chunks.read(text, 6), 6U);
    EXPECT_STREQ(text, "second");
}

TEST_F(MaterialFileTest, ReadsAndWritesWhereItStands) {
    folder.write("bytes", "0123456789");
    ASSERT_EQ(open("bytes", iFile::readAccess | iFile::writeAccess), oxSuccess);
    EXPECT_TRUE(chunks.positionAt(4));
    char text[] = "AB";
    EXPECT_EQ(chunks.write(text, 2), 2U);
    EXPECT_EQ(chunks.getPosition(), 6U);
    EXPECT_EQ(chunks.read(text, 2), 2U);
    EXPECT_STREQ(text, "67");
    EXPECT_EQ(folder.read("bytes"), "0123AB6789");
}

TEST_F(MaterialFileTest, AnswersWhatTheFileSaysOfAPosition) {
    openBytes("x");
    EXPECT_TRUE(chunks.positionAt(std::uint64_t{1} << 40));
    EXPECT_EQ(chunks.getPosition(), std::uint64_t{1} << 40);
    EXPECT_FALSE(chunks.positionAt(~0UL));
}

/// The reading of a code alone.
using FourCCTest = MaterialFileTest;

TEST_F(FourCCTest, IsTakenAsItLiesInTheFile) {
    openBytes("RIFFmore");
    EXPECT_TRUE(chunks.readNextFourCC(fourCC));
    EXPECT_EQ(fourCC, codeOf("RIFF"));
    EXPECT_EQ(fourCC & 0xFFU, static_cast<unsigned>('R'));
    EXPECT_EQ(chunks.getPosition(), 4U);
}

TEST_F(FourCCTest, IsNotThereAtTheEndOfTheFile) {
    openBytes("");
    EXPECT_FALSE(chunks.readNextFourCC(fourCC));
    EXPECT_EQ(fourCC, old);
}

TEST_F(FourCCTest, IsThereWithThreeBytesAndKeepsAnOldOne) {
    openBytes("RIF");
    EXPECT_TRUE(chunks.readNextFourCC(fourCC));
    EXPECT_EQ(fourCC, (codeOf("RIFF") & 0xFFFFFFU) | (old & 0xFF000000U));
}

/// The reading of a code and a rounded size.
class FourCCAndSizeTest : public MaterialFileTest {
protected:
    unsigned sizeOf(std::uint32_t length) {
        openChunk(length);
        EXPECT_TRUE(chunks.readNextFourCCAndSize(fourCC, size));
        EXPECT_EQ(fourCC, codeOf("fmt "));
        return size;
    }
};

TEST_F(FourCCAndSizeTest, RoundsTheSizeUpToAnEvenNumber) {
    EXPECT_EQ(sizeOf(7), 8U);
    EXPECT_EQ(sizeOf(8), 8U);
    EXPECT_EQ(sizeOf(0), 0U);
    EXPECT_EQ(sizeOf(1), 2U);
    EXPECT_EQ(sizeOf(0xFFFFFFFE), 0xFFFFFFFEU);
}

TEST_F(FourCCAndSizeTest, WrapsTheLargestSizeToZero) {
    EXPECT_EQ(sizeOf(0xFFFFFFFF), 0U);
}

TEST_F(FourCCAndSizeTest, DoesNotMindTheLengthThatChunkHeadersRefuse) {
    EXPECT_EQ(sizeOf(0xFF000000), 0xFF000000U);
    EXPECT_EQ(log.log(), Lines{});
}

TEST_F(FourCCAndSizeTest, WithoutASizeLeavesItUnrounded) {
    openBytes("fmt ");
    size = 7;
    EXPECT_FALSE(chunks.readNextFourCCAndSize(fourCC, size));
    EXPECT_EQ(size, 7U);
    EXPECT_EQ(fourCC, codeOf("fmt "));
}

TEST_F(FourCCAndSizeTest, WithoutACodeRoundsTheOldSize) {
    openBytes("");
    size = 7;
    EXPECT_FALSE(chunks.readNextFourCCAndSize(fourCC, size));
    EXPECT_EQ(size, 8U);
    EXPECT_EQ(fourCC, old);
}

TEST_F(FourCCAndSizeTest, TakesTheBytesOfASizeThatAreThere) {
    openBytes(std::string("fmt \x06", 5));
    size = 0x1100;
    EXPECT_TRUE(chunks.readNextFourCCAndSize(fourCC, size));
    EXPECT_EQ(size, 0x1106U);
}

/// The reading of a chunk's header.
using ChunkHeaderTest = MaterialFileTest;

TEST_F(ChunkHeaderTest, GivesCodeAndLengthUnrounded) {
    openChunk(7);
    EXPECT_TRUE(chunks.readRIFFChunkHeader(fourCC, size));
    EXPECT_EQ(fourCC, codeOf("fmt "));
    EXPECT_EQ(size, 7U);
    EXPECT_EQ(chunks.getPosition(), 8U);
}

TEST_F(ChunkHeaderTest, TakesEveryLengthButOne) {
    for (std::uint32_t const length : {0U, 0xFEFFFFFFU, 0xFF000001U, 0xFFFFFFFFU}) {
        openChunk(length);
        EXPECT_TRUE(chunks.readRIFFChunkHeader(fourCC, size));
        EXPECT_EQ(size, length);
    }
    EXPECT_EQ(log.log(), Lines{});
}

TEST_F(ChunkHeaderTest, LeavesItsOutputsAloneWithFewerThanEightBytes) {
    for (std::string const bytes : {"", "fmt ", "fmt abc"}) {
        openBytes(bytes);
        EXPECT_FALSE(chunks.readRIFFChunkHeader(fourCC, size));
        EXPECT_EQ(fourCC, old);
        EXPECT_EQ(size, old);
    }
    EXPECT_EQ(log.log(), Lines{});
}

TEST_F(ChunkHeaderTest, RefusesTheImpossibleLengthSetsBothAndWritesToTheLogAlone) {
    openChunk(0xFF000000);
    EXPECT_FALSE(chunks.readRIFFChunkHeader(fourCC, size));
    EXPECT_EQ(fourCC, codeOf("fmt "));
    EXPECT_EQ(size, 0xFF000000U);
    EXPECT_EQ(log.log(), Lines{"found chunk length 0xFF000000\n"});
    EXPECT_EQ(log.console(), Lines{});
}

}  // namespace
