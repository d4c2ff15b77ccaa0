/// What goes out of the cache, when, and in which order.
#include <future>
#include <memory>

#include "ole/os/Reclaimable.h"
#include "tests/fakes/CacheFixture.h"

namespace {

/// A cache of one's own whose files have names of one letter.
class PlayFileCacheUpkeepTest : public CacheFixture {
protected:
    using FilePtr = Ox::Ptr<FileReadInstance>;

    PlayFileCache& make(int sizeMin, int sizeMax) {
        cache = std::make_unique<PlayFileCache>(sizeMin, sizeMax);
        return *cache;
    }
    ~PlayFileCacheUpkeepTest() override { reader->script->destroyGate.open(); }

    FilePtr open(std::string const& name, OpenType type = OpenType::video) {
        addFile(name);
        return openIn(*cache, name, type);
    }
    /// Opens each letter's file and holds none.
    void openAll(std::string const& letters) {
        for (char const letter : letters) {
            EXPECT_TRUE(open(std::string(1, letter)));
        }
    }
    /// The files that are open, one letter each; asking doesn't stamp them.
    std::string openFiles() {
        calls->clear();
        cache->reportUsage();
        std::string letters;
        for (std::string const& line : calls->with("log       ")) {
            letters += line.substr(10, line.size() - 11);
        }
        return letters;
    }
    std::size_t countOf(std::string const& operation) { return calls->count("." + operation); }

    Ox::Ptr<ScriptedReader> reader = addReader("A");
    std::unique_ptr<PlayFileCache> cache;
};

TEST_F(PlayFileCacheUpkeepTest, MakesRoomBeforeItOpensSoThatOneMoreThanTheBoundIsOpen) {
    make(2, 4);
    openAll("abcde");
    EXPECT_EQ(openFiles(), "abcde");
    openAll("f");
    EXPECT_EQ(openFiles(), "bcdef");
}

TEST_F(PlayFileCacheUpkeepTest, ClosesTheOneThatWasUnusedLongest) {
    make(2, 2);
    openAll("abc");
    openAll("a");
    openAll("d");
    EXPECT_EQ(openFiles(), "acd");
}

TEST_F(PlayFileCacheUpkeepTest, CountsBeingAskedForAsUse) {
    make(2, 2);
    Cookie const cookie = addClip("a");
    openAll("abc");
    EXPECT_TRUE(cache->isOpen(cookie, levelOriginal, 0));
    openAll("d");
    EXPECT_EQ(openFiles(), "acd");
}

TEST_F(PlayFileCacheUpkeepTest, RemovesNothingAndStillOpensWhenAllAreInUse) {
    make(2, 4);
    std::vector<FilePtr> held;
    for (char const* name : {"a", "b", "c", "d", "e", "f"}) {
        held.push_back(open(name));
    }
    EXPECT_TRUE(held.back());
    EXPECT_EQ(openFiles(), "abcdef");
}

TEST_F(PlayFileCacheUpkeepTest, SkipsAFileInUseForTheNextOldest) {
    make(2, 2);
    FilePtr const held = open("a");
    openAll("bcd");
    EXPECT_EQ(openFiles(), "acd");
}

TEST_F(PlayFileCacheUpkeepTest, MakesNoRoomOnAHit) {
    make(2, 1);
    openAll("ab");
    openAll("b");
    EXPECT_EQ(openFiles(), "ab");
}

TEST_F(PlayFileCacheUpkeepTest, ClosesSeveralWhenSeveralAreTooMany) {
    make(2, 4);
    openAll("abcde");
    cache->limitUsage(1);
    EXPECT_EQ(openFiles(), "e");
}

TEST_F(PlayFileCacheUpkeepTest, LimitUsageKeepsTheLowerBound) {
    make(2, 4);
    openAll("abcde");
    cache->limitUsage();
    EXPECT_EQ(openFiles(), "de");
}

TEST_F(PlayFileCacheUpkeepTest, PurgeAndFlushCloseAllThatIsUnused) {
    make(2, 4);
    FilePtr const held = open("a");
    openAll("bc");
    cache->purge();
    EXPECT_EQ(openFiles(), "a");
    openAll("bc");
    cache->flushUnreferenced();
    EXPECT_EQ(openFiles(), "a");
}

TEST_F(PlayFileCacheUpkeepTest, PurgeEmptiesTheOpenFilesAndLeavesTheFailedOnes) {
    make(2, 4);
    openAll("ab");
    reader->canOpenFiles = false;
    EXPECT_FALSE(open("x"));
    cache->purge();
    EXPECT_EQ(openFiles(), "");
    EXPECT_TRUE(cache->isCorrupt(L"x", OpenType::video));
}

TEST_F(PlayFileCacheUpkeepTest, NeverClosesWithANegativeUpperBound) {
    make(2, -1);
    openAll("abcdefgh");
    EXPECT_EQ(openFiles(), "abcdefgh");
}

TEST_F(PlayFileCacheUpkeepTest, NeverReclaimsWithANegativeLowerBound) {
    make(-1, 4);
    openAll("abc");
    cache->limitUsage();
    EXPECT_EQ(openFiles(), "abc");
}

TEST_F(PlayFileCacheUpkeepTest, ClosesEverythingUnusedWithABoundOfZero) {
    make(0, 0);
    openAll("abc");
    EXPECT_EQ(openFiles(), "c");
    cache->limitUsage();
    EXPECT_EQ(openFiles(), "");
}

TEST_F(PlayFileCacheUpkeepTest, NeverClosesAFileWithoutAStamp) {
    make(2, 4);
    open("a")->lastUse = PlayFile::neverUsed;
    EXPECT_FALSE(cache->removeOldestEntry());
    EXPECT_EQ(openFiles(), "a");
}

TEST_F(PlayFileCacheUpkeepTest, ClosesTheFirstInKeyOrderOfThoseWithOneStamp) {
    make(2, 4);
    open("a", OpenType::audio)->lastUse = 5;
    open("b", OpenType::video)->lastUse = 5;
    open("c", OpenType::video)->lastUse = 5;
    EXPECT_TRUE(cache->removeOldestEntry());
    EXPECT_EQ(openFiles(), "ca");
}

TEST_F(PlayFileCacheUpkeepTest, FindsNothingToCloseWhenEmptyOrAllInUse) {
    make(2, 4);
    EXPECT_FALSE(cache->removeOldestEntry());
    FilePtr const held = open("a");
    EXPECT_FALSE(cache->removeOldestEntry());
}

TEST_F(PlayFileCacheUpkeepTest, LimitsEveryFileInKeyOrderBeforeItCloses) {
    make(2, 4);
    FilePtr const audio = open("a", OpenType::audio);
    FilePtr const second = open("c");
    FilePtr const first = open("b");
    calls->clear();
    cache->limitUsage(0);
    EXPECT_EQ(calls->all(), (CallLog::Lines{"b.limitUsage", "c.limitUsage", "a.limitUsage", "b.limitUsage",
                                            "c.limitUsage", "a.limitUsage"}))
        << "once for the limit, once for the one attempt to close";
}

TEST_F(PlayFileCacheUpkeepTest, LimitsEveryFileEvenWhenNoneIsTooMany) {
    make(2, 4);
    openAll("a");
    calls->clear();
    cache->limitUsage();
    EXPECT_EQ(calls->all(), CallLog::Lines{"a.limitUsage"});
}

TEST_F(PlayFileCacheUpkeepTest, PurgesTheFileThatItCloses) {
    make(2, 4);
    openAll("a");
    calls->clear();
    EXPECT_TRUE(cache->removeOldestEntry());
    EXPECT_EQ(calls->all(), (CallLog::Lines{"a.limitUsage", "a.purge", "a.destroy"}));
}

TEST_F(PlayFileCacheUpkeepTest, DestroysAFileOutsideItsLock) {
    make(2, 4);
    openAll("a");
    reader->script->destroyGate.close();
    auto const closing = std::async(std::launch::async, [&] { cache->purge(); });
    ASSERT_TRUE(reader->script->destroyGate.waitForArrivals(1));
    EXPECT_FALSE(cache->isCorrupt(L"a", OpenType::video)) << "asked with the lock";
    reader->script->destroyGate.open();
}

TEST_F(PlayFileCacheUpkeepTest, OpensAClosedFileAnew) {
    make(2, 4);
    openAll("a");
    cache->purge();
    openAll("a");
    EXPECT_EQ(reader->openCount(), 2U);
}

TEST_F(PlayFileCacheUpkeepTest, CloseAllPurgesInKeyOrderAndForgetsEverythingOpen) {
    make(2, 4);
    FilePtr const audio = open("a", OpenType::audio);
    FilePtr const second = open("c");
    FilePtr const first = open("b");
    calls->clear();
    cache->closeAll();
    EXPECT_EQ(calls->all(), (CallLog::Lines{"b.purge", "c.purge", "a.purge"}));
    EXPECT_EQ(cache->getOpenCount(), 0U);
    EXPECT_NE(open("b"), first);
}

TEST_F(PlayFileCacheUpkeepTest, CloseAllLeavesTheFailedOpens) {
    make(2, 4);
    reader->canOpenFiles = false;
    EXPECT_FALSE(open("x"));
    cache->closeAll();
    EXPECT_TRUE(cache->isCorrupt(L"x", OpenType::video));
}

TEST_F(PlayFileCacheUpkeepTest, ReportsItsFilesInKeyOrder) {
    make(2, 4);
    FilePtr const audio = open("/m/a.wav", OpenType::audio);
    FilePtr const second = open("/m/\u00fc.mov");
    FilePtr const first = open("/m/b.mov");
    calls->clear();
    cache->reportUsage();
    EXPECT_EQ(calls->with("log "),
              (CallLog::Lines{"log PlayFileCache\n\n", "log    3 files open\n", "log       /m/b.mov\n",
                              "log       /m/\u00fc.mov\n", "log       /m/a.wav\n"}));
    EXPECT_EQ(calls->with("console ").size(), 5U);
}

TEST_F(PlayFileCacheUpkeepTest, IsReachedWhenMemoryIsWanted) {
    make(2, 4);
    openAll("abcd");
    Reclaimable::limitAll();
    EXPECT_EQ(openFiles(), "cd");
    Reclaimable::purgeAll();
    EXPECT_EQ(openFiles(), "");
}

TEST_F(PlayFileCacheUpkeepTest, IsNotReachedAnyMoreWhenItHasGone) {
    make(2, 4);
    openAll("abcd");
    cache.reset();
    EXPECT_EQ(reader->aliveCount(), 0U);
    Reclaimable::limitAll();
    Reclaimable::purgeAll();
}

}  // namespace
