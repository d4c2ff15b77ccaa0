/// Every test has a process of its own: the shared cache is made with the settings of that test.
#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "playfile/playfile.h"
#include "tests/fakes/CacheFixture.h"
#include "toolkit/plugins/DecoderInfo.h"
#include "toolkit/services/Settings.h"

namespace {

/// Notes how many files were open at each flush.
class NotingKeeper : public CodecPool::iKeeper {
public:
    void flushUnreferenced() override {
        std::scoped_lock const lock(mutex_);
        openAtFlush.push_back(PlayFileCache::Shared()->getOpenCount());
    }
    std::vector<std::size_t> openAtFlush;

private:
    std::mutex mutex_;
};

class EntryPoints : public CacheFixture {
protected:
    EntryPoints() { CodecPool::addKeeper(keeper); }
    ~EntryPoints() override { CodecPool::removeKeeper(keeper); }

    /// Opens that many files, one after the other, and keeps none of them.
    void openFiles(int count) {
        for (int i = 0; i < count; ++i) {
            std::string const path = "/media/" + std::to_string(i) + ".mov";
            addFile(path);
            EXPECT_TRUE(openFile(path));
        }
    }
    static std::size_t openCount() { return PlayFileCache::Shared()->getOpenCount(); }

    Ox::Ptr<ScriptedReader> const reader = addReader("A");
    Ox::Ptr<NotingKeeper> const keeper = Ox::makePtr<NotingKeeper>();
};

using Counts = std::vector<std::size_t>;

TEST_F(EntryPoints, ExitClosesEveryFileAndThenFlushesTheCodecs) {
    openFiles(3);
    playfile_exit();
    EXPECT_EQ(keeper->openAtFlush, Counts{0});
}

TEST_F(EntryPoints, CloseAllFilesClosesEveryFileAndThenFlushesTheCodecs) {
    openFiles(3);
    playfile_close_all_files();
    EXPECT_EQ(keeper->openAtFlush, Counts{0});
}

TEST_F(EntryPoints, ExitLeavesAFileToThoseWhoHoldIt) {
    addFile("/media/a.mov");
    auto const file = openFile("/media/a.mov");
    playfile_exit();
    EXPECT_EQ(file.useCount(), 1U);
    EXPECT_EQ(openCount(), 0U);
}

TEST_F(EntryPoints, ExitWithoutInitMakesTheCacheAndFindsItEmpty) {
    playfile_exit();
    EXPECT_EQ(openCount(), 0U);
    EXPECT_EQ(keeper->openAtFlush, Counts{0});
}

TEST_F(EntryPoints, ExitMayComeTwice) {
    playfile_init();
    openFiles(1);
    playfile_exit();
    playfile_exit();
    EXPECT_EQ(keeper->openAtFlush, (Counts{0, 0}));
}

TEST_F(EntryPoints, InitMakesTheServiceThatOpensAhead) {
    EXPECT_FALSE(threads.find("DQ<Ox::PreOpenRequest>"));
    playfile_init();
    EXPECT_TRUE(threads.find("DQ<Ox::PreOpenRequest>"));
}

TEST_F(EntryPoints, WithoutInitNoServiceIsMade) {
    openFiles(1);
    playfile_exit();
    EXPECT_FALSE(threads.find("DQ<Ox::PreOpenRequest>"));
}

TEST_F(EntryPoints, InitMayComeTwiceAndOpensNothing) {
    playfile_init();
    playfile_init();
    EXPECT_EQ(openCount(), 0U);
    EXPECT_TRUE(calls->all().empty());
}

TEST_F(EntryPoints, CacheStaysUsableAfterExit) {
    playfile_exit();
    openFiles(2);
    EXPECT_EQ(openCount(), 2U);
}

TEST_F(EntryPoints, ExitLeavesFailedOpensKnown) {
    reader->canOpenFiles = false;
    addFile("/media/broken.mov");
    EXPECT_FALSE(openFile("/media/broken.mov"));
    playfile_exit();
    EXPECT_TRUE(PlayFileCache::Shared()->isCorrupt(wide("/media/broken.mov"), OpenType::video));
}

TEST_F(EntryPoints, CacheHasRoomForOneMoreThanItsDefaultBound) {
    openFiles(10);
    EXPECT_EQ(openCount(), 5U);
}

TEST_F(EntryPoints, CacheTakesItsBoundFromTheSettings) {
    setConfigInt("playfileCacheSizeMax", 7);
    openFiles(20);
    EXPECT_EQ(openCount(), 8U);
}

TEST_F(EntryPoints, CacheReadsItsBoundOnce) {
    openFiles(1);
    setConfigInt("playfileCacheSizeMax", 20);
    openFiles(30);
    EXPECT_EQ(openCount(), 5U);
}

TEST_F(EntryPoints, CacheOfANegativeBoundNeverCloses) {
    setConfigInt("playfileCacheSizeMax", -1);
    openFiles(50);
    EXPECT_EQ(openCount(), 50U);
}

TEST_F(EntryPoints, CacheKeepsItsDefaultNumberOfFilesWhenMemoryIsWanted) {
    openFiles(5);
    PlayFileCache::Shared()->limitUsage();
    EXPECT_EQ(openCount(), 2U);
}

TEST_F(EntryPoints, CacheTakesTheNumberThatItKeepsFromTheSettings) {
    setConfigInt("playfileCacheSizeMin", 3);
    openFiles(5);
    PlayFileCache::Shared()->limitUsage();
    EXPECT_EQ(openCount(), 3U);
}

TEST_F(EntryPoints, MayBeCalledOnManyThreads) {
    addFile("/media/a.mov");
    {
        std::vector<std::jthread> callers;
        for (int i = 0; i < 6; ++i) {
            callers.emplace_back([this] {
                for (int round = 0; round < 50; ++round) {
                    playfile_init();
                    EXPECT_TRUE(openFile("/media/a.mov"));
                    playfile_close_all_files();
                }
            });
        }
    }
    playfile_exit();
    EXPECT_EQ(openCount(), 0U);
}

}  // namespace
