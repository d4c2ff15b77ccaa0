/// Closing, forgetting and renaming clips, and asking their files for a size.
#include <gmock/gmock.h>

#include "playfile/playfile.h"
#include "tests/fakes/CacheFixture.h"
#include "tests/fakes/RecordingCodecKeeper.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

DecodeFormat const original(levelOriginal);
DecodeFormat const proxy(levelProxy);

class PlayFileCacheClipsTest : public CacheFixture {
protected:
    /// A clip with channels of which every file is there.
    Cookie addEdit(std::size_t videoChannels, std::size_t audioChannels) {
        catalogue.addEdit(edit, nullptr);
        catalogue.setChannels(edit, videoChannels, audioChannels);
        return edit;
    }
    Cookie channel(CookieType type, unsigned char number) const { return convertCookie(edit, type, number); }
    /// Files a channel under both levels.
    void addChannel(CookieType type, unsigned char number, std::string const& path) {
        addFile(path);
        addFile(path + ".proxy");
        catalogue.addFile(channel(type, number), path);
        catalogue.addFile(channel(type, number), path + ".proxy", levelProxy);
    }
    static Ox::Ptr<FileReadInstance> open(Cookie const& cookie, DecodeFormat const& format = original) {
        return cache().open(cookie, format, 0);
    }
    static bool isOpen(Cookie const& cookie, DecodeFormat const& format = original) {
        return static_cast<bool>(cache().isOpen(cookie, format, 0));
    }
    static PlayFileCache& cache() { return *PlayFileCache::Shared(); }
    void failOpens() {
        reader->opens = [](ScriptedReader::OpenCall const&) { return false; };
    }

    Cookie const edit = makeCookie(1, 'E', Cookie::wholeClip);
    Ox::Ptr<ScriptedReader> reader = addReader("A");
};

// --- remove

TEST_F(PlayFileCacheClipsTest, RemoveForgetsTheFileAndPurgesIt) {
    Cookie const cookie = addClip("/m/a.mov");
    static_cast<void>(open(cookie));
    calls->clear();
    EXPECT_FALSE(cache().remove(cookie, original));
    EXPECT_FALSE(isOpen(cookie));
    EXPECT_EQ(calls->count("/m/a.mov.purge"), 1U);
    EXPECT_EQ(cache().getOpenCount(), 0U);
}

TEST_F(PlayFileCacheClipsTest, RemoveForgetsAFileThatIsInUse) {
    Cookie const cookie = addClip("/m/a.mov");
    Ox::Ptr<FileReadInstance> const held = open(cookie);
    cache().remove(cookie, original);
    EXPECT_FALSE(isOpen(cookie));
    EXPECT_EQ(reader->aliveCount(), 1U);
}

TEST_F(PlayFileCacheClipsTest, RemoveClearsAFailedOpen) {
    Cookie const cookie = addClip("/m/a.mov");
    failOpens();
    EXPECT_FALSE(open(cookie));
    cache().remove(cookie, original);
    EXPECT_FALSE(cache().isCorrupt(wide("/m/a.mov"), OpenType::video));
}

TEST_F(PlayFileCacheClipsTest, RemoveTouchesTheFormatsFileOnly) {
    addChannel('V', 0, "/m/a.mov");
    static_cast<void>(open(channel('V', 0)));
    static_cast<void>(open(channel('V', 0), proxy));
    cache().remove(channel('V', 0), proxy);
    EXPECT_TRUE(isOpen(channel('V', 0)));
    EXPECT_FALSE(isOpen(channel('V', 0), proxy));
}

TEST_F(PlayFileCacheClipsTest, RemoveOfAnUnknownCookieDoesNothing) {
    EXPECT_FALSE(cache().remove(makeCookie(9), original));
}

TEST_F(PlayFileCacheClipsTest, RemoveByNameForgetsTheFileForAllMedia) {
    addFile("/m/a.mov");
    static_cast<void>(openFile("/m/a.mov", OpenType::video));
    static_cast<void>(openFile("/m/a.mov", OpenType::audio));
    addFile("/m/b.mov");
    static_cast<void>(openFile("/m/b.mov", OpenType::video));
    calls->clear();
    cache().remove(wide("/m/a.mov"));
    EXPECT_EQ(cache().getOpenCount(), 1U);
    EXPECT_EQ(calls->count("/m/a.mov.purge"), 2U);
    EXPECT_EQ(calls->count("/m/b.mov.purge"), 0U);
}

TEST_F(PlayFileCacheClipsTest, RemoveByNameLeavesAFailedOpen) {
    addFile("/m/a.mov");
    failOpens();
    EXPECT_FALSE(openFile("/m/a.mov"));
    cache().remove(wide("/m/a.mov"));
    EXPECT_TRUE(cache().isCorrupt(wide("/m/a.mov"), OpenType::video));
}

TEST_F(PlayFileCacheClipsTest, RemoveByNameComparesTheNameThatTheReaderGot) {
    fileManager.mount = [](std::string const& name) { return "/mounted" + name; };
    addFile("/m/a.mov");
    static_cast<void>(openFile("/m/a.mov"));
    cache().remove(wide("/m/a.mov"));
    EXPECT_EQ(cache().getOpenCount(), 1U);
    cache().remove(wide("/mounted/m/a.mov"));
    EXPECT_EQ(cache().getOpenCount(), 0U);
}

// --- close

TEST_F(PlayFileCacheClipsTest, CloseOfAChannelClosesTheMediaThatAreNamed) {
    addChannel('V', 0, "/m/a.mov");
    static_cast<void>(open(channel('V', 0)));
    static_cast<void>(open(channel('V', 0), proxy));
    cache().close(channel('V', 0), mediaProxy);
    EXPECT_TRUE(isOpen(channel('V', 0)));
    EXPECT_FALSE(isOpen(channel('V', 0), proxy));
    cache().close(channel('V', 0), mediaOriginal);
    EXPECT_FALSE(isOpen(channel('V', 0)));
}

TEST_F(PlayFileCacheClipsTest, CloseOfAnEditLooksAtOneVideoChannelMoreThanThereAre) {
    addEdit(2, 0);
    cache().close(edit, mediaOriginal);
    EXPECT_THAT(catalogue.finds(), ElementsAre("V000 1", "V001 1", "V002 1"));
}

TEST_F(PlayFileCacheClipsTest, CloseOfAnEditLooksAtItsAudioChannelsFromOne) {
    addEdit(0, 2);
    cache().close(edit, mediaOriginal);
    EXPECT_THAT(catalogue.finds(), ElementsAre("V000 1", "S001 1", "S002 1"));
}

TEST_F(PlayFileCacheClipsTest, CloseOfAnEditWithoutAudioTouchesNoSound) {
    addEdit(1, 0);
    cache().close(edit, mediaAll);
    EXPECT_THAT(catalogue.finds(), ElementsAre("V000 1", "V000 2", "V001 1", "V001 2"));
}

TEST_F(PlayFileCacheClipsTest, CloseOfAnEditClosesItsFiles) {
    addEdit(1, 1);
    addChannel('V', 0, "/m/v.mov");
    addChannel('S', 1, "/m/s.wav");
    static_cast<void>(open(channel('V', 0)));
    static_cast<void>(open(channel('S', 1)));
    cache().close(edit, mediaAll);
    EXPECT_EQ(cache().getOpenCount(), 0U);
}

TEST_F(PlayFileCacheClipsTest, CloseOfNoMediaOpensTheEditAndClosesNothing) {
    addEdit(1, 1);
    cache().close(edit, eMediaTypes{0});
    EXPECT_EQ(calls->count("edit.open"), 1U);
    EXPECT_THAT(catalogue.finds(), IsEmpty());
}

TEST_F(PlayFileCacheClipsTest, CloseOpensAnEditOnceAndClosesIt) {
    addEdit(1, 1);
    cache().close(edit, mediaAll);
    EXPECT_EQ(calls->count("edit.open"), 1U);
    EXPECT_EQ(catalogue.openEdits(), 0);
}

TEST_F(PlayFileCacheClipsTest, CloseOfAnUnknownEditDoesNothing) {
    cache().close(edit, mediaAll);
    EXPECT_THAT(catalogue.finds(), IsEmpty());
}

TEST_F(PlayFileCacheClipsTest, AnEditOfManyChannelsIsClosedWhole) {
    addEdit(300, 0);
    cache().close(edit, mediaOriginal);
    EXPECT_EQ(catalogue.finds().size(), 301U);
}

// --- entry points

TEST_F(PlayFileCacheClipsTest, CloseFilesForgetsTheClipAndThenFlushesTheDecoders) {
    Cookie const cookie = addClip("/m/a.mov");
    static_cast<void>(open(cookie));
    RecordingCodecKeeper keeper(calls);
    calls->clear();
    playfile_close_files(cookie, mediaAll);
    EXPECT_FALSE(isOpen(cookie));
    EXPECT_THAT(calls->all(), ElementsAre("/m/a.mov.purge", "/m/a.mov.destroy", "codecs.flush"));
}

TEST_F(PlayFileCacheClipsTest, CloseFilesOfNoMediaOnlyFlushesTheDecoders) {
    Cookie const cookie = addClip("/m/a.mov");
    static_cast<void>(open(cookie));
    RecordingCodecKeeper keeper(calls);
    calls->clear();
    playfile_close_files(cookie, eMediaTypes{0});
    EXPECT_TRUE(isOpen(cookie));
    EXPECT_THAT(calls->all(), ElementsAre("codecs.flush"));
}

// --- rename

/// Clips whose files bear their identity; files are renamed by a file manager that says so.
class RenameTest : public PlayFileCacheClipsTest {
protected:
    /// Files a channel under the name that its cookie gives it.
    void addNamed(CookieType type, unsigned char number, std::string const& extension) {
        Cookie const cookie = channel(type, number);
        std::string const path = "/media/" + cookie.asString().str() + extension;
        addFile(path);
        catalogue.addFile(cookie, path);
        catalogue.addEntry(cookie, MediaFileInfo(MaterialFilename(DriveId::none, wide(path)), 100));
    }
    Cookie renamed(CookieType type, unsigned char number) const { return convertCookie(to, type, number); }
    static std::string nameOf(Cookie const& cookie) { return cookie.asString().str(); }
    CallLog::Lines renames() const { return calls->with("fm.rename"); }

    Cookie const to = makeCookie(2, 'E', Cookie::wholeClip);
};

TEST_F(RenameTest, GivesTheFileTheNewIdentity) {
    addNamed('V', 0, ".mov");
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(renames(), ElementsAre("fm.rename /media/" + nameOf(channel('V', 0)) + ".mov /media/" +
                                       nameOf(renamed('V', 0)) + ".mov 0"));
}

TEST_F(RenameTest, FilesTheNewNameInTheCatalogue) {
    addNamed('V', 0, ".mov");
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(calls->with("catalogue."),
                ElementsAre("catalogue.removeFile " + nameOf(channel('V', 0)) + " 3 0",
                            "catalogue.addFile " + nameOf(renamed('V', 0)) + " /media/" +
                                nameOf(renamed('V', 0)) + ".mov 0"));
}

TEST_F(RenameTest, RenamesBeforeTheCatalogueIsChanged) {
    addNamed('V', 0, ".mov");
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    CallLog::Lines const all = calls->all();
    EXPECT_LT(std::find(all.begin(), all.end(), renames().front()),
              std::find(all.begin(), all.end(), calls->with("catalogue.").front()));
}

TEST_F(RenameTest, ForgetsTheOpenFile) {
    addNamed('V', 0, ".mov");
    static_cast<void>(open(channel('V', 0)));
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_EQ(cache().getOpenCount(), 0U);
}

TEST_F(RenameTest, APrivateCacheForgetsItInTheSharedOne) {
    addNamed('V', 0, ".mov");
    static_cast<void>(open(channel('V', 0)));
    PlayFileCache other(2, 4);
    EXPECT_TRUE(other.renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_EQ(cache().getOpenCount(), 0U);
}

TEST_F(RenameTest, AnUnknownClipIsNotRenamed) {
    EXPECT_FALSE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(renames(), IsEmpty());
}

TEST_F(RenameTest, AFileWithoutLinkNameIsNotRenamedButForgotten) {
    addNamed('V', 0, ".mov");
    catalogue.addEntry(channel('V', 0), MediaFileInfo());
    static_cast<void>(open(channel('V', 0)));
    EXPECT_FALSE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_EQ(cache().getOpenCount(), 0U);
    EXPECT_THAT(renames(), IsEmpty());
}

TEST_F(RenameTest, AFailedRenameLeavesTheCatalogueAsItWas) {
    addNamed('V', 0, ".mov");
    fileManager.renames = false;
    EXPECT_FALSE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(calls->with("catalogue."), IsEmpty());
}

TEST_F(RenameTest, OfALinkedFileTheLinkIsRenamed) {
    MaterialFilename const place(DriveId::none, wide("/media/" + nameOf(channel('V', 0)) + ".link"));
    catalogue.addEntry(channel('V', 0), MediaFileInfo(place, wide("/far/away.mov"), 100));
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(renames(), ElementsAre("fm.rename /media/" + nameOf(channel('V', 0)) + ".link /media/" +
                                       nameOf(renamed('V', 0)) + ".link 0"));
    EXPECT_EQ(narrow(catalogue.findEntryForCookie(renamed('V', 0))->physicalFilename), "/far/away.mov");
}

TEST_F(RenameTest, SoundTakesItsWaveformAlong) {
    addNamed('S', 1, ".wav");
    EXPECT_TRUE(cache().renameMediaFile(channel('S', 1), renamed('S', 1)));
    ASSERT_EQ(renames().size(), 2U);
    EXPECT_EQ(renames()[1], "fm.rename " + narrow(getWaveformDataFileFor(channel('S', 1))) + " " +
                                narrow(getWaveformDataFileFor(renamed('S', 1))) + " 0");
}

TEST_F(RenameTest, AWaveformThatCannotBeRenamedDoesNotCount) {
    addNamed('S', 1, ".wav");
    fileManager.renamesAtMost = 1;
    EXPECT_TRUE(cache().renameMediaFile(channel('S', 1), renamed('S', 1)));
}

TEST_F(RenameTest, AClipIsRenamedChannelByChannel) {
    addEdit(2, 1);
    addNamed('V', 0, ".mov");
    addNamed('V', 1, ".mov");
    addNamed('S', 1, ".wav");
    EXPECT_TRUE(cache().renameMediaFiles(edit, to));
    EXPECT_EQ(calls->count("catalogue.addFile"), 3U);
    EXPECT_EQ(catalogue.openEdits(), 0);
}

TEST_F(RenameTest, AClipClosesItsFilesFirst) {
    addEdit(1, 0);
    addNamed('V', 0, ".mov");
    static_cast<void>(open(channel('V', 0)));
    EXPECT_TRUE(cache().renameMediaFiles(edit, to));
    EXPECT_EQ(calls->count(".purge"), 1U);
}

TEST_F(RenameTest, ATakenIdentityIsRefusedBeforeAnythingIsClosed) {
    addEdit(1, 0);
    addNamed('V', 0, ".mov");
    catalogue.addEntry(renamed('V', 5), MediaFileInfo());
    static_cast<void>(open(channel('V', 0)));
    EXPECT_FALSE(cache().renameMediaFiles(edit, to));
    EXPECT_TRUE(isOpen(channel('V', 0)));
    EXPECT_EQ(calls->count("edit.open " + nameOf(edit)), calls->count("edit.close"));
}

TEST_F(RenameTest, AnUnknownEditIsNotRenamed) {
    EXPECT_FALSE(cache().renameMediaFiles(edit, to));
}

TEST_F(RenameTest, AFailureStopsNothingAndUndoesNothing) {
    addEdit(3, 0);
    addNamed('V', 0, ".mov");
    addNamed('V', 2, ".mov");
    EXPECT_FALSE(cache().renameMediaFiles(edit, to));
    EXPECT_EQ(calls->count("catalogue.addFile"), 2U);
}

TEST_F(RenameTest, DoesNotGoPastTheLastVideoChannel) {
    addEdit(1, 0);
    addNamed('V', 0, ".mov");
    addNamed('V', 1, ".mov");
    EXPECT_TRUE(cache().renameMediaFiles(edit, to));
    EXPECT_EQ(renames().size(), 1U);
}

// --- sizes

/// A clip of two files that change a size.
class SizeTest : public PlayFileCacheClipsTest {
protected:
    SizeTest() {
        addEdit(2, 0);
        for (unsigned char number : {0, 1}) {
            addChannel('V', number, pathOf(number));
            catalogue.addEntry(channel('V', number), infoOf(number));
        }
        catalogue.setReferences(edit, {channel('V', 0), channel('V', 1)});
    }
    static std::string pathOf(unsigned number) { return "/m/" + std::to_string(number) + ".mov"; }
    static MediaFileInfo infoOf(unsigned number) {
        return MediaFileInfo(MaterialFilename(DriveId::none, wide(pathOf(number))), 100);
    }
    unsigned recalculate(unsigned size) {
        cache().recalculateSize(edit, 7, size);
        return size;
    }
};

TEST_F(SizeTest, WithoutAnOpenFileTheSizeStays) {
    EXPECT_EQ(recalculate(1000), 1000U);
}

TEST_F(SizeTest, EachOpenFileSeesWhatTheOneBeforeItLeft) {
    static_cast<void>(open(channel('V', 0)));
    static_cast<void>(open(channel('V', 1)));
    std::vector<unsigned> seen;
    reader->script->recalculate = [&](unsigned value, unsigned& size) {
        EXPECT_EQ(value, 7U);
        seen.push_back(size);
        size -= 10;
    };
    EXPECT_EQ(recalculate(1000), 980U);
    EXPECT_THAT(seen, ElementsAre(1000, 990));
}

/// A file that notes when it is asked for a size.
class AskedFile : public ScriptedFile {
public:
    explicit AskedFile(std::vector<FileReadInstance*>& asked)
        : ScriptedFile("asked", OpenType::video, std::make_shared<FileScript>()), asked_(asked) {
        metadata->videoSampleCount = 100;
        metadata->videoInfoCount = 1;
    }
    void recalculateSize(unsigned, unsigned&) override { asked_.push_back(this); }

private:
    std::vector<FileReadInstance*>& asked_;
};

/// The file that the cache has first, and has had first, lies behind the other one.
TEST_F(SizeTest, FilesAreAskedInTheOrderOfTheirAddresses) {
    std::vector<FileReadInstance*> asked;
    Ox::Ptr<FileReadInstance> low = Ox::makePtr<AskedFile>(asked);
    Ox::Ptr<FileReadInstance> high = Ox::makePtr<AskedFile>(asked);
    if (high < low) {
        std::swap(low, high);
    }
    high->filename = wide(pathOf(0));
    low->filename = wide(pathOf(1));
    reader->make = [&](auto const& call) { return narrow(call.name) == pathOf(0) ? high : low; };
    static_cast<void>(open(channel('V', 0)));
    static_cast<void>(open(channel('V', 1)));
    recalculate(1000);
    EXPECT_THAT(asked, ElementsAre(low.get(), high.get()));
}

TEST_F(SizeTest, TheSizeOnlyShrinks) {
    static_cast<void>(open(channel('V', 0)));
    reader->script->recalculate = [](unsigned, unsigned& size) { size += 10; };
    EXPECT_EQ(recalculate(1000), 1000U);
}

TEST_F(SizeTest, FilesOfOtherClipsAreNotAsked) {
    addFile("/m/other.mov");
    static_cast<void>(openFile("/m/other.mov"));
    reader->script->recalculate = [](unsigned, unsigned& size) { size = 0; };
    EXPECT_EQ(recalculate(1000), 1000U);
}

TEST_F(SizeTest, AFileThatIsNotAvailableIsNotAsked) {
    MediaFileInfo info = infoOf(0);
    info.status = 1;
    catalogue.addEntry(channel('V', 0), info);
    static_cast<void>(open(channel('V', 0)));
    reader->script->recalculate = [](unsigned, unsigned& size) { size = 0; };
    EXPECT_EQ(recalculate(1000), 1000U);
}

TEST_F(SizeTest, ProxiesAreAskedToo) {
    MediaFileInfo proxyFile(MaterialFilename(DriveId::none, wide(pathOf(0) + ".proxy")), 10);
    proxyFile.isProxyFile = true;
    catalogue.addEntry(channel('V', 0), infoOf(0), {proxyFile});
    static_cast<void>(open(channel('V', 0), proxy));
    reader->script->recalculate = [](unsigned, unsigned& size) { size = 5; };
    EXPECT_EQ(recalculate(1000), 5U);
}

TEST_F(SizeTest, TheEditIsClosedAgain) {
    recalculate(1000);
    EXPECT_EQ(catalogue.openEdits(), 0);
}

TEST_F(SizeTest, AnUnknownEditLeavesTheSize) {
    unsigned size = 1000;
    cache().recalculateSize(makeCookie(9, 'E', Cookie::wholeClip), 7, size);
    EXPECT_EQ(size, 1000U);
}

}  // namespace
