/// Which files hold a clip, and what clips refer to.
#include "tests/material/MaterialFixture.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MaterialManagerTest : public MaterialFixture {
protected:
    /// A clip with a file of the whole video.
    void addVideoFile(std::string const& path, unsigned number = 1) {
        media_.addEntry(makeCookie(number, 'V', Cookie::wholeClip), own(path));
    }
    void addChannels(Cookie const& cookie, std::uint32_t videoCount, std::uint32_t audioCount,
                     std::string const& used) {
        addClip(cookie, {.channels = used, .videoCount = videoCount, .audioCount = audioCount});
    }
};

TEST_P(MaterialManagerTest, FindsTheFileOfAnImage) {
    addClip(clip(), {.isImage = true});
    addVideoFile("/m/a.png");
    EXPECT_EQ(narrow(MaterialManager::findFileForImageClip(clip())), "/m/a.png");
}

TEST_P(MaterialManagerTest, FindsNoImageFileOfAClipThatIsNone) {
    addClip(clip());
    addVideoFile("/m/a.mov");
    EXPECT_TRUE(MaterialManager::findFileForImageClip(clip()).empty());
}

TEST_P(MaterialManagerTest, FindsNoImageFileOfAClipThatDoesNotOpen) {
    addVideoFile("/m/a.png");
    EXPECT_TRUE(MaterialManager::findFileForImageClip(clip()).empty());
}

TEST_P(MaterialManagerTest, FindsTheVideoFileWithoutOpeningTheClip) {
    addVideoFile("/m/a.mov");
    EXPECT_EQ(narrow(MaterialManager::findFileForVideoClip(clip())), "/m/a.mov");
    EXPECT_THAT(calls_->with("edit.open"), IsEmpty());
}

TEST_P(MaterialManagerTest, AnImageHasAlphaWithoutALook) {
    addVideoFile("/m/a.jpg");
    EXPECT_TRUE(MaterialManager::hasAlphaChannel(makeCookie(1, 'I', Cookie::wholeClip)));
}

TEST_P(MaterialManagerTest, AClipWithoutAFileHasAlpha) {
    EXPECT_TRUE(MaterialManager::hasAlphaChannel(clip()));
}

TEST_P(MaterialManagerTest, AMovieHasAlpha) {
    addVideoFile("/m/a.mov");
    EXPECT_TRUE(MaterialManager::hasAlphaChannel(clip()));
}

TEST_P(MaterialManagerTest, AFileWithoutAnExtensionHasAlpha) {
    addVideoFile("/m.jpg/a");
    EXPECT_TRUE(MaterialManager::hasAlphaChannel(clip()));
}

TEST_P(MaterialManagerTest, FilesOfCamerasHaveNoAlphaInAnyCase) {
    for (std::string const extension : {"cin", "cr2", "sr2", "nef", "3FR", "dcr", "x3f", "orf", "pef", "arw",
                                        "dng", "jpeg", "jpg", "JPG", "Cr2", "3fr"}) {
        addVideoFile("/m/a." + extension);
        EXPECT_FALSE(MaterialManager::hasAlphaChannel(clip())) << extension;
    }
}

TEST_P(MaterialManagerTest, AvailableIsWhatTheFirstKnownReferenceIs) {
    addClip(clip());
    media_.setReferences(clip(), 4, {video(9), video(1), video(2)});
    media_.addEntry(video(1), own("/m/missing"));
    media_.addEntry(video(2), own("/m/there"));
    files_.addFile("/m/there");
    EXPECT_FALSE(MaterialManager::isMediaAvailable(clip(), mediaOriginal));
    files_.addFile("/m/missing");
    EXPECT_TRUE(MaterialManager::isMediaAvailable(clip(), mediaOriginal));
}

TEST_P(MaterialManagerTest, NothingIsAvailableOfAClipWithoutKnownReferences) {
    addClip(clip());
    media_.setReferences(clip(), 4, {video(9)});
    EXPECT_FALSE(MaterialManager::isMediaAvailable(clip(), mediaAll));
}

TEST_P(MaterialManagerTest, NothingIsAvailableOfAClipThatDoesNotOpen) {
    EXPECT_FALSE(MaterialManager::isMediaAvailable(clip(), mediaAll));
}

TEST_P(MaterialManagerTest, AsksForOriginalsAndForProxies) {
    addClip(clip());
    media_.setReferences(clip(), 4, {video()});
    media_.addEntry(video(), own("/m/a"), {ownProxy("/m/p")});
    files_.addFile("/m/p");
    EXPECT_FALSE(MaterialManager::isHighResMediaAvailable(clip()));
    EXPECT_TRUE(MaterialManager::isProxyMediaAvailable(clip()));
}

TEST_P(MaterialManagerTest, VideoChannelsCountFromZeroAndAudioChannelsFromOne) {
    addChannels(clip(), 2, 3, "V A1 A2 A3");
    EXPECT_THAT(listOf(MaterialManager::findClipMediaFileIDs(clip())),
                ElementsAre(video(1, 0), video(1, 1), sound(1, 1), sound(1, 2), sound(1, 3)));
}

TEST_P(MaterialManagerTest, VideoThatIsNotInUseIsLeftOut) {
    addChannels(clip(), 1, 1, "A1");
    EXPECT_THAT(listOf(MaterialManager::findClipMediaFileIDs(clip())), ElementsAre(sound(1, 1)));
}

TEST_P(MaterialManagerTest, AClipOfOneMediumIsTakenWhateverIsInUse) {
    addChannels(clip(1), 1, 0, "");
    addChannels(clip(2), 0, 1, "");
    EXPECT_THAT(listOf(MaterialManager::findClipMediaFileIDs(clip(1))), ElementsAre(video(1)));
    EXPECT_THAT(listOf(MaterialManager::findClipMediaFileIDs(clip(2))), ElementsAre(sound(2, 1)));
}

TEST_P(MaterialManagerTest, AnUnknownClipHasNoFiles) {
    EXPECT_THAT(listOf(MaterialManager::findClipMediaFileIDs(clip())), IsEmpty());
}

TEST_P(MaterialManagerTest, AppendsTheFilesThatAreKnown) {
    addChannels(clip(), 1, 2, "V A1 A2");
    media_.addEntry(video(), own("/m/v"));
    media_.addEntry(sound(1, 2), own("/m/s2"));
    std::vector<LightweightString<wchar_t>> files{wide("before")};
    MaterialManager::findFilesForShot(clip(), files);
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(narrow(files[0]), "before");
    EXPECT_EQ(narrow(files[1]), "/m/v");
    EXPECT_EQ(narrow(files[2]), "/m/s2");
}

TEST_P(MaterialManagerTest, FilesOfAShotBearTheirStoredNames) {
    addChannels(clip(), 1, 0, "");
    media_.addEntry(video(), own("/m/v"));
    files_.mount = [](std::string const& name) { return "/mounted" + name; };
    std::vector<LightweightString<wchar_t>> files;
    MaterialManager::findFilesForShot(clip(), files);
    EXPECT_EQ(narrow(files.at(0)), "/m/v");
}

TEST_P(MaterialManagerTest, RevealsWhatExistsUnderItsMountedName) {
    addChannels(clip(), 1, 0, "");
    media_.addEntry(video(), own("/m/v"));
    files_.mount = [](std::string const& name) { return "/mounted" + name; };
    files_.addFile("/mounted/m/v");
    auto const files = MaterialManager::getRevealableFiles(clip());
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(narrow(files[0]), "/mounted/m/v");
}

TEST_P(MaterialManagerTest, LogsAFileThatCanNotBeRevealed) {
    addChannels(clip(), 1, 0, "");
    media_.addEntry(video(), own("/m/\u00e4 100%s"));
    EXPECT_THAT(MaterialManager::getRevealableFiles(clip()), IsEmpty());
    EXPECT_THAT(log_.log(),
                ElementsAre("MaterialManager::getRevealableFiles() File missing : /m/\u00e4 100%s\n"));
}

TEST_P(MaterialManagerTest, AddsTheClipsThatLogsReferTo) {
    addClip(clip(1));
    addClip(clip(2));
    media_.setReferences(clip(1), 3, {clip(1), clip(5)});
    media_.setReferences(clip(2), 3, {clip(5), clip(6)});
    std::set<Cookie> clips{clip(9)};
    MaterialManager::getReferencedClips(vectorOf({clip(1), clip(8), clip(2)}), clips);
    EXPECT_THAT(clips, ElementsAre(clip(1), clip(5), clip(6), clip(9)));
}

TEST_P(MaterialManagerTest, AddsTheMediaFilesThatLogsReferToWithoutEdits) {
    addClip(clip());
    media_.setReferences(clip(), 2, {clip(5), video(1), sound(1, 1)});
    std::set<Cookie> files;
    MaterialManager::getReferencedMediaFiles(vectorOf({clip()}), files);
    EXPECT_THAT(files, ElementsAre(sound(1, 1), video(1)));
}

TEST_P(MaterialManagerTest, LogsThatReferToNothingAreNeitherLocalNorRemote) {
    addClip(clip());
    EXPECT_FALSE(MaterialManager::logsReferToLocalMedia(vectorOf({clip()}), mediaAll));
    EXPECT_FALSE(MaterialManager::logsReferToRemoteMedia(vectorOf({clip()}), mediaAll));
}

TEST_P(MaterialManagerTest, ClosesEveryClipThatItOpens) {
    addClip(clip(), {.isImage = true});
    media_.setReferences(clip(), 4, {video()});
    static_cast<void>(MaterialManager::findFileForImageClip(clip()));
    static_cast<void>(MaterialManager::isMediaAvailable(clip(), mediaAll));
    static_cast<void>(MaterialManager::findClipMediaFileIDs(clip()));
    static_cast<void>(MaterialManager::logsReferToLocalMedia(vectorOf({clip()}), mediaAll));
    EXPECT_EQ(media_.openEdits(), 0);
}

INSTANTIATE_TEST_SUITE_P(Hosts, MaterialManagerTest, MaterialFixture::hosts(), MaterialFixture::nameOf);

}  // namespace
}  // namespace test
