/// Processes killed at random instants of changing a project.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "host/sqlite/SqliteProject.h"
#include "tests/fakes/CallLog.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrintedSeed.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

constexpr int killCount = 100;
constexpr int mostLinesBefore = 10;
constexpr int longestDelayUs = 2000;
constexpr std::uint32_t pageLength = 500;

class KilledProject : public testing::Test {
protected:
    /// Lets a process change the project for a while and kills it.
    void killWriter(std::string const& what) {
        ChildProcess writer("project_writer", {folder_.file("a.project"), what});
        for (int line = pick(mostLinesBefore); line >= 0; --line) {
            printed_.push_back(writer.readLine());
        }
        std::this_thread::sleep_for(std::chrono::microseconds(pick(longestDelayUs)));
        writer.kill();
    }
    int pick(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

    /// Opens the project, whose structure must be sound.
    std::unique_ptr<SqliteProject> openWhole() {
        std::string error;
        auto project = SqliteProject::open(folder_.name("a.project"), error);
        EXPECT_TRUE(project) << error;
        if (project) {
            std::lock_guard const scope(project->file().lock);
            EXPECT_TRUE(project->file().isWhole());
        }
        return project;
    }
    /// How many clips there are, each of which must have all that belongs to it.
    static int countWholeClips(SqliteProject& project) {
        int count = 0;
        ClipSummary last;
        for (auto page = project.listClips(last, pageLength); !page.empty();
             page = project.listClips(last, pageLength)) {
            last = page.back();
            for (ClipSummary const& clip : page) {
                EXPECT_EQ(clip.originals, 2U);
                EXPECT_EQ(clip.proxies, 1U);
                EXPECT_EQ(project.edits().find(clip.cookie)->attributes.size(), 1U);
                ++count;
            }
        }
        return count;
    }
    static std::int64_t countMedia(SqliteProject& project) {
        std::lock_guard const scope(project.file().lock);
        SqliteStatement count = project.file().prepare("SELECT count(*) FROM media");
        return count.step() == SQLITE_ROW ? count.number(0) : -1;
    }

    TemporaryFolder folder_;
    std::mt19937 random_ = randomWithPrintedSeed();
    std::vector<std::string> printed_;
};

TEST_F(KilledProject, OpensWholeWithAllThatWasCommitted) {
    for (int turn = 0; turn < killCount; ++turn) {
        killWriter("media");
        ASSERT_TRUE(openWhole());
    }
    auto const project = openWhole();
    for (std::string const& line : printed_) {
        Cookie const video(fromUTF8(line.c_str()));
        EXPECT_EQ(project->catalogue().findEntryForCookie(video)->getProxyFiles().size(), 1U);
        EXPECT_TRUE(project->catalogue().fileExists(convertCookie(video, 'S', 1)));
    }
}

TEST_F(KilledProject, ABatchIsThereAsAWholeOrNotAtAll) {
    constexpr int clipsInABatch = 20;
    constexpr int filesOfAClip = 3;
    for (int turn = 0; turn < killCount; ++turn) {
        killWriter("batch");
        ASSERT_TRUE(openWhole());
    }
    auto const project = openWhole();
    int const clips = countWholeClips(*project);
    EXPECT_EQ(clips % clipsInABatch, 0);
    EXPECT_EQ(countMedia(*project), clips * filesOfAClip);
    for (std::string const& line : printed_) {
        EXPECT_TRUE(project->edits().find(Cookie(fromUTF8(line.c_str()))));
    }
}

TEST_F(KilledProject, AChangeThroughAnEntryIsThereAsAWholeOrNotAtAll) {
    Cookie const video(Ox::UUID{}, 'V', 0);
    for (int turn = 0; turn < killCount; ++turn) {
        killWriter("live");
        auto const project = openWhole();
        ASSERT_TRUE(project);
        auto const entry = project->catalogue().findEntryForCookie(video);
        ASSERT_TRUE(entry);
        ASSERT_TRUE(entry->isLinked());
        EXPECT_EQ(narrow(entry->getLinkFileName()), "/m/video");
        std::string const link = narrow(entry->getLinkedFilename());
        EXPECT_GE(std::stoi(link.substr(link.rfind('/') + 1)), std::stoi(printed_.back()));
        EXPECT_GE(entry->getProxyFiles().size(), 1U);
        EXPECT_LE(entry->getProxyFiles().size(), 2U);
    }
}

}  // namespace
}  // namespace test
