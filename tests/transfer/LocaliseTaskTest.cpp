#include "transfer/LocaliseTask.h"

#include "files/PlayFileCache.h"
#include "tests/fakes/ScriptedReader.h"
#include "tests/transfer/TransferFixture.h"
#include "toolkit/catalogue/MaterialLink.h"
#include "toolkit/services/NumberText.h"
#include "toolkit/services/ResourceText.h"

namespace test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

using Name = LightweightString<wchar_t>;

/// With its operations opened.
class OpenTask : public TransferFixture {
protected:
    static constexpr std::uint32_t both = LocaliseTask::selectLinked | LocaliseTask::selectDownloadable;

    /// Runs a task over clips; what it answers.
    int run(std::set<Cookie> const& clips, eMediaTypes types, std::uint32_t selection = both) {
        LocaliseTask::Args args;
        args.clips = clips;
        args.mediaTypes = types;
        args.targetDrive = 'N';
        args.clipSelection = selection;
        task_ = Ox::makePtr<LocaliseTask>(args);
        task_->setLog(log_);
        task_->execute();
        return task_->getResult();
    }
    /// A clip whose only file is linked to one below the fixture's folder.
    void addLinkedClip(unsigned number, std::string const& target = "elsewhere/a.mov") {
        addClip(number, "Clip " + std::to_string(number));
        if (target.rfind(TransferFiles::store, 0) != 0) {
            write(target, "media");
        }
        catalogue_.addEntry(video(number), linked('M', "v" + std::to_string(number) + ".mov", target));
        catalogue_.setReferences(clip(number), 2, {video(number)});
    }
    /// A clip that the remote project space has and this machine hasn't.
    void addRemoteClip(unsigned number, std::string const& file) {
        FakeRemoteSpace& space = spaces_.space ? *Ox::dynamicPtrCast<FakeRemoteSpace>(spaces_.space)
                                               : spaces_.enterRemoteSpace({});
        addClip(number, "Clip " + std::to_string(number));
        write("remote/" + file, "media");
        space.originals[clip(number)] = {wide("far://" + file)};
        catalogue_.addEntry(video(number), MediaFileInfo());
        catalogue_.setReferences(clip(number), 2, {video(number)});
    }
    Ox::Ptr<FsysDirectoryEntry> entry(Cookie const& cookie) { return catalogue_.findEntryForCookie(cookie); }
    /// Of a video clip's import, below the drive's root.
    static std::string importPath(unsigned number, std::string const& extension) {
        return narrow(MediaDrive::getFolder(video(number)) + video(number).asWString()) + extension;
    }

    Ox::Ptr<LocaliseTask> task_;
};

class LocaliseTaskTest : public OpenTask {};

TEST_F(LocaliseTaskTest, ALinkedFileComesToItsPlaceAndIsLinkedNoMore) {
    addLinkedClip(1);
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
    EXPECT_EQ(folder_.read("m/v1.mov"), "media");
    EXPECT_FALSE(entry(video(1))->isLinked());
    EXPECT_EQ(entry(video(1))->getPhysicalFilename(), full("m/v1.mov"));
    EXPECT_EQ(entry(video(1))->size, 5U);
    EXPECT_TRUE(folder_.holds("elsewhere/a.mov"));
    EXPECT_THAT(transcript(), ElementsAre("log 0 Clip 1", "copy elsewhere/a.mov m/v1.mov.partial 1 told",
                                          "rename m/v1.mov.partial m/v1.mov 1"));
}

TEST_F(LocaliseTaskTest, EveryClipIsToldThatItHasChanged) {
    addLinkedClip(1);
    EXPECT_EQ(run({clip(1), clip(9)}, mediaOriginal), 1);
    EXPECT_THAT(recorded({"edit.modification", "edit.modified"}),
                ElementsAre("edit.modification " + clip(1).asString().str() + " 22 1", "edit.modified \"\""));
    EXPECT_EQ(catalogue_.openEdits(), 0);
}

TEST_F(LocaliseTaskTest, SelectionTwoPassesOverWhatIsOnlyLinked) {
    addLinkedClip(1);
    EXPECT_EQ(run({clip(1)}, mediaOriginal, LocaliseTask::selectDownloadable), 1);
    EXPECT_EQ(calls_->count("copy"), 0U);
    EXPECT_EQ(run({clip(1)}, mediaOriginal, both), 1);
    EXPECT_EQ(calls_->count("copy"), 1U);
}

TEST_F(LocaliseTaskTest, SelectionOnePassesOverWhatCanBeDownloaded) {
    addRemoteClip(1, "r.mov");
    EXPECT_EQ(run({clip(1)}, mediaOriginal, LocaliseTask::selectLinked), 1);
    EXPECT_EQ(calls_->count("copy"), 0U);
    EXPECT_EQ(run({clip(1)}, mediaOriginal, LocaliseTask::selectDownloadable), 1);
    EXPECT_EQ(calls_->count("copy"), 1U);
}

TEST_F(LocaliseTaskTest, AClipThatDoesNotOpenOrIsNotWholeIsPassedOverInSilence) {
    addLinkedClip(1);
    addLinkedClip(2);
    catalogue_.setFacts(clip(1), {.isValid = false});
    EXPECT_EQ(run({clip(1), clip(3)}, mediaOriginal), 1);
    EXPECT_THAT(transcript(), IsEmpty());
    EXPECT_EQ(calls_->count("edit.modification"), 1U);
}

TEST_F(LocaliseTaskTest, ARemoteFileIsFiledUnderItsClip) {
    addRemoteClip(1, "r.mov");
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
    EXPECT_EQ(folder_.read("m/" + importPath(1, ".mov")), "media");
    EXPECT_EQ(entry(video(1))->getPhysicalFilename(), full("m/" + importPath(1, ".mov")));
    EXPECT_FALSE(entry(video(1))->isLinked());
}

TEST_F(LocaliseTaskTest, TheSecondClipOfARemoteFileIsLinkedToTheCopyOfTheFirst) {
    addRemoteClip(1, "r.mov");
    addRemoteClip(2, "r.mov");
    EXPECT_EQ(run({clip(1), clip(2)}, mediaOriginal), 1);
    EXPECT_EQ(calls_->count("copy"), 1U);
    EXPECT_FALSE(entry(video(1))->isLinked());
    EXPECT_EQ(entry(video(2))->getLinkedFilename(), full("m/" + importPath(1, ".mov")));
}

/// Keeps the media of one cookie and notes what they are after each change. Media without a place get one, as from
/// somebody else at that moment, so that a link to them can be written.
class NotingKeeper : public iMediaKeeper {
public:
    explicit NotingKeeper(std::shared_ptr<CallLog> calls) : calls_(std::move(calls)) {}

    bool change(Cookie const&, Change const& change, CookieMedia& now) override {
        static_cast<void>(change(media_));
        MediaFileInfo& original = media_.original.value();
        calls_->add("kept \"" + narrow(original.materialFilename.getPath()) + "\" of " +
                    std::to_string(original.size) + (original.physicalFilename.empty() ? "" : ", linked"));
        if (original.materialFilename.getPath().empty()) {
            original.setMaterialFilename(MaterialFilename('M', L"late.mov"));
        }
        now = media_;
        return true;
    }

private:
    std::shared_ptr<CallLog> const calls_;
    CookieMedia media_;
};

TEST_F(LocaliseTaskTest, ARemoteFileThatComesAgainIsFiledAsNothingThenLinkedThenItsLinkIsWritten) {
    addRemoteClip(1, "r.mov");
    addRemoteClip(2, "r.mov");
    catalogue_.addEntry(Ox::makePtr<FsysDirectoryEntry>(video(2), CookieMedia{MediaFileInfo(), {}},
                                                        Ox::makePtr<NotingKeeper>(calls_)));
    EXPECT_EQ(run({clip(1), clip(2)}, mediaOriginal), 1);
    std::string const copy = "m/" + importPath(1, ".mov");
    EXPECT_THAT(recorded({"kept", "rename"}),
                ElementsAre("rename " + copy + ".partial " + copy + " 1", "kept \"\" of 0",
                            "kept \"late.mov\" of 0, linked", EndsWith(" m/late.mov 0")));
    EXPECT_EQ(MaterialLink::readLink(full("m/late.mov")), full(copy));
}

// ---- Files that are open ----

/// With a reader of every file; what it has opened is held only by the cache.
class OpenSources : public OpenTask {
protected:
    OpenSources() {
        Ox::FileReaderInfo::add(reader_, 0);
        addLinkedClip(1);
        for (OpenType const type : {OpenType::video, OpenType::audio}) {
            open("elsewhere/a.mov", type);
        }
        open(write("elsewhere/other.mov", "media"), OpenType::video);
    }
    ~OpenSources() override {
        PlayFileCache::Shared()->closeAll();
        Ox::FileReaderInfo::remove(reader_);
    }
    void open(std::string const& path, OpenType type) { open(full(path), type); }
    static void open(Name const& path, OpenType type) {
        EXPECT_TRUE(PlayFileCache::Shared()->open(path, Cookie(), DecodeFormat(), type, 0));
    }

    Ox::Ptr<ScriptedReader> const reader_ = Ox::makePtr<ScriptedReader>("any", calls_);
};

TEST_F(OpenSources, ASourceThatIsHereNowIsForgottenAndNoOtherFileIs) {
    ASSERT_EQ(reader_->aliveCount(), 3U);
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
    EXPECT_EQ(reader_->aliveCount(), 1U);
    open("elsewhere/other.mov", OpenType::video);
    EXPECT_EQ(reader_->openCount(), 3U);
}

TEST_F(OpenSources, ASourceWhoseCopyFailedStaysOpen) {
    files_.onCopy = [](auto const&, auto const&) { return iFileManager::copyFailed; };
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 0);
    EXPECT_EQ(reader_->aliveCount(), 3U);
    open("elsewhere/a.mov", OpenType::video);
    EXPECT_EQ(reader_->openCount(), 3U);
}

// ---- Sound ----

/// A link to itself would lose the media with the next move.
TEST_F(LocaliseTaskTest, TheOnlySoundOfAClipIsNoLinkButAtItsOwnPlace) {
    addClip(1, "Clip");
    write("elsewhere/a.wav", "sound");
    catalogue_.addEntry(sound(1), linked('M', "Sound/s1.wav", "elsewhere/a.wav"));
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
    EXPECT_FALSE(entry(sound(1))->isLinked());
    EXPECT_EQ(entry(sound(1))->getPhysicalFilename(), full("m/Sound/s1.wav"));
    EXPECT_EQ(entry(sound(1))->size, 5U);
    EXPECT_EQ(folder_.read("m/Sound/s1.wav"), "sound");
    EXPECT_THAT(console_.log(), IsEmpty());
}

TEST_F(LocaliseTaskTest, SoundThatIsLinkedToTheSourceIsLinkedToItsCopy) {
    addClip(1, "Clip");
    write("elsewhere/a.wav", "sound");
    catalogue_.addEntry(sound(1, 1), linked('M', "s1.wav", "elsewhere/a.wav"));
    catalogue_.addEntry(sound(1, 2), linked('M', "s2.wav", "elsewhere/a.wav"));
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
    EXPECT_EQ(calls_->count("copy"), 1U);
    EXPECT_EQ(entry(sound(1, 2))->getLinkedFilename(), full("m/s1.wav"));
    EXPECT_EQ(MaterialLink::readLink(full("m/s2.wav")), full("m/s1.wav"));
    EXPECT_EQ(entry(sound(1, 2))->size, 5U);
}

TEST_F(LocaliseTaskTest, SoundWhoseLinkIsNoSourceLosesItsLink) {
    addClip(1, "Clip");
    write("elsewhere/a.wav", "sound");
    write("m/s1.wav", "three");
    MediaFileInfo info = linked('M', "s1.wav", "elsewhere/a.wav");
    catalogue_.addEntry(sound(1, 1), info);
    files_.onCopy = [&](auto const&, auto const&) -> std::optional<iFileManager::eCopyRC> {
        entry(sound(1, 1))->setLinkedFilename(full("elsewhere/other.wav"));
        return std::nullopt;
    };
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
    EXPECT_FALSE(entry(sound(1, 1))->isLinked());
    EXPECT_EQ(entry(sound(1, 1))->size, 5U);
}

// ---- Series ----

TEST_F(LocaliseTaskTest, OfASequenceALinkFileLeadsToTheFirstFrameInItsFolder) {
    addClip(1, "Clip", {.velocity = 1.0});
    write("elsewhere/f0001.dpx", "one");
    write("elsewhere/f0002.dpx", "two");
    catalogue_.addEntry(video(1), linked('M', "v1.dpx", "elsewhere/f0001.dpx"));
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
    EXPECT_EQ(folder_.read("m/v1/f0002.dpx"), "two");
    EXPECT_EQ(entry(video(1))->getLinkedFilename(), full("m/v1/f0001.dpx"));
    EXPECT_EQ(MaterialLink::readLink(full("m/v1.dpx")), full("m/v1/f0001.dpx"));
}

TEST_F(LocaliseTaskTest, OfAChunkedFileALinkFileLeadsToItsFirstPart) {
    addClip(1, "Clip");
    write("elsewhere/A_001.R3D", "one");
    write("elsewhere/A_002.R3D", "two");
    catalogue_.addEntry(video(1), linked('M', "v1.R3D", "elsewhere/A_001.R3D"));
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
    EXPECT_EQ(entry(video(1))->getLinkedFilename(), full("m/v1/A_001.R3D"));
    EXPECT_EQ(MaterialLink::readLink(full("m/v1.R3D")), full("m/v1/A_001.R3D"));
}

// ---- Proxies ----

TEST_F(LocaliseTaskTest, AProxyIsRenamedToItsOwnNameForItsClipAndEachStream) {
    addClip(1, "Clip");
    write("remote/p.mov", "proxy");
    MediaFileInfo proxy = asProxy(linked('M', "p1.mov", "far://p.mov"));
    proxy.streamCount = 2;
    catalogue_.addEntry(video(1), own('M', "v1.mov"), {proxy});
    EXPECT_EQ(run({clip(1)}, mediaProxy), 1);
    std::string const path = folder_.file("m/p1.mov");
    auto const call = [&](Cookie const& cookie) {
        return "catalogue.renameProxyFile " + cookie.asString().str() + " " + path + " " + path;
    };
    EXPECT_THAT(recorded({"catalogue.rename"}),
                ElementsAre(call(video(1)), call(sound(1, 1)), call(sound(1, 2))));
    EXPECT_THAT(console_.log(), Contains("rename proxy for far://p.mov\n"));
    EXPECT_EQ(entry(video(1))->getProxyFiles().at(0).getPhysicalFilename(), full("m/p1.mov"));
}

TEST_F(LocaliseTaskTest, AProxyWithoutStreamsIsRenamedOnce) {
    addClip(1, "Clip");
    write("remote/p.mov", "proxy");
    catalogue_.addEntry(video(1), own('M', "v1.mov"), {asProxy(linked('M', "p1.mov", "far://p.mov"))});
    EXPECT_EQ(run({clip(1)}, mediaProxy), 1);
    EXPECT_THAT(recorded({"catalogue.rename"}), testing::SizeIs(1));
}

// ---- Failure ----

class FailingLocalise : public OpenTask {
protected:
    void failFrom(std::string const& name, iFileManager::eCopyRC code) {
        files_.onCopy = [name, code](std::string const& source, auto const&) {
            return source == name ? std::optional(code) : std::nullopt;
        };
    }
};

TEST_F(FailingLocalise, AFailedFileIsCancelledAndLinkedAsBefore) {
    addLinkedClip(1);
    failFrom("elsewhere/a.mov", iFileManager::copyFailed);
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 0);
    std::string const cookie = video(1).asString().str();
    EXPECT_THAT(recorded({"catalogue."}), ElementsAre("catalogue.removeProxyFile " + cookie + " v1.mov",
                                                      "catalogue.updateStatus " + cookie + " 3"));
    EXPECT_THAT(console_.log(), Contains("cancel download for " + folder_.file("elsewhere/a.mov") + "\n"));
    EXPECT_EQ(entry(video(1))->getLinkedFilename(), full("elsewhere/a.mov"));
}

TEST_F(FailingLocalise, FinishedClipsStayHereAndThoseNotReachedStayAsTheyWere) {
    addLinkedClip(1, "elsewhere/a.mov");
    addLinkedClip(2, "elsewhere/b.mov");
    addLinkedClip(3, "elsewhere/c.mov");
    failFrom("elsewhere/b.mov", iFileManager::copyStopped);
    EXPECT_EQ(run({clip(1), clip(2), clip(3)}, mediaOriginal), 3);
    EXPECT_FALSE(entry(video(1))->isLinked());
    EXPECT_TRUE(entry(video(2))->isLinked());
    EXPECT_TRUE(entry(video(3))->isLinked());
    EXPECT_EQ(calls_->count("edit.modification"), 3U);
}

TEST_F(FailingLocalise, EveryClipIsToldAlsoAfterAFailure) {
    addLinkedClip(1, "elsewhere/a.mov");
    addLinkedClip(2, "elsewhere/b.mov");
    addLinkedClip(3, "elsewhere/c.mov");
    failFrom("elsewhere/b.mov", iFileManager::copyFailed);
    EXPECT_EQ(run({clip(1), clip(2), clip(3)}, mediaOriginal), 0);
    auto const told = [](unsigned number) {
        return "edit.modification " + clip(number).asString().str() + " 22 1";
    };
    EXPECT_THAT(recorded({"edit.modification"}), ElementsAre(told(1), told(2), told(3)));
}

TEST_F(FailingLocalise, AJobWhoseEntryHasGoneEndsInSilence) {
    addLinkedClip(1);
    files_.onCopy = [this](auto const&, auto const&) -> std::optional<iFileManager::eCopyRC> {
        static_cast<void>(catalogue_.removeFile(video(1), mediaAll, false));
        return std::nullopt;
    };
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
    EXPECT_TRUE(folder_.holds("m/v1.mov"));
}

TEST_F(FailingLocalise, TheShortcutOfASharedSourceUpdatesTheCatalogueInFull) {
    addLinkedClip(1, "elsewhere/a.mov");
    addLinkedClip(2, "elsewhere/a.mov");
    EXPECT_EQ(run({clip(1), clip(2)}, mediaOriginal), 1);
    EXPECT_EQ(calls_->count("copy"), 1U);
    EXPECT_FALSE(entry(video(2))->isLinked());
}

// ---- Space ----

class SpaceOfDrives : public OpenTask {};

TEST_F(SpaceOfDrives, ExactlyEnoughIsEnough) {
    addLinkedClip(1);
    files_.freeBytes = 5;
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 1);
}

TEST_F(SpaceOfDrives, AByteTooLittleIsSaidAndNothingChanges) {
    addLinkedClip(1);
    files_.freeBytes = 4;
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 2);
    std::string const text = narrow(resourceStrW(11043)
                                        .substitute(L"$NUM1$", bytesAsString(4, true))
                                        .substitute(L"$NUM2$", bytesAsString(5, true)));
    EXPECT_THAT(transcript(), ElementsAre("log 4 " + text));
    EXPECT_EQ(calls_->count("edit.modification"), 0U);
    EXPECT_TRUE(entry(video(1))->isLinked());
}

TEST_F(SpaceOfDrives, EachDriveIsTestedAgainstTheBytesOfAllJobs) {
    addLinkedClip(1, "elsewhere/a.mov");
    addLinkedClip(2, "elsewhere/b.mov");
    catalogue_.addEntry(video(2), linked('N', "v2.mov", "elsewhere/b.mov"));
    files_.freeBytes = 9;
    EXPECT_EQ(run({clip(1), clip(2)}, mediaOriginal), 2);
    EXPECT_EQ(calls_->count("log 4"), 1U);
}

TEST_F(SpaceOfDrives, WithoutJobsItIsEnough) {
    files_.freeBytes = 0;
    EXPECT_EQ(run({}, mediaOriginal), 1);
}

/// What fails is the copy, which has nowhere to go.
TEST_F(SpaceOfDrives, ADriveThatIsNotThereIsNoReasonToRefuse) {
    addLinkedClip(1);
    catalogue_.addEntry(video(1), linked('Q', "v1.mov", "elsewhere/a.mov"));
    files_.freeBytes = 0;
    EXPECT_EQ(run({clip(1)}, mediaOriginal), 0);
    EXPECT_THAT(transcript(), ElementsAre("log 0 Clip 1"));
}

TEST_F(SpaceOfDrives, BehindADriveThatIsNotThereTheOthersAreTestedAllTheSame) {
    addLinkedClip(1, "elsewhere/a.mov");
    addLinkedClip(2, "elsewhere/b.mov");
    catalogue_.addEntry(video(1), linked('A', "v1.mov", "elsewhere/a.mov"));
    files_.freeBytes = 9;
    EXPECT_EQ(run({clip(1), clip(2)}, mediaOriginal), 2);
    EXPECT_EQ(calls_->count("log 4"), 1U);
}

}  // namespace
}  // namespace test
