/// Recorders killed at random instants.
///
/// The seed is printed; the environment's PLAYFILE_TEST_SEED sets it.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>
#include <thread>

#include "files/FileReadInstance.h"
#include "files/PlayFileCache.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrintedSeed.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WaveMaker.h"
#include "toolkit/plugins/Plugin.h"

namespace {

constexpr int killCount = 50;
constexpr int mostBuffersBefore = 300;
constexpr int longestDelayUs = 3000;
constexpr test::wave::Shape shape{1, Aud::sampleS24, 48000};

class KilledRecorder : public testing::Test {
protected:
    KilledRecorder() { loadPlugins(fromUTF8(PLAYFILE_BUILD_PLUGIN_DIR)); }

    int pick(int most) { return std::uniform_int_distribution<int>(0, most)(numbers_); }

    /// Lets a recorder work for a while and kills it.
    void recordAndKill() {
        test::ChildProcess recorder("recorder", {PLAYFILE_BUILD_PLUGIN_DIR, folder_.path().string()});
        path_ = recorder.readLine();
        ASSERT_NE(path_, "");
        for (int line = pick(mostBuffersBefore); line > 0; --line) {
            ASSERT_NE(recorder.readLine(), "");
        }
        std::this_thread::sleep_for(std::chrono::microseconds(pick(longestDelayUs)));
        recorder.kill();
        std::istringstream lines(recorder.waitForEnd().output);
        takenSamples_ = 0;
        for (std::string line; std::getline(lines, line);) {
            takenSamples_ = std::strtoull(line.c_str(), nullptr, 10);
        }
    }

    /// The samples that a reader finds; they lie at the end of the header that a writer makes.
    void expectSamplesBefore() {
        Ox::Ptr<FileReadInstance> const file = PlayFileCache::Shared()->open(
            fromUTF8(path_.c_str()), Cookie(), DecodeFormat(), OpenType::audio, 0);
        ASSERT_TRUE(file) << path_;
        std::uint64_t const count = file->metadata->audioSampleCount;
        EXPECT_GE(count + shape.rate, takenSamples_);
        std::string const bytes = folder_.read(std::filesystem::relative(path_, folder_.path()).string());
        std::size_t const begin = bytes.find("data") + 8;
        EXPECT_EQ(bytes.substr(begin, count * shape.blockAlign()), test::wave::samples(shape, 0, count));
        PlayFileCache::Shared()->closeAll();
    }

    test::TemporaryFolder folder_;
    std::mt19937 numbers_ = test::randomWithPrintedSeed();
    std::string path_;
    std::uint64_t takenSamples_ = 0;
};

TEST_F(KilledRecorder, LosesAtMostTheLastSecond) {
    for (int i = 0; i < killCount && !HasFailure(); ++i) {
        recordAndKill();
        expectSamplesBefore();
        std::filesystem::remove(path_);
    }
}

}  // namespace
