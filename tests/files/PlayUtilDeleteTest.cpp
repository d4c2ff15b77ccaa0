#include <gmock/gmock.h>

#include "files/PlayUtil.h"
#include "tests/fakes/CacheFixture.h"
#include "toolkit/services/Settings.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Delete : public CacheFixture {
protected:
    static std::string textOf(Cookie const& cookie) { return cookie.asString().str(); }
    static std::string waveformOf(Cookie const& cookie) {
        return "fm.delete " + narrow(getWaveformDataFileFor(cookie));
    }
    static MediaFileInfo fileAt(std::string const& path, bool isProxy = false) {
        MediaFileInfo file(MaterialFilename(DriveId::none, wide(path)), 1);
        file.isProxyFile = isProxy;
        return file;
    }
    /// A clip's channel that the catalogue knows, with a proxy.
    Cookie addEntry(CookieType type, std::uint8_t channel) {
        Cookie const cookie = makeCookie(1, type, channel);
        catalogue.addEntry(cookie, fileAt("/m/" + textOf(cookie)),
                           {fileAt("/m/proxy" + textOf(cookie), true)});
        return cookie;
    }
    /// What was removed from the catalogue, in order.
    [[nodiscard]] std::vector<std::string> removed() const { return calls->with("catalogue.removeFile"); }
    static std::string removal(Cookie const& cookie, unsigned types) {
        return "catalogue.removeFile " + textOf(cookie) + " " + std::to_string(types) + " 0";
    }
    /// Has the original and the proxy of an entry open.
    std::pair<Ox::Ptr<FileReadInstance>, Ox::Ptr<FileReadInstance>> openBoth(Cookie const& cookie) {
        addReader("any");
        addFile("/m/" + textOf(cookie));
        addFile("/m/proxy" + textOf(cookie));
        return {openFile("/m/" + textOf(cookie)), openFile("/m/proxy" + textOf(cookie))};
    }
};

TEST_F(Delete, AsksTheCatalogueToDelete) {
    Cookie const cookie = addEntry('V', 0);
    EXPECT_EQ(PlayUtil::deletePlayFile(cookie, mediaAll), 1U);
    EXPECT_THAT(removed(), ElementsAre(removal(cookie, 3)));
    EXPECT_THAT(calls->with("fm.delete"), IsEmpty());
}

TEST_F(Delete, HasTheCacheForgetOriginalAndProxies) {
    Cookie const cookie = addEntry('V', 0);
    auto const [original, proxy] = openBoth(cookie);
    EXPECT_EQ(PlayUtil::deletePlayFile(cookie, mediaAll), 1U);
    EXPECT_NE(openFile("/m/" + textOf(cookie)), original);
    EXPECT_NE(openFile("/m/proxy" + textOf(cookie)), proxy);
}

TEST_F(Delete, OfProxiesLeavesTheOriginalOpen) {
    Cookie const cookie = addEntry('V', 0);
    addReader("any");
    addFile("/m/" + textOf(cookie));
    Ox::Ptr<FileReadInstance> const original = openFile("/m/" + textOf(cookie));
    EXPECT_EQ(PlayUtil::deletePlayFile(cookie, mediaProxy), 1U);
    EXPECT_EQ(openFile("/m/" + textOf(cookie)), original);
    EXPECT_THAT(removed(), ElementsAre(removal(cookie, 2)));
}

TEST_F(Delete, OfTheOriginalLeavesAProxyOpen) {
    Cookie const cookie = addEntry('V', 0);
    auto const [original, proxy] = openBoth(cookie);
    EXPECT_EQ(PlayUtil::deletePlayFile(cookie, mediaOriginal), 1U);
    EXPECT_EQ(openFile("/m/proxy" + textOf(cookie)), proxy);
    EXPECT_NE(openFile("/m/" + textOf(cookie)), original);
    EXPECT_THAT(removed(), ElementsAre(removal(cookie, 1)));
}

TEST_F(Delete, HasTheCacheForgetProxiesAndThenTheOriginalBeforeTheCatalogueDeletes) {
    Cookie const cookie = addEntry('V', 0);
    std::string const original = "/m/" + textOf(cookie);
    std::string const proxy = "/m/proxy" + textOf(cookie);
    addReader("any");
    for (std::string const& path : {original, proxy}) {
        addFile(path);
        static_cast<void>(openFile(path));
    }
    CallLog::Lines forgottenBefore;
    std::size_t openWhenAsked = 2;
    catalogue.onRemove = [&] {
        forgottenBefore = calls->with(".purge");
        openWhenAsked = PlayFileCache::Shared()->getOpenCount();
    };
    EXPECT_EQ(PlayUtil::deletePlayFile(cookie, mediaAll), 1U);
    EXPECT_EQ(openWhenAsked, 0U);
    EXPECT_THAT(forgottenBefore, ElementsAre(proxy + ".purge", original + ".purge"));
}

TEST_F(Delete, OfNeitherStillAsksTheCatalogue) {
    Cookie const cookie = addEntry('V', 0);
    EXPECT_EQ(PlayUtil::deletePlayFile(cookie, static_cast<eMediaTypes>(0)), 1U);
    EXPECT_THAT(removed(), ElementsAre(removal(cookie, 0)));
}

TEST_F(Delete, OfAnUnknownChannelOfSoundDeletesItsWaveformAndSucceeds) {
    Cookie const cookie = makeCookie(1, 'S', 1);
    EXPECT_EQ(PlayUtil::deletePlayFile(cookie, mediaAll), 1U);
    EXPECT_THAT(
        calls->with("delete: "),
        ElementsAre("console PlayFile[" + textOf(cookie) + "]::delete: *** Material not available ***\n",
                    "log PlayFile[" + textOf(cookie) + "]::delete: *** Material not available ***\n"));
    EXPECT_THAT(calls->with("fm.delete"), ElementsAre(waveformOf(cookie)));
    EXPECT_THAT(removed(), IsEmpty());
}

TEST_F(Delete, TellsWhyTheCatalogueCouldnt) {
    Cookie const cookie = addEntry('S', 1);
    catalogue.removal = oxFrameNotAvailable;
    EXPECT_EQ(PlayUtil::deletePlayFile(cookie, mediaAll), 2000U);
    EXPECT_THAT(
        calls->with("log PlayFile"),
        ElementsAre("log PlayFile[" + textOf(cookie) +
                    "]::delete: *** Unable to delete material file ***, the frame isn't available\n"));
    EXPECT_THAT(calls->with("fm.delete"), ElementsAre(waveformOf(cookie)));
}

TEST_F(Delete, OfAClipEndsAtTheFirstVideoChannelThatIsMissing) {
    Cookie const first = addEntry('V', 0);
    addEntry('V', 2);
    EXPECT_EQ(PlayUtil::delete_material_files(makeCookie(1, 'E', 255), mediaAll), 1U);
    EXPECT_THAT(removed(), ElementsAre(removal(first, 3)));
}

TEST_F(Delete, OfAClipGoesOnBehindAMissingAudioChannel) {
    Cookie const first = addEntry('S', 1);
    Cookie const third = addEntry('S', 3);
    EXPECT_EQ(PlayUtil::delete_material_files(makeCookie(1, 'E', 255), mediaAll), 1U);
    EXPECT_THAT(removed(), ElementsAre(removal(first, 3), removal(third, 3)));
}

TEST_F(Delete, OfAClipLooksAt24VideoChannels) {
    for (std::uint8_t channel = 0; channel < 26; ++channel) {
        addEntry('V', channel);
    }
    EXPECT_EQ(PlayUtil::delete_material_files(makeCookie(1, 'E', 255), mediaAll), 1U);
    EXPECT_EQ(removed().size(), 24U);
}

TEST_F(Delete, OfAClipLooksAtAsManyAudioChannelsAsTheSettingSaysEachTime) {
    Cookie const second = addEntry('S', 2);
    addEntry('S', 3);
    setConfigInt("max_audio_chans_in_shot", 2);
    EXPECT_EQ(PlayUtil::delete_material_files(makeCookie(1, 'E', 255), mediaAll), 1U);
    EXPECT_THAT(removed(), ElementsAre(removal(second, 3)));
    setConfigInt("max_audio_chans_in_shot", 0);
    EXPECT_EQ(PlayUtil::delete_material_files(makeCookie(1, 'E', 255), mediaAll), 1U);
    EXPECT_EQ(removed().size(), 1U);
}

TEST_F(Delete, OfAClipLooksAt32AudioChannelsUsually) {
    addEntry('S', 32);
    addEntry('S', 33);
    EXPECT_EQ(PlayUtil::delete_material_files(makeCookie(1, 'E', 255), mediaAll), 1U);
    EXPECT_EQ(removed().size(), 1U);
}

TEST_F(Delete, CutsAudioChannelsToEightBits) {
    Cookie const first = addEntry('S', 1);
    setConfigInt("max_audio_chans_in_shot", 257);
    catalogue.removal = oxSuccess;
    EXPECT_EQ(PlayUtil::delete_material_files(makeCookie(1, 'E', 255), mediaAll), 1U);
    EXPECT_THAT(removed(), ElementsAre(removal(first, 3)));
}

TEST_F(Delete, OfAClipAnswersTheLastFailure) {
    addEntry('V', 0);
    addEntry('S', 1);
    catalogue.removal = 77;
    EXPECT_EQ(PlayUtil::delete_material_files(makeCookie(1, 'E', 255), mediaAll), 77U);
    EXPECT_EQ(removed().size(), 2U);
}

TEST_F(Delete, SizesAreAddedToWhatIsThere) {
    Cookie const cookie = addClip("/m/a.mov");
    fileManager.fileSize = 100;
    unsigned long total = 5;
    EXPECT_EQ(PlayUtil::get_total_size(cookie, &total), 1U);
    EXPECT_EQ(total, 105U);
}

TEST_F(Delete, AMissingFileHasNoSize) {
    Cookie const cookie = addClip("/m/a.mov");
    fileManager.removeFile("/m/a.mov");
    fileManager.fileSize = 100;
    unsigned long total = 5;
    EXPECT_EQ(PlayUtil::get_total_size(cookie, &total), 1U);
    EXPECT_EQ(PlayUtil::get_total_size(makeCookie(9), &total), 1U);
    EXPECT_EQ(total, 5U);
}

/// A clip that wants to know its sound, and whose first channel has a file of two streams.
class CheckAudio : public Delete {
protected:
    CheckAudio() {
        reader_->describe = [this](PlayFileMetadataRep& metadata) {
            metadata.audioInfoCount = 1;
            metadata.audioStreams.resize(streams_);
        };
        catalogue.addEdit(edit_, nullptr);
        catalogue.wantAudioMetadata(edit_);
        addClip("/m/a.wav", 'S', 1);
    }
    /// What was done to the edit, in order.
    [[nodiscard]] std::vector<std::string> done() const { return calls->with("edit."); }

    std::size_t streams_ = 2;
    Ox::Ptr<ScriptedReader> const reader_ = addReader("any");
    Cookie const edit_ = makeCookie(1, 'E', 255);
};

TEST_F(CheckAudio, GivesTheEditTheStreamsOfItsFirstChannel) {
    EXPECT_TRUE(PlayUtil::checkAudioMetadata(edit_));
    EXPECT_THAT(done(),
                ElementsAre("edit.open " + textOf(edit_), "edit.setAudioMetadata 2",
                            "edit.updateRecord " + textOf(edit_), "edit.modified \"\"", "edit.close"));
}

TEST_F(CheckAudio, OfVideoDoesNothing) {
    EXPECT_EQ(PlayUtil::checkVideoMetadata(edit_), 0);
    EXPECT_EQ(PlayUtil::checkVideoMetadata(Cookie()), 0);
    EXPECT_THAT(done(), IsEmpty());
}

TEST_F(CheckAudio, OfAnUnknownEditIsFalse) {
    EXPECT_FALSE(PlayUtil::checkAudioMetadata(makeCookie(9, 'E', 255)));
}

TEST_F(CheckAudio, LeavesAnEditThatDoesntWantIt) {
    Cookie const content = makeCookie(2, 'E', 255);
    catalogue.addEdit(content, nullptr);
    EXPECT_FALSE(PlayUtil::checkAudioMetadata(content));
    EXPECT_THAT(done(), ElementsAre("edit.open " + textOf(content), "edit.close"));
}

TEST_F(CheckAudio, LeavesAnEditWhoseSoundCantBeOpened) {
    fileManager.removeFile("/m/a.wav");
    EXPECT_FALSE(PlayUtil::checkAudioMetadata(edit_));
    EXPECT_EQ(calls->count("setAudioMetadata"), 0U);
    EXPECT_EQ(catalogue.openEdits(), 0);
}

TEST_F(CheckAudio, LeavesAnEditWhoseFileHasNoStreams) {
    streams_ = 0;
    EXPECT_FALSE(PlayUtil::checkAudioMetadata(edit_));
    EXPECT_EQ(calls->count("setAudioMetadata"), 0U);
    EXPECT_EQ(catalogue.openEdits(), 0);
}

}  // namespace
}  // namespace test
