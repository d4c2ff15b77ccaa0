/// Where the media of a clip are, and whether what a window shows has lost its media.
#include "material/MediaLocationUtils.h"

#include <cstring>

#include "tests/material/MaterialFixture.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NamedStore : public iRemoteStore {
public:
    LightweightString<wchar_t> getDisplayName(LightweightString<wchar_t> const& name) override {
        return wide("cloud of " + narrow(name));
    }
};

/// A window that shows a clip.
class FakeModule : public EditModule {
public:
    explicit FakeModule(Cookie const& cookie) { edit.i_open(cookie); }

    EditPtr const& getEdit() const override { return edit; }
    void getSelectedChans(std::vector<IdStamp>& channels, std::uint32_t type,
                          std::uint32_t mask) const override {
        if (type == 1 && mask == 15) {
            channels = selected;
        }
    }
    double getCurrentTime(eAccuracy accuracy) const override { return accuracy == 1 ? 1.5 : 0; }

    EditPtr edit;
    std::vector<IdStamp> selected{IdStamp(7), IdStamp(8)};
};

class MediaLocationTest : public MaterialFixture {
protected:
    static MediaLocationInfo infoOf(Cookie const& cookie) {
        return MediaLocationUtils::getClipLocationInfo(cookie);
    }
    static std::vector<std::string> narrowed(std::vector<LightweightString<wchar_t>> const& names) {
        std::vector<std::string> texts;
        texts.reserve(names.size());
        for (LightweightString<wchar_t> const& name : names) {
            texts.push_back(narrow(name));
        }
        return texts;
    }
    /// A clip with a file of video and one of sound.
    void addShot(unsigned number = 1, std::uint32_t logType = logShot) {
        addClip(clip(number), {.logType = logType, .channels = "V A1", .videoCount = 1, .audioCount = 1});
    }
    /// A sequence that shows `item` at the current time.
    void addSequence(EditItem const& item) { addClip(clip(9), {.logType = logSequence, .item = item}); }
    static EditItem showing(Cookie const& strip, Ox::Ptr<EditNode> const& node = {}) {
        return {true, node, CelEventPair(strip)};
    }
    static bool isOffline(Cookie const& cookie) { return isMediaOffline(FakeModule(cookie)); }
};

TEST_P(MediaLocationTest, ListsEveryMediaFileAndStatesOfKnownOnes) {
    addShot();
    media_.addEntry(video(), own("/m/v.mov"), {ownProxy("/m/p.mov")});
    files_.addFile("/m/v.mov");
    MediaLocationInfo const info = infoOf(clip());
    EXPECT_THAT(info.mediaFiles, ElementsAre(video(), sound(1, 1)));
    EXPECT_THAT(info.videoStates, ElementsAre(2U));
    EXPECT_THAT(info.audioStates, ElementsAre(0U));
}

TEST_P(MediaLocationTest, TellsFolderAndNameOfALocalFile) {
    addShot();
    media_.addEntry(video(), own("/m/v.mov"));
    MediaLocationInfo const info = infoOf(clip());
    EXPECT_THAT(narrowed(info.locations), ElementsAre("/m/"));
    EXPECT_THAT(narrowed(info.filenames), ElementsAre("v.mov"));
}

TEST_P(MediaLocationTest, TellsTheDisplayNameOfARemoteFile) {
    NamedStore store;
    files_.remoteStore = &store;
    addShot();
    media_.addEntry(video(), linked("far:v"));
    MediaLocationInfo const info = infoOf(clip());
    EXPECT_THAT(narrowed(info.locations), ElementsAre("cloud of far:v"));
    EXPECT_THAT(narrowed(info.filenames), ElementsAre(""));
}

TEST_P(MediaLocationTest, TellsTheWholeNameOfARemoteFileWithoutAStore) {
    addShot();
    media_.addEntry(video(), linked("far:/d/v"));
    MediaLocationInfo const info = infoOf(clip());
    EXPECT_THAT(narrowed(info.locations), ElementsAre("far:/d/v"));
    EXPECT_THAT(narrowed(info.filenames), ElementsAre(""));
}

TEST_P(MediaLocationTest, AKnownFileWithoutANameHasStatesOnly) {
    addShot();
    media_.addEntry(video(), own(""));
    MediaLocationInfo const info = infoOf(clip());
    EXPECT_EQ(info.videoStates.size(), 1U);
    EXPECT_THAT(info.locations, IsEmpty());
    EXPECT_THAT(info.filenames, IsEmpty());
}

TEST_P(MediaLocationTest, AFileOfNoDriveHasALocationAndNoMaterialName) {
    addShot();
    media_.addEntry(video(), own("/m/v.mov"));
    MediaLocationInfo const info = infoOf(clip());
    EXPECT_THAT(info.materialFiles, IsEmpty());
    EXPECT_EQ(info.locations.size(), 1U);
}

TEST_P(MediaLocationTest, AFileOnADriveHasAMaterialName) {
    addShot();
    MaterialFilename const material(DriveId('A'), wide("Vision/v.mov"));
    media_.addEntry(video(), MediaFileInfo(material, wide("/elsewhere/v.mov"), 1));
    media_.addEntry(sound(1, 1), MediaFileInfo(MaterialFilename(DriveId('A'), wide("")), 1));
    EXPECT_THAT(infoOf(clip()).materialFiles, ElementsAre(material));
}

TEST_P(MediaLocationTest, ShotsImagesAndImportsHaveTheFilesOfTheirChannels) {
    for (std::uint32_t const type : {1U, 1024U, 2048U}) {
        addShot(1, type);
        EXPECT_EQ(infoOf(clip()).mediaFiles.size(), 2U) << type;
    }
}

TEST_P(MediaLocationTest, GroupsHaveTheFilesThatTheyReferTo) {
    for (std::uint32_t const type : {4U, 16U}) {
        addClip(clip(), {.logType = type});
        media_.setReferences(clip(), 2, {video(5), clip(6)});
        EXPECT_THAT(infoOf(clip()).mediaFiles, ElementsAre(video(5), clip(6))) << type;
    }
    EXPECT_EQ(media_.openEdits(), 0);
}

TEST_P(MediaLocationTest, AnEmptyGroupHasNoFiles) {
    addClip(clip(), {.logType = 4, .isEmpty = true});
    media_.setReferences(clip(), 2, {video(5)});
    EXPECT_THAT(infoOf(clip()).mediaFiles, IsEmpty());
}

TEST_P(MediaLocationTest, OtherClipsHaveNoRecord) {
    for (std::uint32_t const type : {0U, 2U, 32U, 64U}) {
        addShot(1, type);
        media_.setReferences(clip(), 2, {video()});
        EXPECT_THAT(infoOf(clip()).mediaFiles, IsEmpty()) << type;
    }
}

TEST_P(MediaLocationTest, AnUnknownClipHasAnEmptyRecordThatIsNotOffline) {
    MediaLocationInfo const info = infoOf(clip());
    EXPECT_THAT(info.mediaFiles, IsEmpty());
    EXPECT_FALSE(info.allMediaOffline());
}

TEST_P(MediaLocationTest, OneAvailableFileOrProxyIsEnoughToBeOnline) {
    addShot();
    media_.addEntry(video(), own("/m/v"));
    media_.addEntry(sound(1, 1), own("/m/s"), {ownProxy("/m/p")});
    EXPECT_TRUE(infoOf(clip()).allMediaOffline());
    files_.addFile("/m/p");
    EXPECT_FALSE(infoOf(clip()).allMediaOffline());
}

TEST_P(MediaLocationTest, AWindowWithoutAClipIsNotOffline) {
    EXPECT_FALSE(isOffline(clip()));
}

TEST_P(MediaLocationTest, AnEmptyClipIsNotOffline) {
    addClip(clip(), {.channels = "V A1", .videoCount = 1, .audioCount = 1, .isEmpty = true});
    EXPECT_FALSE(isOffline(clip()));
}

TEST_P(MediaLocationTest, AShotWithoutItsFilesIsOffline) {
    for (std::uint32_t const type : {1U, 1024U}) {
        addShot(1, type);
        EXPECT_TRUE(isOffline(clip())) << type;
    }
}

TEST_P(MediaLocationTest, AGroupWithoutItsFilesIsOffline) {
    for (std::uint32_t const type : {4U, 16U}) {
        addClip(clip(), {.logType = type});
        media_.setReferences(clip(), 2, {video(5)});
        EXPECT_TRUE(isOffline(clip())) << type;
    }
}

TEST_P(MediaLocationTest, OtherClipsAreNeverOffline) {
    for (std::uint32_t const type : {0U, 32U, 64U, 2048U}) {
        addShot(1, type);
        EXPECT_FALSE(isOffline(clip())) << type;
    }
}

TEST_P(MediaLocationTest, OfASequenceTheItemAtTheCurrentTimeDecides) {
    addShot(1);
    addSequence(showing(video(1, 3)));
    EXPECT_TRUE(isOffline(clip(9)));
    media_.addEntry(video(1), own("/m/v"));
    files_.addFile("/m/v");
    EXPECT_FALSE(isOffline(clip(9)));
}

TEST_P(MediaLocationTest, ASequenceWithoutASelectedChannelIsNotOffline) {
    addShot(1);
    addSequence(showing(video(1)));
    FakeModule module(clip(9));
    module.selected.clear();
    EXPECT_FALSE(isMediaOffline(module));
}

TEST_P(MediaLocationTest, OnlyTheFirstSelectedChannelCounts) {
    addShot(1);
    addSequence(showing(video(1)));
    FakeModule module(clip(9));
    module.selected = {IdStamp(8), IdStamp(7)};
    EXPECT_FALSE(isMediaOffline(module));
}

TEST_P(MediaLocationTest, WhereNothingLiesNothingIsOffline) {
    addShot(1);
    addSequence({false, {}, CelEventPair(video(1))});
    EXPECT_FALSE(isOffline(clip(9)));
}

TEST_P(MediaLocationTest, AnEffectIsNeverOffline) {
    addShot(1);
    addSequence(showing(video(1), Ox::makePtr<EffectInstance_opu4h5a4j>()));
    EXPECT_FALSE(isOffline(clip(9)));
}

TEST_P(MediaLocationTest, AnotherNodeLeavesTheQuestionToTheMedia) {
    addShot(1);
    addSequence(showing(video(1), Ox::makePtr<EditNode>()));
    EXPECT_TRUE(isOffline(clip(9)));
}

TEST_P(MediaLocationTest, AHandleThatIsNotValidIsNotOffline) {
    addSequence({true, {}, CelEventPair()});
    EXPECT_FALSE(isOffline(clip(9)));
}

TEST_P(MediaLocationTest, AStripWithoutMediaIsNotOffline) {
    for (std::uint32_t const first : {1U, 2U}) {
        Ox::UUID uuid;
        std::uint32_t const words[] = {first, 647};
        std::memcpy(uuid.bytes.data(), words, sizeof words);
        Cookie const strip(uuid, 'V', 0);
        Cookie const shot = convertCookie(strip, 'E', Cookie::wholeClip);
        addClip(shot, {.videoCount = 1});
        addSequence(showing(strip));
        EXPECT_EQ(isOffline(clip(9)), first == 2) << first;
    }
}

TEST_P(MediaLocationTest, DeliberateSomeOfflineAnswersAsAllOffline) {
    addShot(1);
    media_.addEntry(video(), own("/m/v"));
    addShot(2);
    files_.addFile("/m/v");
    for (unsigned const number : {1U, 2U, 3U}) {
        FakeModule const module(clip(number));
        EXPECT_EQ(MediaLocationUtils::isSomeMediaOffline(module),
                  MediaLocationUtils::isAllMediaOffline(module));
    }
    EXPECT_FALSE(MediaLocationUtils::isSomeMediaOffline(FakeModule(clip(1))));
}

INSTANTIATE_TEST_SUITE_P(Hosts, MediaLocationTest, MaterialFixture::hosts(), MaterialFixture::nameOf);

}  // namespace
}  // namespace test
