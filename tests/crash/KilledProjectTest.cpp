/// Processes killed at random instants of adding media to a project.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "host/sqlite/SqliteCatalogue.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrintedSeed.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

constexpr int killCount = 100;
constexpr int mostLinesBefore = 10;
constexpr int longestDelayUs = 2000;

class KilledProject : public testing::Test {
protected:
    /// Lets a process add for a while and kills it.
    void killWriter() {
        ChildProcess writer("project_writer", {folder_.file("a.project")});
        for (int line = pick(mostLinesBefore); line >= 0; --line) {
            added_.push_back(writer.readLine());
        }
        std::this_thread::sleep_for(std::chrono::microseconds(pick(longestDelayUs)));
        writer.kill();
    }
    int pick(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

    TemporaryFolder folder_;
    std::mt19937 random_ = randomWithPrintedSeed();
    std::vector<std::string> added_;
};

TEST_F(KilledProject, OpensWholeWithAllThatWasCommitted) {
    for (int turn = 0; turn < killCount; ++turn) {
        killWriter();
        std::string error;
        auto const file = ProjectFile::open(folder_.name("a.project"), error);
        ASSERT_TRUE(file) << error;
        std::lock_guard const scope(file->lock);
        ASSERT_TRUE(file->isWhole());
    }
    std::string error;
    SqliteCatalogue catalogue(ProjectFile::open(folder_.name("a.project"), error));
    for (std::string const& line : added_) {
        Cookie const video(fromUTF8(line.c_str()));
        EXPECT_EQ(catalogue.findEntryForCookie(video)->getProxyFiles().size(), 1U);
        EXPECT_TRUE(catalogue.fileExists(convertCookie(video, 'S', 1)));
    }
}

}  // namespace
}  // namespace test
