/// Closing and forgetting clips, and asking their files for a size.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "playfile/playfile.h"
#include "tests/fakes/RecordingCodecKeeper.h"
#include "tests/files/ClipsFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PlayFileCacheClipsTest : public ClipsFixture {};

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

TEST_F(PlayFileCacheClipsTest, CloseTakesTheFirstChannelAgainBehindTheHighestNumber) {
    addEdit(256, 0);
    cache().close(edit, mediaOriginal);
    std::vector<std::string> const finds = catalogue.finds();
    ASSERT_EQ(finds.size(), 257U);
    EXPECT_EQ(finds.back(), "V000 1");
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

// --- sizes

/// A clip of two files that change a size.
class SizeTest : public ClipsFixture {
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
