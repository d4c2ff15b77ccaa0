#include "files/QuarantinedFiles.h"

#include <future>

#include "tests/fakes/CacheFixture.h"
#include "toolkit/catalogue/Repository.h"

namespace {

class QuarantinedFilesTest : public CacheFixture {
protected:
    static bool contains(std::string const& path, OpenType type = OpenType::video) {
        return QuarantinedFiles::contains(wide(path), type);
    }
    static void add(std::string const& path, OpenType type = OpenType::video) {
        QuarantinedFiles::add(wide(path), type);
    }
    bool isCorrupt(std::string const& path, OpenType type) {
        return PlayFileCache::Shared()->isCorrupt(wide(path), type);
    }
    /// Makes opens of the file fail for one type.
    void failToOpen(std::string const& path, OpenType type) {
        addFile(path);
        EXPECT_FALSE(openFile(path, type));
    }
};

TEST_F(QuarantinedFilesTest, KeyIsTheWordAnalysingABlankAndTheName) {
    EXPECT_EQ(QuarantinedFiles::getAnalysisPrefKey(L"/a/b.mov", OpenType::video).str(), "Analysing /a/b.mov");
}

TEST_F(QuarantinedFilesTest, KeyIsTheSameForEveryType) {
    EXPECT_EQ(QuarantinedFiles::getAnalysisPrefKey(L"/a/b.mov", OpenType::audio).str(), "Analysing /a/b.mov");
}

TEST_F(QuarantinedFilesTest, KeyHoldsTheNameInUtf8) {
    EXPECT_EQ(QuarantinedFiles::getAnalysisPrefKey(L"/\u00e4\u65e5\U0001F3AC", OpenType::video).str(),
              "Analysing /\u00e4\u65e5\U0001F3AC");
}

TEST_F(QuarantinedFilesTest, MarkIsABooleanPreference) {
    add("/a/b.mov");
    EXPECT_EQ(calls->all(), CallLog::Lines{"prefs.set Analysing /a/b.mov true"});
}

TEST_F(QuarantinedFilesTest, MarkSetForVideoCountsForAudioAndRemovingItForAudioRemovesItForBoth) {
    add("/a/b.mov", OpenType::video);
    EXPECT_TRUE(contains("/a/b.mov", OpenType::audio));
    QuarantinedFiles::remove(wide("/a/b.mov"), OpenType::audio);
    EXPECT_FALSE(contains("/a/b.mov", OpenType::video));
}

TEST_F(QuarantinedFilesTest, ReadsThePreferencesAtEveryQuery) {
    EXPECT_FALSE(contains("/a/b.mov"));
    preferences.setPreference("Analysing /a/b.mov", true);
    EXPECT_TRUE(contains("/a/b.mov"));
    preferences.setPreference("Analysing /a/b.mov", false);
    EXPECT_FALSE(contains("/a/b.mov"));
    EXPECT_EQ(calls->count("prefs.get Analysing /a/b.mov false"), 3U);
}

TEST_F(QuarantinedFilesTest, NeverHoldsTheEmptyNameAndWritesNothingForIt) {
    add("");
    EXPECT_FALSE(contains(""));
    QuarantinedFiles::remove(wide(""), OpenType::video);
    EXPECT_EQ(calls->all(), CallLog::Lines{});
}

TEST_F(QuarantinedFilesTest, AsksForVideoAndOnlyThenForAudio) {
    EXPECT_FALSE(QuarantinedFiles::contains(wide("/a/b.mov")));
    EXPECT_EQ(calls->count("prefs.get"), 2U);
    add("/a/b.mov");
    EXPECT_TRUE(QuarantinedFiles::contains(wide("/a/b.mov")));
    EXPECT_EQ(calls->count("prefs.get"), 3U);
}

TEST_F(QuarantinedFilesTest, RemovesForVideoAndForAudio) {
    add("/a/b.mov");
    QuarantinedFiles::remove(wide("/a/b.mov"));
    EXPECT_EQ(calls->count("prefs.remove Analysing /a/b.mov"), 2U);
}

TEST_F(QuarantinedFilesTest, FindsTheFileOfAnyCookieOfTheClipByItsFirstPicture) {
    addClip("/a/b.mov", 'V', 5);
    add("/a/b.mov");
    EXPECT_TRUE(QuarantinedFiles::contains(makeCookie(5, 'S', 3), OpenType::audio));
    EXPECT_TRUE(QuarantinedFiles::contains(makeCookie(5, 'E', 255)));
    QuarantinedFiles::remove(makeCookie(5, 'S', 3), OpenType::audio);
    EXPECT_FALSE(contains("/a/b.mov"));
}

TEST_F(QuarantinedFilesTest, RemovesACookiesMarkForVideoAndForAudio) {
    addClip("/a/b.mov", 'V', 5);
    QuarantinedFiles::remove(makeCookie(5, 'S', 3));
    EXPECT_EQ(calls->count("prefs.remove Analysing /a/b.mov"), 2U);
}

TEST_F(QuarantinedFilesTest, LooksOnlyAtTheOriginalOfACookie) {
    catalogue.addFile(makeCookie(5), "/a/proxy.mov", levelProxy);
    add("/a/proxy.mov");
    EXPECT_FALSE(QuarantinedFiles::contains(makeCookie(5)));
}

TEST_F(QuarantinedFilesTest, HoldsNothingForACookieWithoutAFile) {
    EXPECT_FALSE(QuarantinedFiles::contains(makeCookie(6), OpenType::video));
    EXPECT_FALSE(QuarantinedFiles::contains(makeCookie(6)));
    QuarantinedFiles::remove(makeCookie(6));
    EXPECT_EQ(calls->all(), CallLog::Lines{});
}

TEST_F(QuarantinedFilesTest, RemovingAnUnmarkedFileLetsItsNextOpenTryTheDiskAgain) {
    failToOpen("/a/b.mov", OpenType::video);
    preferences.removePreference("Analysing /a/b.mov");
    calls->clear();
    QuarantinedFiles::remove(wide("/a/b.mov"), OpenType::audio);
    EXPECT_FALSE(isCorrupt("/a/b.mov", OpenType::video));
    EXPECT_FALSE(openFile("/a/b.mov"));
    EXPECT_EQ(calls->count("fm.exists"), 1U);
}

TEST_F(QuarantinedFilesTest, APrivateCacheForgetsTheFailuresOfTheSharedOne) {
    failToOpen("/a/b.mov", OpenType::video);
    PlayFileCache own(2, 4);
    EXPECT_FALSE(openIn(own, "/a/b.mov"));
    own.removeFromQuarantine(wide("/a/b.mov"), OpenType::video);
    EXPECT_FALSE(isCorrupt("/a/b.mov", OpenType::video));
    EXPECT_TRUE(own.isCorrupt(wide("/a/b.mov"), OpenType::video));
}

/// What this process knows of failed opens.
using IsCorruptTest = QuarantinedFilesTest;

TEST_F(IsCorruptTest, IsFalseForBothMediaWhenOnlyVideoFailed) {
    failToOpen("/a/b.mov", OpenType::video);
    EXPECT_TRUE(isCorrupt("/a/b.mov", OpenType::video));
    EXPECT_FALSE(isCorrupt("/a/b.mov", OpenType::audio));
    EXPECT_FALSE(isCorrupt("/a/b.mov", OpenType::both));
    EXPECT_TRUE(isCorrupt("/a/b.mov", OpenType::unknown));
}

TEST_F(IsCorruptTest, KnowsAFailedAudioOpen) {
    failToOpen("/a/b.mov", OpenType::audio);
    EXPECT_FALSE(isCorrupt("/a/b.mov", OpenType::video));
    EXPECT_TRUE(isCorrupt("/a/b.mov", OpenType::audio));
    EXPECT_TRUE(isCorrupt("/a/b.mov", 77));
}

TEST_F(IsCorruptTest, IsTrueForBothMediaWhenBothFailed) {
    failToOpen("/a/b.mov", OpenType::video);
    failToOpen("/a/b.mov", OpenType::audio);
    EXPECT_TRUE(isCorrupt("/a/b.mov", OpenType::both));
}

TEST_F(IsCorruptTest, DoesNotLookAtAFailedOpenForBothMedia) {
    failToOpen("/a/b.mov", OpenType::both);
    for (int const type : {1, 2, 3, 0}) {
        EXPECT_FALSE(isCorrupt("/a/b.mov", type)) << type;
    }
}

TEST_F(IsCorruptTest, DoesNotAskThePreferences) {
    add("/a/b.mov");
    EXPECT_FALSE(isCorrupt("/a/b.mov", OpenType::video));
    EXPECT_EQ(calls->count("prefs.get"), 0U);
}

/// What becomes of a mark in an open.
class MarkLifeTest : public QuarantinedFilesTest {
protected:
    MarkLifeTest() { addFile("/a/b.mov"); }
    Ox::Ptr<ScriptedReader> reader = addReader("A");
};

TEST_F(MarkLifeTest, IsSetBeforeAnyReaderIsAsked) {
    bool wasMarked = false;
    reader->onCanOpen = [&] { wasMarked = isMarked("/a/b.mov"); };
    EXPECT_TRUE(openFile("/a/b.mov"));
    EXPECT_TRUE(wasMarked);
}

TEST_F(MarkLifeTest, GoesWhenTheOpenHasSucceeded) {
    EXPECT_TRUE(openFile("/a/b.mov"));
    EXPECT_TRUE(preferences.all().empty());
}

TEST_F(MarkLifeTest, StaysWhenTheOpenHasFailed) {
    reader->canOpenFiles = false;
    EXPECT_FALSE(openFile("/a/b.mov"));
    EXPECT_TRUE(isMarked("/a/b.mov"));
    EXPECT_TRUE(contains("/a/b.mov"));
}

TEST_F(MarkLifeTest, IsLeftAloneByAnOpenOfAMissingFile) {
    fileManager.removeFile("/a/b.mov");
    add("/a/b.mov");
    EXPECT_FALSE(openFile("/a/b.mov"));
    EXPECT_TRUE(isMarked("/a/b.mov"));
    EXPECT_FALSE(openFile("/a/other.mov"));
    EXPECT_FALSE(isMarked("/a/other.mov"));
}

TEST_F(MarkLifeTest, NeverRefusesAnOpenAndGoesWhenThatSucceeds) {
    add("/a/b.mov");
    EXPECT_TRUE(openFile("/a/b.mov"));
    EXPECT_FALSE(isMarked("/a/b.mov"));
    EXPECT_EQ(calls->count("quarantined"), 0U);
}

TEST_F(MarkLifeTest, OfAFailedAudioOpenIsWipedByAGoodVideoOpen) {
    reader->readableTypes = OpenType::video;
    EXPECT_FALSE(openFile("/a/b.mov", OpenType::audio));
    EXPECT_TRUE(openFile("/a/b.mov", OpenType::video));
    EXPECT_FALSE(isMarked("/a/b.mov"));
    EXPECT_FALSE(isCorrupt("/a/b.mov", OpenType::audio)) << "the failed open is forgotten with it";
}

TEST_F(MarkLifeTest, OfAnEditCookieStaysAsItCanNeverBeOpened) {
    catalogue.addFile(makeCookie(5, 'E', 0), "/a/b.mov");
    EXPECT_FALSE(PlayFileCache::Shared()->open(makeCookie(5, 'E', 0), levelOriginal, 0));
    EXPECT_TRUE(isMarked("/a/b.mov"));
}

TEST_F(MarkLifeTest, IsUnderTheCallersNameNotTheMountedOne) {
    fileManager.mount = [](std::string const& name) { return "/mounted" + name; };
    reader->canOpenFiles = false;
    EXPECT_FALSE(openFile("/a/b.mov"));
    EXPECT_TRUE(isMarked("/a/b.mov"));
    EXPECT_FALSE(isMarked("/mounted/a/b.mov"));
}

TEST_F(MarkLifeTest, IsNotSeenWhileAnotherThreadOpensTheFileAndIsAgainWhenThatHasFailed) {
    Gate reading(false);
    reader->onOpen = [&](auto const&) { reading.pass(); };
    reader->opens = [](auto const&) { return false; };
    auto opening = std::async(std::launch::async, [&] { return openFile("/a/b.mov"); });
    ASSERT_TRUE(reading.waitForArrivals(1));
    EXPECT_TRUE(isMarked("/a/b.mov"));
    EXPECT_FALSE(contains("/a/b.mov"));
    reading.open();
    EXPECT_FALSE(opening.get());
    EXPECT_TRUE(contains("/a/b.mov"));
}

TEST_F(MarkLifeTest, OfAnotherFileIsSeenWhileAFileIsOpened) {
    Gate reading(false);
    add("/a/c.mov");
    reader->onOpen = [&](auto const&) { reading.pass(); };
    auto opening = std::async(std::launch::async, [&] { return openFile("/a/b.mov"); });
    ASSERT_TRUE(reading.waitForArrivals(1));
    EXPECT_TRUE(contains("/a/c.mov"));
    reading.open();
    EXPECT_TRUE(opening.get());
}

}  // namespace
