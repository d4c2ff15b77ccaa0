#include "plugins/wave/WaveWriter.h"

#include <atomic>
#include <cstring>
#include <filesystem>

#include "plugins/wave/WaveWriterInfo.h"
#include "tests/fakes/ByteHolder.h"
#include "tests/fakes/FullDisk.h"
#include "tests/plugins_wave/WaveFixture.h"

namespace test {
namespace {

using namespace playfile_wave;

std::atomic<int>& written() {
    static std::atomic<int> count{0};
    return count;
}
std::atomic<int>& lost() {
    static std::atomic<int> count{0};
    return count;
}
void tell(RequestStatus status) {
    ++(status == requestComplete ? written() : lost());
}

/// A file that is written and then read.
class WriteWave : public WaveFixture {
protected:
    explicit WriteWave(wave::Shape const& shape = {2, Aud::sampleS24, 48000}) : shape_(shape) {}

    [[nodiscard]] Ox::FileWriterParams params(char const* format = "wav") const {
        Ox::FileWriterParams params;
        params.format = format;
        Aud::Metadata stream;
        stream.channels = shape_.channels;
        stream.sampleFormat = shape_.format;
        stream.sampleRate = shape_.rate;
        params.audioMetadata = {stream};
        return params;
    }
    OxResult create(Ox::FileWriterParams const& wanted) {
        return info_.openFile(fromUTF8(path().c_str()), wanted, file_);
    }
    std::uint32_t write(std::uint64_t first, std::uint64_t count) {
        std::string const bytes = wave::samples(shape_, first, count);
        auto const holder = Ox::makePtr<ByteHolder>(static_cast<std::uint32_t>(bytes.size()));
        std::memcpy(holder->getBuffer(), bytes.data(), bytes.size());
        Ox::Ptr<iMemHolder> data = holder;
        return file_->writeAudioSamples(data, tell);
    }
    /// Ends the file, and reads it.
    void expectSamples(std::uint64_t count) {
        file_ = nullptr;
        openAgain();
        ASSERT_TRUE(reader) << complaint();
        EXPECT_EQ(sampleCount(), count);
        EXPECT_EQ(readBlock(0, static_cast<std::uint32_t>(count)).bytes, wave::samples(shape_, 0, count));
    }

    wave::Shape const shape_;
    WaveWriterInfo info_;
    Ox::Ptr<FileWriteInstance> file_;
};

TEST_F(WriteWave, HoldsEverySample) {
    ASSERT_EQ(create(params()), 1U);
    for (std::uint64_t first = 0; first < 4000; first += 400) {
        EXPECT_EQ(write(first, 400), 1U);
    }
    expectSamples(4000);
}

TEST_F(WriteWave, IsAWholeFileWithoutSamples) {
    ASSERT_EQ(create(params()), 1U);
    file_ = nullptr;
    openAgain();
    ASSERT_TRUE(reader) << complaint();
    EXPECT_EQ(sampleCount(), 0U);
}

TEST_F(WriteWave, TellsOfEachBufferWhenItIsWritten) {
    written() = 0;
    ASSERT_EQ(create(params()), 1U);
    EXPECT_EQ(write(0, 10), 1U);
    EXPECT_EQ(write(10, 10), 1U);
    file_ = nullptr;
    EXPECT_EQ(written(), 2);
}

/// A second of sound is on the disk, and its header says so, but for what may be lost.
TEST_F(WriteWave, CanBeReadUpToTheLastSecondWhileItIsWritten) {
    ASSERT_EQ(create(params()), 1U);
    std::uint64_t const seconds = 3;
    for (std::uint64_t first = 0; first < seconds * shape_.rate; first += 1000) {
        ASSERT_EQ(write(first, 1000), 1U);
    }
    openAgain();
    ASSERT_TRUE(reader) << complaint();
    EXPECT_GE(sampleCount(), (seconds - 1) * shape_.rate);
}

TEST_F(WriteWave, HoldsBackWhoHandsOverSecondsOfSound) {
    ASSERT_EQ(create(params()), 1U);
    ASSERT_EQ(write(0, 10 * shape_.rate), 1U);
    EXPECT_EQ(file_->getWriteBacklog(), 0U);
}

TEST_F(WriteWave, KeepsWhatWasWrittenBeforeTheDiskWasFull) {
    FullDisk const disk(200000);
    lost() = 0;
    ASSERT_EQ(create(params()), 1U);
    std::uint32_t result = oxSuccess;
    for (std::uint64_t first = 0; first < 480000 && result == oxSuccess; first += 4000) {
        result = write(first, 4000);
    }
    EXPECT_NE(result, oxSuccess);
    file_ = nullptr;
    EXPECT_GE(lost(), 1);
    EXPECT_NE(complaint().find("can't be written"), std::string::npos);
    openAgain();
    ASSERT_TRUE(reader) << complaint();
    EXPECT_GE(sampleCount(), 24000U);
    EXPECT_EQ(readBlock(0, 24000).bytes, wave::samples(shape_, 0, 24000));
}

TEST_F(WriteWave, LeavesNoFileWhereItsHeaderHasNoRoom) {
    FullDisk const disk(10);
    EXPECT_NE(create(params()), 1U);
    EXPECT_FALSE(file_);
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(WriteWave, MakesTheFoldersAboveIt) {
    Ox::Ptr<FileWriteInstance> file;
    EXPECT_EQ(info_.openFile(fromUTF8(folder.file("a/b/c.wav").c_str()), params(), file), 1U);
    EXPECT_TRUE(std::filesystem::exists(folder.file("a/b/c.wav")));
}

TEST_F(WriteWave, RefusesAPlaceThatCantBeWritten) {
    Ox::Ptr<FileWriteInstance> file;
    EXPECT_NE(info_.openFile(L"/proc/nothing/c.wav", params(), file), 1U);
    EXPECT_FALSE(file);
    EXPECT_GE(log.count("/proc/nothing/c.wav"), 1U);
}

TEST_F(WriteWave, RefusesWhatItCantHold) {
    for (auto const& spoil : std::vector<void (*)(Ox::FileWriterParams&)>{
             [](Ox::FileWriterParams& bad) { bad.audioMetadata.clear(); },
             [](Ox::FileWriterParams& bad) { bad.audioMetadata.resize(2); },
             [](Ox::FileWriterParams& bad) { bad.audioMetadata[0].channels = 0; },
             [](Ox::FileWriterParams& bad) { bad.audioMetadata[0].channels = 65536; },
             [](Ox::FileWriterParams& bad) { bad.audioMetadata[0].sampleFormat = Aud::sampleUnknown; },
             [](Ox::FileWriterParams& bad) { bad.audioMetadata[0].sampleRate = 0.0; }}) {
        Ox::FileWriterParams bad = params();
        spoil(bad);
        EXPECT_EQ(create(bad), 0U);
        EXPECT_FALSE(file_);
    }
}

TEST_F(WriteWave, TakesNoPictures) {
    ASSERT_EQ(create(params()), 1U);
    EXPECT_EQ(file_->writeFrameData(Ox::Image::Surface()), 0U);
    Ox::FileWriterParams pictures = params();
    pictures.video.setFrameRate({25, 1});
    EXPECT_FALSE(info_.canWrite(pictures));
}

TEST_F(WriteWave, KnowsItsFormats) {
    EXPECT_EQ(info_.getExtensions("wav").front(), L"wav");
    EXPECT_EQ(info_.getExtensions("bwf").front(), L"wav");
    EXPECT_TRUE(info_.getExtensions("mov").empty());
    Ox::FileWriterParams other = params("mov");
    EXPECT_FALSE(info_.canWrite(other));
}

TEST_F(WriteWave, BearsTheTextsOfABroadcastFile) {
    Ox::FileWriterParams broadcast = params("bwf");
    broadcast.options.set("description", "take 7");
    broadcast.options.set("timeReference", "8640000000");
    broadcast.options.set("originationDate", "2026-01-02");
    ASSERT_EQ(create(broadcast), 1U);
    EXPECT_EQ(write(0, 100), 1U);
    expectSamples(100);
    EXPECT_EQ(text("tag.comment"), "take 7");
    EXPECT_EQ(text("tag.time_reference"), "8640000000");
    EXPECT_EQ(text("tag.date"), "2026-01-02");
}

class WriteOddWave : public WriteWave {
protected:
    WriteOddWave() : WriteWave({1, Aud::sampleU8, 8000}) {}
};

TEST_F(WriteOddWave, PutsAByteBehindAnOddLength) {
    ASSERT_EQ(create(params()), 1U);
    EXPECT_EQ(write(0, 4001), 1U);
    EXPECT_EQ(write(4001, 4000), 1U);
    expectSamples(8001);
    EXPECT_EQ(std::filesystem::file_size(path()) % 2, 0U);
}

}  // namespace
}  // namespace test
