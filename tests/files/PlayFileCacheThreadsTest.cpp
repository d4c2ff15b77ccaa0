/// Several threads that open files through the cache.
#include <cstdlib>
#include <future>
#include <memory>
#include <stdexcept>

#include "tests/fakes/CacheFixture.h"
#include "toolkit/services/Settings.h"

namespace {

class PlayFileCacheThreadsTest : public CacheFixture {
protected:
    using FilePtr = Ox::Ptr<FileReadInstance>;

    PlayFileCacheThreadsTest() { addFile("/a/b.mov"); }
    ~PlayFileCacheThreadsTest() override {
        fileManager.existsGate.open();
        reading.open();
    }

    /// Opens the file on a thread of its own.
    std::future<FilePtr> startOpening(std::string const& path = "/a/b.mov", OpenType type = OpenType::video) {
        return std::async(std::launch::async, [this, path, type] { return openIn(cache, path, type); });
    }
    /// The same, and waits until that thread waits for the name.
    std::future<FilePtr> startWaiting(OpenType type = OpenType::video) {
        unsigned const before = threads.manualEventMade.arrivals();
        auto opening = startOpening("/a/b.mov", type);
        EXPECT_TRUE(threads.manualEventMade.waitForArrivals(before + 1));
        return opening;
    }
    /// Makes readers wait in their opens.
    void closeReader() {
        reader->onOpen = [this](auto const&) { reading.pass(); };
    }

    Ox::Ptr<ScriptedReader> reader = addReader("A");
    Gate reading{false};
    PlayFileCache cache{2, 4};
};

TEST_F(PlayFileCacheThreadsTest, OpenAMissingFileOneAfterTheOther) {
    fileManager.removeFile("/a/b.mov");
    fileManager.existsGate.close();
    auto first = startOpening();
    ASSERT_TRUE(fileManager.existsGate.waitForArrivals(1));
    auto second = startWaiting();
    EXPECT_EQ(calls->count("fm.exists"), 1U) << "the second waits for the first";
    fileManager.existsGate.open();
    EXPECT_FALSE(first.get());
    EXPECT_FALSE(second.get());
    EXPECT_EQ(calls->count("fm.exists"), 2U);
}

TEST_F(PlayFileCacheThreadsTest, ShareOneOpenOfAFile) {
    closeReader();
    auto first = startOpening();
    ASSERT_TRUE(reading.waitForArrivals(1));
    auto second = startWaiting();
    reading.open();
    FilePtr const file = first.get();
    EXPECT_TRUE(file);
    EXPECT_EQ(second.get(), file);
    EXPECT_EQ(reader->openCount(), 1U);
    EXPECT_EQ(calls->count("fm.exists"), 1U);
    EXPECT_EQ(file->lastUse, 2U) << "stamped for the second too";
}

TEST_F(PlayFileCacheThreadsTest, ShareOneFailureOfAFile) {
    reader->opens = [](auto const&) { return false; };
    closeReader();
    auto first = startOpening();
    ASSERT_TRUE(reading.waitForArrivals(1));
    auto second = startWaiting();
    reading.open();
    EXPECT_FALSE(first.get());
    EXPECT_FALSE(second.get());
    EXPECT_EQ(reader->openCount(), 1U);
    EXPECT_EQ(calls->count("log PlayFileCache::open() : Failed to open \"/a/b.mov\" for video\n"), 1U);
}

TEST_F(PlayFileCacheThreadsTest, OpenOneFileForTwoMediaOneAfterTheOther) {
    closeReader();
    auto video = startOpening("/a/b.mov", OpenType::video);
    ASSERT_TRUE(reading.waitForArrivals(1));
    auto audio = startWaiting(OpenType::audio);
    EXPECT_EQ(reader->openCount(), 1U);
    reading.open();
    EXPECT_NE(video.get(), audio.get());
    EXPECT_EQ(reader->openCount(), 2U);
}

TEST_F(PlayFileCacheThreadsTest, GetTheirTurnsInOrderOfArrival) {
    closeReader();
    auto first = startOpening("/a/b.mov", OpenType::video);
    ASSERT_TRUE(reading.waitForArrivals(1));
    auto second = startWaiting(OpenType::both);
    auto third = startWaiting(OpenType::audio);
    reading.open();
    EXPECT_TRUE(first.get());
    EXPECT_TRUE(second.get());
    EXPECT_TRUE(third.get());
    EXPECT_EQ(calls->with("A.openFile"),
              (CallLog::Lines{"A.openFile /a/b.mov video", "A.openFile /a/b.mov video and audio",
                              "A.openFile /a/b.mov audio"}));
}

TEST_F(PlayFileCacheThreadsTest, OpenDifferentFilesAtTheSameTime) {
    addFile("/a/c.mov");
    closeReader();
    auto first = startOpening("/a/b.mov");
    auto second = startOpening("/a/c.mov");
    EXPECT_TRUE(reading.waitForArrivals(2));
    reading.open();
    EXPECT_TRUE(first.get());
    EXPECT_TRUE(second.get());
}

TEST_F(PlayFileCacheThreadsTest, AreNotHeldUpByASlowReaderOfAnotherFile) {
    addFile("/a/open.mov");
    FilePtr const open = openIn(cache, "/a/open.mov");
    closeReader();
    auto slow = startOpening();
    ASSERT_TRUE(reading.waitForArrivals(1));
    EXPECT_EQ(openIn(cache, "/a/open.mov"), open);
    cache.limitUsage();
    EXPECT_FALSE(cache.isCorrupt(L"/a/b.mov", OpenType::video));
    reading.open();
    EXPECT_TRUE(slow.get());
}

TEST_F(PlayFileCacheThreadsTest, AreNotHeldUpByASlowExistenceTestOfAnotherFile) {
    addFile("/a/open.mov");
    FilePtr const open = openIn(cache, "/a/open.mov");
    fileManager.existsGate.close();
    auto slow = startOpening();
    ASSERT_TRUE(fileManager.existsGate.waitForArrivals(2));
    EXPECT_EQ(openIn(cache, "/a/open.mov"), open);
    fileManager.existsGate.open();
    EXPECT_TRUE(slow.get());
}

/// These leave threads behind that wait for ever, so each has a process of its own.
class ThrowingReaderDeathTest : public PlayFileCacheThreadsTest {
protected:
    ThrowingReaderDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Opens once, which must throw, and ends the process with 0 if the name stays held and the mark
    /// set: another thread waits for the name, and goes on when this one gives it up.
    [[noreturn]] void exitAfterThrow() {
        bool hasThrown = false;
        try {
            static_cast<void>(openIn(cache, "/a/b.mov"));
        } catch (std::runtime_error const&) {
            hasThrown = true;
        }
        bool const stays = isMarked("/a/b.mov") && !cache.quarantineContains(L"/a/b.mov", 1) &&
                           !cache.isCorrupt(L"/a/b.mov", 1) && cache.getOpenCount() == 0 &&
                           calls->count("fm.release") == 1;
        calls->clear();
        auto waiting = startWaiting();
        bool const waits = calls->count("fm.exists") == 0;
        std::_Exit(hasThrown && stays && waits ? 0 : 1);
    }
};

TEST_F(ThrowingReaderDeathTest, OfCanOpenLeavesTheNameHeldAndTheMarkSet) {
    reader->onCanOpen = [] { throw std::runtime_error("canOpen"); };
    EXPECT_EXIT(exitAfterThrow(), ::testing::ExitedWithCode(0), "");
}

TEST_F(ThrowingReaderDeathTest, OfGetReadableTypesLeavesTheNameHeldAndTheMarkSet) {
    reader->onReadableTypes = [](auto const&, auto const&) -> std::uint32_t {
        throw std::runtime_error("types");
    };
    EXPECT_EXIT(exitAfterThrow(), ::testing::ExitedWithCode(0), "");
}

TEST_F(ThrowingReaderDeathTest, OfTheSecondOpenLeavesTheNameHeldAndTheMarkSet) {
    reader->canOpenFiles = false;
    reader->onOpen = [](auto const&) { throw std::runtime_error("reopen"); };
    addReader("B");
    EXPECT_EXIT(exitAfterThrow(), ::testing::ExitedWithCode(0), "");
}

TEST_F(ThrowingReaderDeathTest, DoesNotHoldUpOtherFiles) {
    addFile("/a/c.mov");
    EXPECT_EXIT(
        {
            reader->onCanOpen = [] { throw std::runtime_error("canOpen"); };
            EXPECT_ANY_THROW(static_cast<void>(openIn(cache, "/a/b.mov")));
            reader->onCanOpen = nullptr;
            std::_Exit(openIn(cache, "/a/c.mov") ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(PlayFileCacheThreadsTest, GoOnAfterAnExceptionOfTheFirstPassIsCaught) {
    reader->onOpen = [](auto const&) { throw std::runtime_error("open"); };
    EXPECT_FALSE(openIn(cache, "/a/b.mov"));
    reader->onOpen = nullptr;
    cache.reOpen(L"/a/b.mov");
    EXPECT_TRUE(openIn(cache, "/a/b.mov"));
}

/// The bounds of the shared cache are read once in a process.
class CacheSizeDeathTest : public CacheFixture {
protected:
    CacheSizeDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Opens ten files and reclaims; ends the process with 0 if so many were open each time.
    [[noreturn]] void exitWithCounts(std::size_t afterOpening, std::size_t afterReclaiming) {
        addReader("A");
        for (char const name : std::string("abcdefghij")) {
            addFile(std::string(1, name));
            static_cast<void>(openFile(std::string(1, name)));
        }
        bool const isOpenAsExpected = PlayFileCache::Shared()->getOpenCount() == afterOpening;
        setConfigInt("playfileCacheSizeMin", 9);
        PlayFileCache::Shared()->limitUsage();
        bool const isLeftAsExpected = PlayFileCache::Shared()->getOpenCount() == afterReclaiming;
        std::_Exit(isOpenAsExpected && isLeftAsExpected ? 0 : 1);
    }
};

TEST_F(CacheSizeDeathTest, IsTwoAndFour) {
    EXPECT_EXIT(exitWithCounts(5, 2), ::testing::ExitedWithCode(0), "");
}

TEST_F(CacheSizeDeathTest, IsAsTheSettingsSayOnce) {
    EXPECT_EXIT(
        {
            setConfigInt("playfileCacheSizeMin", 3);
            setConfigInt("playfileCacheSizeMax", 6);
            exitWithCounts(7, 3);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
