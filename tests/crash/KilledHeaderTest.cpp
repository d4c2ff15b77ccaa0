/// Processes killed at random instants of writing a header.
///
/// The seed is printed; the environment's PLAYFILE_TEST_SEED sets it.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

#include "host/sidecar/HeaderFiles.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrintedSeed.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

constexpr int killCount = 60;
constexpr int mostLinesBefore = 20;
constexpr int longestDelayUs = 1000;

class KilledHeader : public testing::Test {
protected:
    /// Lets a process write for a while and kills it; the number of the last header that it is known to have
    /// written.
    int killWriter() {
        ChildProcess writer("header_writer", {folder_.file("a.mov")});
        int last = 0;
        for (int line = pick(mostLinesBefore); line >= 0; --line) {
            last = std::atoi(writer.readLine().c_str());
        }
        std::this_thread::sleep_for(std::chrono::microseconds(pick(longestDelayUs)));
        writer.kill();
        return last;
    }
    int pick(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

    TemporaryFolder folder_;
    std::mt19937 random_ = randomWithPrintedSeed();
};

TEST_F(KilledHeader, IsTheOldOrTheNewOneWholeWhenever) {
    for (int turn = 0; turn < killCount; ++turn) {
        int const last = killWriter();
        SAV_HEADER header;
        ASSERT_TRUE(HeaderFiles::readFile(folder_.name("a.sav"), header));
        EXPECT_GE(header.width, last);
        EXPECT_EQ(header.sequence, header.width);
        EXPECT_EQ(header.input_rate, header.width);
        EXPECT_EQ(header.orig_fname, fromUTF8(("/in/" + std::to_string(header.width)).c_str()));
        EXPECT_STREQ(header.video_field, "both");
    }
}

}  // namespace
}  // namespace test
