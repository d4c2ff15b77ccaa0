/// Files whose sound is damaged, on the whole road.
#include <gtest/gtest.h>

#include <random>

#include "files/PlayFileCache.h"
#include "host/memory/MemoryCatalogue.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/real/Mutations.h"
#include "tests/real/OpenSound.h"
#include "tests/real/Readers.h"
#include "tests/real/RealMedia.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

constexpr std::uint32_t mutationCount = turns(200);
constexpr std::uint32_t someSamples = 4096;

/// Opens a file and asks for its first samples, some in the middle, its last and what lies behind; whatever
/// comes of it.
void readWhatCanBeHad(std::string const& path) {
    OpenSound const sound(path);
    if (!sound.isOpen()) {
        return;
    }
    std::uint64_t const count = sound.metadata().audioSampleCount;
    std::uint32_t const channels = std::min(sound.metadata().getTotalChannels(), 8U);
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
        for (std::uint64_t const first :
             {std::uint64_t{0}, count / 2, count - std::min<std::uint64_t>(count, 1), count,
              std::uint64_t{someSamples}}) {
            static_cast<void>(sound.read(channel, first, someSamples));
        }
    }
}

class DamagedSound : public testing::TestWithParam<std::string> {};

TEST_P(DamagedSound, IsReadAsFarAsItCanBeOrRefused) {
    readWhatCanBeHad(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedSound, testing::ValuesIn(damagedFiles()),
                         [](testing::TestParamInfo<std::string> const& file) {
                             return std::to_string(file.index) + "_" + testNameOf(file.param);
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DamagedSound);

/// Good files, damaged at random.
class SoundMutations : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(mutations_.hasFiles()); }

    Mutations mutations_{soundFiles(), readWhatCanBeHad};
};

TEST_F(SoundMutations, FilesCutAtRandomNeitherCrashNorHang) {
    mutations_.readCut(mutationCount);
}

TEST_F(SoundMutations, FilesWithFlippedBitsNeitherCrashNorHang) {
    mutations_.readFlipped(mutationCount);
}

/// A good file whose container lists its packets, and one like it of which a stretch in the middle is lost.
class LostStretch : public testing::TestWithParam<std::string> {
protected:
    LostStretch() {
        std::string bytes = bytesOf(whole_);
        std::mt19937 random(7);
        lostFrom_ = bytes.size() / 2;
        for (std::size_t i = 0; i < lostByteCount; ++i) {
            bytes[lostFrom_ + i] = static_cast<char>(random());
        }
        folder_.write("lost", bytes);
        good_ = std::make_unique<OpenSound>(whole_);
        damaged_ = std::make_unique<OpenSound>(folder_.file("lost"));
    }
    static constexpr std::size_t lostByteCount = 2000;

    std::string const whole_ = std::string(PLAYFILE_TEST_MEDIA_DIR) + "/" + GetParam();
    std::size_t lostFrom_ = 0;
    TemporaryFolder folder_;
    std::unique_ptr<OpenSound> good_;
    std::unique_ptr<OpenSound> damaged_;
};

TEST_P(LostStretch, MakesAFileNoShorter) {
    ASSERT_TRUE(damaged_->isOpen());
    EXPECT_EQ(damaged_->metadata().audioSampleCount, good_->metadata().audioSampleCount);
}

TEST_P(LostStretch, ShiftsNothingBehindIt) {
    ASSERT_TRUE(damaged_->isOpen());
    std::uint64_t const first = good_->metadata().audioSampleCount * 4 / 5;
    EXPECT_TRUE(damaged_->read(1, first, someSamples) == good_->read(1, first, someSamples));
}

TEST_P(LostStretch, IsReadOver) {
    ASSERT_TRUE(damaged_->isOpen());
    std::uint64_t const first = good_->metadata().audioSampleCount / 3;
    std::uint32_t const count = static_cast<std::uint32_t>(first);
    EXPECT_EQ(damaged_->read(0, first, count).size(), good_->read(0, first, count).size());
}

INSTANTIATE_TEST_SUITE_P(Files, LostStretch,
                         testing::Values("music-aac.mp4", "music-s24be-6ch.mov", "music-alac.m4a"),
                         [](testing::TestParamInfo<std::string> const& file) {
                             return testNameOf(file.param);
                         });

/// What opening says of files that can't be opened for what is asked.
class OpeningForSound : public testing::Test {
protected:
    OpeningForSound() { loadReaders(); }
    [[nodiscard]] static Ox::Ptr<FileReadInstance> open(char type, std::string const& name) {
        Cookie const cookie(Ox::UUID::generate(), type, 1);
        std::string const path = std::string(PLAYFILE_TEST_MEDIA_DIR) + "/" + name;
        MemoryCatalogue::instance().add(cookie, fromUTF8(path.c_str()));
        return PlayFileCache::Shared()->open(cookie, DecodeFormat::getDefault(), 0);
    }

    LogRecorder log_;
};

TEST_F(OpeningForSound, IsRefusedWithALineForAFileOfPicturesAlone) {
    EXPECT_FALSE(open('S', "h264-one-frame.mp4"));
    EXPECT_EQ(log_.count("h264-one-frame.mp4\" holds no sound"), 1U);
}

TEST_F(OpeningForSound, IsServedByTheReaderOfFFmpeg) {
    Ox::Ptr<FileReadInstance> const file = open('S', "music-aac.mp4");
    ASSERT_TRUE(file);
    EXPECT_EQ(file->readableTypes, std::uint32_t{OpenType::audio});
    EXPECT_EQ(log_.count("with FFmpeg for audio"), 1U);
}

TEST_F(OpeningForSound, LeavesAFileOfSoundAloneRefusedForPictures) {
    EXPECT_FALSE(open('V', "music-aac.mp4"));
}

}  // namespace
}  // namespace test
