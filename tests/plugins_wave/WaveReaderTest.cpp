/// Reads of samples: where they lie, how they end, and what is asked of the file for them.
#include <filesystem>
#include <fstream>

#include "tests/plugins_wave/WatchedFiles.h"
#include "tests/plugins_wave/WaveFixture.h"

namespace {

using namespace test;
using wave::Shape;

constexpr std::uint64_t sampleTotal = 1000;
constexpr std::uint64_t dataOffset = 44;
constexpr std::uint64_t gib = std::uint64_t{1} << 30;
Shape const shape{4, Aud::sampleS24};

class WaveReaderTest : public WaveFixture {
protected:
    void openPlain() { openGood(wave::plainFile(shape, sampleTotal)); }

    /// Makes a file with a hole in it: its head, nothing up to a sample far away, and samples from there on.
    void openSparse(std::string const& head, std::uint64_t firstFar, std::uint64_t farCount) {
        folder.write(fileName, head);
        std::fstream file(path(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(head.size() + firstFar * shape.blockAlign()));
        file << wave::samples(shape, firstFar, farCount);
        file.close();
        openAgain();
        ASSERT_TRUE(reader) << complaint();
    }
};

TEST_F(WaveReaderTest, ReadsAnyPartOfTheFile) {
    openPlain();
    for (auto const& [first, count] : {std::pair{0U, 1U}, {0U, 1000U}, {1U, 7U}, {999U, 1U}, {500U, 499U}}) {
        Block const block = readBlock(first, count);
        EXPECT_EQ(block.result, oxSuccess);
        EXPECT_EQ(block.samplesRead, count);
        EXPECT_EQ(block.bytes, wave::samples(shape, first, count));
    }
}

TEST_F(WaveReaderTest, GivesLessAndTheEndOfTheDataWhereTheFileEndsInARead) {
    openPlain();
    Block const block = readBlock(990, 100);
    EXPECT_EQ(block.result, oxEndOfData);
    EXPECT_EQ(block.samplesRead, 10U);
    EXPECT_EQ(block.bytes, wave::samples(shape, 990, 10));
}

TEST_F(WaveReaderTest, GivesTheEndOfTheDataBehindTheLastSample) {
    openPlain();
    for (std::uint64_t const first : {sampleTotal, sampleTotal + 1, ~std::uint64_t{0}}) {
        Block const block = readBlock(first, 1);
        EXPECT_EQ(block.result, oxEndOfData);
        EXPECT_EQ(block.samplesRead, 0U);
        EXPECT_EQ(block.bytes, "");
    }
}

TEST_F(WaveReaderTest, DoesNotReadOnIntoWhatFollowsTheData) {
    openGood(wave::file(wave::chunk("fmt ", wave::format(shape)) +
                        wave::chunk("data", wave::samples(shape, 0, 10)) +
                        wave::chunk("LIST", std::string(500, 'x'))));
    EXPECT_EQ(readBlock(0, 100).bytes, wave::samples(shape, 0, 10));
}

TEST_F(WaveReaderTest, PutsSamplesBehindThoseThatTheBufferHolds) {
    openPlain();
    auto buffer = Ox::makePtr<ByteBufferImpl>(0);
    unsigned int samplesRead = 0;
    unsigned int skip = 0;
    reader->readAudioSamples(0, 5, 10, buffer, samplesRead, skip, skip);
    reader->readAudioSamples(0, 15, 20, buffer, samplesRead, skip, skip);
    EXPECT_EQ(std::string(static_cast<char*>(buffer->getBuffer()), buffer->getUsed()),
              wave::samples(shape, 5, 30));
}

TEST_F(WaveReaderTest, ReadsOneBlockForAllChannels) {
    WatchedFiles files;
    openPlain();
    files.forgetReads();
    for (std::uint32_t const channel : {3U, 0U, 2U, 1U}) {
        EXPECT_EQ(readChannel(channel, 100, 200), wave::channel(shape, channel, 100, 200));
        EXPECT_EQ(status, requestComplete);
    }
    EXPECT_EQ(files.reads(),
              (std::vector<WatchedFiles::Read>{{dataOffset + 100 * shape.blockAlign(), 200 * 12U}}));
}

TEST_F(WaveReaderTest, ReadsOneBlockForEightChannels) {
    Shape const wide{8, Aud::sampleS24};
    WatchedFiles files;
    openGood(wave::plainFile(wide, sampleTotal));
    files.forgetReads();
    for (std::uint32_t const channel : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U}) {
        EXPECT_EQ(readChannel(channel, 300, 200), wave::channel(wide, channel, 300, 200));
        EXPECT_EQ(status, requestComplete);
    }
    EXPECT_EQ(files.reads(),
              (std::vector<WatchedFiles::Read>{{dataOffset + 300 * wide.blockAlign(), 200 * 24U}}));
}

TEST_F(WaveReaderTest, AsksForNothingBehindTheEnd) {
    WatchedFiles files;
    openPlain();
    files.forgetReads();
    EXPECT_EQ(readChannel(0, 990, 100), wave::channel(shape, 0, 990, 10));
    EXPECT_EQ(status, requestComplete);
    EXPECT_EQ(files.reads(), (std::vector<WatchedFiles::Read>{{dataOffset + 990 * 12, 120U}}));
}

TEST_F(WaveReaderTest, ARequestAtTheEndIsCompleteAndEmpty) {
    openPlain();
    EXPECT_EQ(readChannel(0, sampleTotal, 10), "");
    EXPECT_EQ(status, requestComplete);
}

TEST_F(WaveReaderTest, ReadsTheLastSampleAlone) {
    openPlain();
    EXPECT_EQ(readChannel(2, sampleTotal - 1, 1), wave::channel(shape, 2, sampleTotal - 1, 1));
    EXPECT_EQ(status, requestComplete);
}

TEST_F(WaveReaderTest, AFileThatWasCutShortSinceEndsThere) {
    openPlain();
    std::filesystem::resize_file(path(), dataOffset + 100 * shape.blockAlign() + 5);
    Block const block = readBlock(90, 100);
    EXPECT_EQ(block.result, oxEndOfData);
    EXPECT_EQ(block.samplesRead, 10U);
    EXPECT_EQ(block.bytes, wave::samples(shape, 90, 10));
    EXPECT_EQ(readBlock(500, 10).samplesRead, 0U);
}

TEST_F(WaveReaderTest, AReadThatTheSystemCannotDoFails) {
    WatchedFiles files;
    openPlain();
    files.holdReadsTo(5 * shape.blockAlign());
    EXPECT_EQ(readBlock(0, 10).result, OS()->getErrors().getLastError());
    EXPECT_EQ(readChannel(0, 0, 10), "");
    EXPECT_EQ(status, requestFailed);
}

TEST_F(WaveReaderTest, ReadsAnRf64FileBeyond4GiB) {
    std::uint64_t const total = 6 * gib / shape.blockAlign();
    std::uint64_t const far = total - 100;
    openSparse(
        wave::file("RF64",
                   wave::sizes64(total * shape.blockAlign() + 72, total * shape.blockAlign()) +
                       wave::chunk("fmt ", wave::format(shape)) + wave::chunk("data", "", wave::noLength),
                   wave::noLength),
        far, 100);
    EXPECT_EQ(sampleCount(), total);
    EXPECT_EQ(readBlock(far, 100).bytes, wave::samples(shape, far, 100));
    EXPECT_EQ(readChannel(3, far + 50, 100), wave::channel(shape, 3, far + 50, 50));
    EXPECT_EQ(readBlock(total, 1).result, oxEndOfData);
}

TEST_F(WaveReaderTest, ReadsAnOldFileBeyond4GiBWhoseLengthIsUnknown) {
    std::uint64_t const far = 5 * gib / shape.blockAlign();
    openSparse(
        wave::file("RIFF", wave::chunk("fmt ", wave::format(shape)) + wave::chunk("data", "", wave::noLength),
                   wave::noLength),
        far, 7);
    EXPECT_EQ(sampleCount(), far + 7);
    EXPECT_EQ(readChannel(1, far, 7), wave::channel(shape, 1, far, 7));
}

TEST_F(WaveReaderTest, FindsChunksBehindDataBeyond4GiB) {
    std::uint64_t const total = 5 * gib / shape.blockAlign();
    openSparse(
        wave::file("BW64",
                   wave::sizes64(0, total * shape.blockAlign()) + wave::chunk("fmt ", wave::format(shape)) +
                       wave::chunk("data", "", wave::noLength),
                   wave::noLength),
        total - 1, 1);
    std::ofstream(path(), std::ios::app | std::ios::binary)
        << wave::chunk("LIST", "INFO" + wave::chunk("INAM", "Far away"));
    openAgain();
    ASSERT_TRUE(reader) << complaint();
    EXPECT_EQ(sampleCount(), total);
    EXPECT_EQ(text("tag.title"), "Far away");
}

TEST_F(WaveReaderTest, FailsAReadThatIsTooLargeForMemory) {
    std::uint64_t const total = 8 * gib / shape.blockAlign();
    openSparse(
        wave::file("RF64",
                   wave::sizes64(0, total * shape.blockAlign()) + wave::chunk("fmt ", wave::format(shape)) +
                       wave::chunk("data", "", wave::noLength),
                   wave::noLength),
        total - 1, 1);
    Block const block = readBlock(0, 0xFFFFFFFF);
    EXPECT_EQ(block.result, oxFailure);
    EXPECT_EQ(block.samplesRead, 0U);
    EXPECT_EQ(complaint(), "a read of 4294967295 samples is too large for memory of 4 GiB\n");
}

TEST_F(WaveReaderTest, SaysWhatItHasOpen) {
    openPlain();
    EXPECT_EQ(reader->getDescription().str(), "pcm_s24le in WAVE (RIFF)");
    EXPECT_EQ(reader->metadata->audioInfoCount, 1U);
    EXPECT_EQ(reader->metadata->videoInfoCount, 0U);
    EXPECT_FALSE(reader->readsByVideoSamples());
}

}  // namespace
