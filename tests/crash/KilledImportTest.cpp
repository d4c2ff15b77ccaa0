/// The command killed at random instants of importing.
///
/// The seed is printed; the environment's PLAYFILE_TEST_SEED sets it, and PLAYFILE_TEST_KILLS how often is killed.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <set>
#include <string>
#include <thread>

#include "host/sqlite/SqliteProject.h"
#include "tests/fakes/CallLog.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrintedSeed.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

/// Under a sanitizer fewer, as an import takes its time there.
#if defined(PLAYFILE_SANITIZED)
constexpr int usualKillCount = 25;
#else
constexpr int usualKillCount = 100;
#endif
constexpr int clipCount = 2000;
constexpr std::uint32_t pageLength = 500;
/// An original and a proxy.
constexpr int filesOfAClip = 2;

int killCount() {
    char const* const wanted = std::getenv("PLAYFILE_TEST_KILLS");
    return wanted ? std::atoi(wanted) : usualKillCount;
}

class KilledImport : public testing::Test {
protected:
    KilledImport() {
        std::filesystem::create_directories(folder_.path() / "m/proxy");
        for (int i = 0; i < clipCount; ++i) {
            folder_.write("m/" + std::to_string(i) + ".mov", "media");
            folder_.write("m/proxy/" + std::to_string(i) + ".mov", "proxy");
        }
    }

    [[nodiscard]] ChildProcess start(std::string const& command, std::vector<std::string> const& more = {}) {
        std::vector<std::string> arguments{"project", command, folder_.file("a.project")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return ChildProcess(PLAYFILE_CLI, arguments,
                            {"HOME=" + folder_.file("home"), "XDG_CONFIG_HOME=" + folder_.file("config")});
    }
    void makeProject() {
        for (char const* const end : {"", "-wal", "-shm"}) {
            std::filesystem::remove(folder_.file("a.project") + end);
        }
        EXPECT_EQ(start("create").waitForEnd().exitCode, 0);
    }
    void killAnImport() {
        ChildProcess import = start("import", {folder_.file("m"), "--recursive"});
        auto const longest = static_cast<int>(undisturbed_.count());
        std::this_thread::sleep_for(
            std::chrono::milliseconds(std::uniform_int_distribution<int>(0, longest)(random_)));
        import.kill();
        static_cast<void>(import.waitForEnd());
    }
    /// Finds out how long an import takes here, so that the kills come while one is under way.
    void importUndisturbed() {
        auto const begin = std::chrono::steady_clock::now();
        EXPECT_EQ(start("import", {folder_.file("m"), "--recursive"}).waitForEnd().exitCode, 0);
        undisturbed_ =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
    }
    /// How many clips there are, all of which must be whole and there once, in a sound file.
    int countWholeClips() {
        std::string error;
        auto const project = SqliteProject::open(folder_.name("a.project"), error);
        EXPECT_TRUE(project) << error;
        if (!project) {
            return -1;
        }
        {
            std::lock_guard const scope(project->file().lock);
            EXPECT_TRUE(project->file().isWhole());
        }
        std::set<std::string> names;
        ClipSummary last;
        for (auto page = project->listClips(last, pageLength); !page.empty();
             page = project->listClips(last, pageLength)) {
            last = page.back();
            for (ClipSummary const& clip : page) {
                EXPECT_EQ(clip.originals, 1U);
                EXPECT_EQ(clip.proxies, 1U);
                EXPECT_TRUE(names.insert(narrow(clip.name)).second) << narrow(clip.name);
            }
        }
        EXPECT_EQ(countMedia(*project), filesOfAClip * static_cast<int>(names.size()));
        return static_cast<int>(names.size());
    }
    static std::int64_t countMedia(SqliteProject& project) {
        std::lock_guard const scope(project.file().lock);
        SqliteStatement count = project.file().prepare("SELECT count(*) FROM media");
        return count.step() == SQLITE_ROW ? count.number(0) : -1;
    }

    TemporaryFolder folder_;
    std::chrono::milliseconds undisturbed_{0};
    std::mt19937 random_ = randomWithPrintedSeed();
};

TEST_F(KilledImport, LeavesWholeClipsAndAnUndisturbedOneEndsTheWork) {
    int killedAmid = 0;
    makeProject();
    importUndisturbed();
    makeProject();
    for (int turn = 0; turn < killCount() && !HasFailure(); ++turn) {
        killAnImport();
        int const clips = countWholeClips();
        killedAmid += clips > 0 && clips < clipCount ? 1 : 0;
        if (clips == clipCount) {
            makeProject();
        }
    }
    std::cout << "killed with part of the clips imported: " << killedAmid << std::endl;
    EXPECT_GT(killedAmid, 0);
    Ending const ending = start("import", {folder_.file("m"), "--recursive"}).waitForEnd();
    EXPECT_EQ(ending.exitCode, 0) << ending.errors;
    EXPECT_EQ(countWholeClips(), clipCount);
    EXPECT_EQ(start("check").waitForEnd().exitCode, 0);
}

}  // namespace
}  // namespace test
