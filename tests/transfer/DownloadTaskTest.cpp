/// Which jobs a download makes of clips, and the order and end of their work.
#include "transfer/DownloadTask.h"

#include "tests/transfer/TransferFixture.h"
#include "toolkit/services/Paths.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// Notes its jobs, and answers what a test says.
class NotingTask : public DownloadTask {
public:
    explicit NotingTask(eMediaTypes types)
        : DownloadTask(Args{{}, types, importanceUsual, LightweightString<wchar_t>(L"the title")}) {}

    using DownloadTask::completedBytes;
    using DownloadTask::copyProgress;
    using DownloadTask::currentFileBytes;
    using DownloadTask::destinations;
    using DownloadTask::download;
    using DownloadTask::pendingFiles;
    using DownloadTask::totalBytes;

    Jobs jobs;
    std::vector<std::size_t> checkedCounts;
    bool hasSpace = true;
    /// Codes of the jobs in their order; then all are copied.
    std::vector<eCopyRC> codes;

private:
    int run() override { return download({}); }
    eCopyRC save(CopyJob const& job) override {
        jobs.push_back(job);
        return jobs.size() <= codes.size() ? codes[jobs.size() - 1] : iFileManager::copied;
    }
    bool sufficientDiskSpace(Jobs const& list, Ox::Ptr<iTaskLog> const& log) const override {
        auto* const self = const_cast<NotingTask*>(this);
        self->checkedCounts.push_back(list.size());
        EXPECT_EQ(log.get(), getLog().get());
        return hasSpace;
    }
};

class DownloadTaskTest : public TransferFixture {
protected:
    Ox::Ptr<NotingTask> taskFor(eMediaTypes types) {
        auto task = Ox::makePtr<NotingTask>(types);
        task->setLog(log_);
        return task;
    }
    static std::vector<std::string> sourcesOf(NotingTask const& task) {
        std::vector<std::string> names;
        for (auto const& job : task.jobs) {
            names.push_back(narrow(job.filename));
        }
        return names;
    }
    /// Clip 1 in the remote project space, with this list of files.
    void addRemoteClip(unsigned number, std::vector<std::string> const& list) {
        FakeRemoteSpace& space = spaces_.space ? *Ox::dynamicPtrCast<FakeRemoteSpace>(spaces_.space)
                                               : spaces_.enterRemoteSpace({});
        for (std::string const& name : list) {
            space.originals[clip(number)].push_back(wide(name));
        }
        catalogue_.addEntry(video(number), MediaFileInfo());
    }
};

TEST_F(DownloadTaskTest, AnEmptySetIsCompleteAndItsSpaceIsAskedFor) {
    auto const task = taskFor(mediaAll);
    EXPECT_EQ(task->download({}), DownloadTask::resultComplete);
    EXPECT_THAT(task->checkedCounts, ElementsAre(0U));
}

TEST_F(DownloadTaskTest, ACookieThatTheCatalogueDoesNotKnowIsPassedOverInSilence) {
    auto const task = taskFor(mediaAll);
    EXPECT_EQ(task->download({video(7)}), 1);
    EXPECT_THAT(task->jobs, IsEmpty());
    EXPECT_THAT(transcript(), IsEmpty());
}

TEST_F(DownloadTaskTest, ALinkedFileIsAJobWithAllThatTheCatalogueKnows) {
    write("elsewhere/a.mov", "12345");
    MediaFileInfo entry = linked('M', "video/a.mov", "elsewhere/a.mov", 99);
    entry.streamCount = 3;
    catalogue_.addEntry(video(), entry);
    auto const task = taskFor(mediaOriginal);
    EXPECT_EQ(task->download({video()}), 1);
    ASSERT_THAT(task->jobs, SizeIs(1));
    EXPECT_EQ(task->jobs[0].cookie, video());
    EXPECT_EQ(task->jobs[0].filename, full("elsewhere/a.mov"));
    EXPECT_EQ(task->jobs[0].size, 5U);
    EXPECT_EQ(task->jobs[0].info.streamCount, 3U);
    EXPECT_EQ(task->jobs[0].info.size, 99U);
    EXPECT_EQ(task->destinations.at(full("elsewhere/a.mov")), full("m/video/a.mov"));
    EXPECT_EQ(task->totalBytes, 5U);
}

TEST_F(DownloadTaskTest, TwoClipsThatLinkOneSourceGiveTwoJobsTheSecondOfSizeZero) {
    write("elsewhere/a.mov", "12345");
    catalogue_.addEntry(video(1), linked('M', "1.mov", "elsewhere/a.mov"));
    catalogue_.addEntry(video(2), linked('M', "2.mov", "elsewhere/a.mov"));
    auto const task = taskFor(mediaOriginal);
    EXPECT_EQ(task->download({video(1), video(2)}), 1);
    ASSERT_THAT(task->jobs, SizeIs(2));
    EXPECT_EQ(task->jobs[0].size, 5U);
    EXPECT_EQ(task->jobs[1].size, 0U);
    EXPECT_EQ(narrow(task->jobs[1].info.materialFilename.getPath()), "2.mov");
    EXPECT_EQ(task->totalBytes, 5U);
    EXPECT_EQ(task->destinations.at(full("elsewhere/a.mov")), full("m/1.mov"));
}

TEST_F(DownloadTaskTest, AFileAtItsPlaceOnADriveIsNoJob) {
    spaces_.enterRemoteSpace({}).originals[clip()] = {wide("far://a.mov")};
    catalogue_.addEntry(video(), own('M', "a.mov"));
    auto const task = taskFor(mediaOriginal);
    EXPECT_EQ(task->download({video()}), 1);
    EXPECT_THAT(task->jobs, IsEmpty());
}

TEST_F(DownloadTaskTest, AFileWithoutADriveOrWithoutAPathLivesInTheRemoteSpace) {
    addRemoteClip(1, {"far://1.mov"});
    addRemoteClip(2, {"far://2.mov"});
    catalogue_.addEntry(video(1), own('M', ""));
    catalogue_.addEntry(video(2), own(DriveId::none, "2.mov"));
    auto const task = taskFor(mediaOriginal);
    EXPECT_EQ(task->download({video(1), video(2)}), 1);
    EXPECT_THAT(sourcesOf(*task), ElementsAre("far://1.mov", "far://2.mov"));
}

TEST_F(DownloadTaskTest, ARemoteFileGoesToTheDriveOfImportsUnderItsCookie) {
    write("remote/x/Clip.One.MOV", "1234567");
    addRemoteClip(1, {"far://x/Clip.One.MOV"});
    auto const task = taskFor(mediaOriginal);
    EXPECT_EQ(task->download({video()}), 1);
    ASSERT_THAT(task->jobs, SizeIs(1));
    MaterialFilename const& place = task->jobs[0].info.materialFilename;
    EXPECT_EQ(place.getDrive(), DriveId('M'));
    EXPECT_EQ(place.getPath(),
              MediaDrive::getFolder(video()) + video().asWString() + LightweightString<wchar_t>(L".MOV"));
    EXPECT_EQ(task->jobs[0].info.size, 7U);
    EXPECT_EQ(task->jobs[0].info.kind, 0U);
    EXPECT_EQ(task->destinations.at(wide("far://x/Clip.One.MOV")), place.getOsPath());
    EXPECT_TRUE(spaces_.askedForCurrent);
}

TEST_F(DownloadTaskTest, OfAListOfThreeOnlyTheFirstIsTransferred) {
    addRemoteClip(1, {"far://a.mov", "far://b.mov", "far://c.mov"});
    auto const task = taskFor(mediaOriginal);
    EXPECT_EQ(task->download({video()}), 1);
    EXPECT_THAT(sourcesOf(*task), ElementsAre("far://a.mov"));
}

TEST_F(DownloadTaskTest, AnEmptyListAndNoSpaceAtAllGiveNoJob) {
    addRemoteClip(1, {});
    auto const task = taskFor(mediaOriginal);
    EXPECT_EQ(task->download({video()}), 1);
    spaces_.space = {};
    EXPECT_EQ(task->download({video()}), 1);
    EXPECT_THAT(task->jobs, IsEmpty());
}

TEST_F(DownloadTaskTest, ARemoteSourceThatComesAgainLeavesAJobThatKnowsNothing) {
    write("remote/a.mov", "123");
    addRemoteClip(1, {"far://a.mov"});
    addRemoteClip(2, {"far://a.mov"});
    auto const task = taskFor(mediaOriginal);
    EXPECT_EQ(task->download({video(1), video(2)}), 1);
    ASSERT_THAT(task->jobs, SizeIs(2));
    EXPECT_EQ(task->jobs[1].size, 0U);
    EXPECT_EQ(task->jobs[1].filename, wide("far://a.mov"));
    EXPECT_TRUE(task->jobs[1].info.materialFilename.getPath().empty());
    EXPECT_EQ(task->totalBytes, 3U);
}

TEST_F(DownloadTaskTest, TheHighResolutionFileComesBeforeTheProxiesAndClipsInTheOrderOfTheirCookies) {
    catalogue_.addEntry(
        video(2), linked('M', "2.mov", "far://2.mov"),
        {asProxy(linked('M', "2p.mov", "far://2p.mov")), asProxy(linked('M', "2q.mov", "far://2q.mov"))});
    catalogue_.addEntry(video(1), linked('M', "1.mov", "far://1.mov"),
                        {asProxy(linked('M', "1p.mov", "far://1p.mov"))});
    auto const task = taskFor(mediaAll);
    EXPECT_EQ(task->download({video(2), video(1)}), 1);
    EXPECT_THAT(sourcesOf(*task),
                ElementsAre("far://1.mov", "far://1p.mov", "far://2.mov", "far://2p.mov", "far://2q.mov"));
}

TEST_F(DownloadTaskTest, OnlyTheMediaThatAreAskedForAreJobs) {
    catalogue_.addEntry(video(), linked('M', "1.mov", "far://1.mov"),
                        {asProxy(linked('M', "1p.mov", "far://1p.mov"))});
    auto const originals = taskFor(mediaOriginal);
    auto const proxies = taskFor(mediaProxy);
    auto const nothing = taskFor(0);
    EXPECT_EQ(originals->download({video()}) + proxies->download({video()}) + nothing->download({video()}),
              3);
    EXPECT_THAT(sourcesOf(*originals), ElementsAre("far://1.mov"));
    EXPECT_THAT(sourcesOf(*proxies), ElementsAre("far://1p.mov"));
    EXPECT_THAT(nothing->jobs, IsEmpty());
}

TEST_F(DownloadTaskTest, AProxyThatIsHereOrNotAvailableIsNeverCopied) {
    MediaFileInfo missing = asProxy(linked('M', "p.mov", "far://p.mov"));
    missing.status = MediaFileInfo::missing;
    catalogue_.addEntry(video(), MediaFileInfo(), {missing, asProxy(own('M', "q.mov"))});
    auto const task = taskFor(mediaAll);
    EXPECT_EQ(task->download({video()}), 1);
    EXPECT_THAT(task->jobs, IsEmpty());
    EXPECT_THAT(task->pendingFiles, IsEmpty());
}

TEST_F(DownloadTaskTest, TwoClipsThatNameOneProxyGiveOneJob) {
    write("remote/p.mov", "1234");
    for (unsigned number : {1U, 2U}) {
        catalogue_.addEntry(video(number), MediaFileInfo(), {asProxy(linked('M', "p.mov", "far://p.mov"))});
    }
    auto const task = taskFor(mediaProxy);
    EXPECT_EQ(task->download({video(1), video(2)}), 1);
    EXPECT_THAT(task->jobs, SizeIs(1));
    EXPECT_EQ(task->totalBytes, 4U);
}

TEST_F(DownloadTaskTest, ProxiesHaveNoPlaceAmongTheDestinations) {
    catalogue_.addEntry(video(), MediaFileInfo(), {asProxy(linked('M', "p.mov", "far://p.mov"))});
    auto const task = taskFor(mediaProxy);
    EXPECT_EQ(task->download({video()}), 1);
    EXPECT_THAT(task->destinations, IsEmpty());
    EXPECT_TRUE(task->jobs.at(0).info.isProxy());
}

TEST_F(DownloadTaskTest, WithoutSpaceNothingIsCopied) {
    catalogue_.addEntry(video(), linked('M', "1.mov", "far://1.mov"));
    auto const task = taskFor(mediaOriginal);
    task->hasSpace = false;
    EXPECT_EQ(task->download({video()}), DownloadTask::resultNoSpace);
    EXPECT_THAT(task->checkedCounts, ElementsAre(1U));
    EXPECT_THAT(task->jobs, IsEmpty());
}

class EndingJobs : public DownloadTaskTest {
protected:
    int downloadWith(std::vector<iFileManager::eCopyRC> const& codes) {
        for (unsigned number : {1U, 2U, 3U}) {
            write("remote/" + std::to_string(number), std::string(number, 'x'));
            catalogue_.addEntry(video(number), linked('M', "x", "far://" + std::to_string(number)));
        }
        task_ = taskFor(mediaOriginal);
        task_->codes = codes;
        return task_->download({video(1), video(2), video(3)});
    }

    Ox::Ptr<NotingTask> task_;
};

TEST_F(EndingJobs, AFailedJobEndsAllWithZero) {
    EXPECT_EQ(downloadWith({iFileManager::copied, iFileManager::copyFailed}), DownloadTask::resultFailed);
    EXPECT_THAT(task_->jobs, SizeIs(2));
    EXPECT_EQ(task_->completedBytes, 1U);
}

TEST_F(EndingJobs, AStoppedJobEndsAllWithThree) {
    EXPECT_EQ(downloadWith({iFileManager::copyStopped}), DownloadTask::resultStopped);
    EXPECT_THAT(task_->jobs, SizeIs(1));
    EXPECT_EQ(task_->completedBytes, 0U);
}

TEST_F(EndingJobs, EveryOtherCodeEndsAllWithZero) {
    for (auto const code : {iFileManager::copyNoFolder, iFileManager::copyCannotAccess,
                            iFileManager::copyNoDestination, static_cast<iFileManager::eCopyRC>(77)}) {
        EXPECT_EQ(downloadWith({code}), DownloadTask::resultFailed) << code;
    }
}

TEST_F(EndingJobs, CompletedBytesAreThoseOfAllJobs) {
    EXPECT_EQ(downloadWith({}), DownloadTask::resultComplete);
    EXPECT_EQ(task_->completedBytes, 6U);
    EXPECT_EQ(task_->totalBytes, 6U);
    EXPECT_FLOAT_EQ(task_->getProgress(), 1.0F);
}

TEST_F(DownloadTaskTest, WithoutBytesProgressIsZero) {
    auto const task = taskFor(mediaAll);
    task->currentFileBytes = 5;
    EXPECT_EQ(task->getProgress(), 0.0F);
}

TEST_F(DownloadTaskTest, ProgressIsTheBytesOfThisFileAndOfTheJobsDone) {
    auto const task = taskFor(mediaAll);
    task->totalBytes = 8;
    task->completedBytes = 4;
    task->currentFileBytes = 2;
    EXPECT_EQ(task->getProgress(), 0.75F);
    task->currentFileBytes = 12;
    EXPECT_EQ(task->getProgress(), 2.0F);
}

TEST_F(DownloadTaskTest, TheCopyTellsTheLogWithoutATextAndGoesOn) {
    auto const task = taskFor(mediaAll);
    task->totalBytes = 4;
    EXPECT_NE(NotingTask::copyProgress(task.get(), 1, 77), 0);
    EXPECT_EQ(task->currentFileBytes, 1U);
    EXPECT_THAT(log_->fractions, ElementsAre(0.25));
    EXPECT_EQ(log_->progressTexts, "");
}

TEST_F(DownloadTaskTest, AnAbortEndsTheCopyAtItsNextReport) {
    auto const task = taskFor(mediaAll);
    task->abort();
    EXPECT_EQ(NotingTask::copyProgress(task.get(), 1, 2), 0);
    EXPECT_EQ(task->currentFileBytes, 1U);
}

// ---- With real copies ----

/// Copies each source to the folder "out", under its own name.
class SavingTask : public DownloadTask {
public:
    SavingTask() : DownloadTask(Args{{}, mediaOriginal, importanceUsual, {}}) {}

    using DownloadTask::completedBytes;
    using DownloadTask::currentFileBytes;
    using DownloadTask::totalBytes;

    Name folder;
    /// Run behind each job.
    std::function<void()> onSaved = [] {};

private:
    int run() override { return download({}); }
    eCopyRC save(CopyJob const& job) override {
        eCopyRC const code = DownloadTask::save(job, folder + stripPath(job.filename));
        onSaved();
        return code;
    }
};

class SavingJobs : public DownloadTaskTest {
protected:
    SavingJobs() {
        task_->setLog(log_);
        task_->folder = full("out/");
    }

    /// A clip that is linked to a file elsewhere.
    void addLinkedClip(unsigned number, std::string const& name, std::string const& contents) {
        write("elsewhere/" + name, contents);
        catalogue_.addEntry(video(number), linked('M', name, "elsewhere/" + name));
    }

    Ox::Ptr<SavingTask> const task_ = Ox::makePtr<SavingTask>();
};

/// Deliberate: nobody looks between two jobs whether the task is to stop.
TEST_F(SavingJobs, AnAbortBetweenTwoJobsStopsTheNextAtItsFirstReport) {
    addLinkedClip(1, "a.mov", "12345");
    addLinkedClip(2, "b.mov", "1234567");
    task_->onSaved = [this] {
        task_->abort();
        log_->fractions.clear();
        task_->onSaved = [] {};
    };
    EXPECT_EQ(task_->download({video(1), video(2)}), DownloadTask::resultStopped);
    EXPECT_THAT(transcript(),
                ElementsAre("log 0 ", "copy elsewhere/a.mov out/a.mov.partial 1 told",
                            "rename out/a.mov.partial out/a.mov 1", "log 0 ",
                            "copy elsewhere/b.mov out/b.mov.partial 1 told", "delete out/b.mov.partial"));
    EXPECT_THAT(log_->fractions, SizeIs(1));
}

/// Deliberate: the parts are counted as they arrive, and the job's own file, the first part, at its end.
TEST_F(SavingJobs, TheFirstPartOfAChunkedFileCountsTwice) {
    addLinkedClip(1, "A_001.R3D", "1234");
    write("elsewhere/A_002.R3D", "12");
    EXPECT_EQ(task_->download({video(1)}), DownloadTask::resultComplete);
    EXPECT_EQ(task_->totalBytes, 6U);
    EXPECT_EQ(task_->completedBytes, 10U);
    EXPECT_EQ(task_->currentFileBytes, 2U);
    EXPECT_FLOAT_EQ(task_->getProgress(), 2.0F);
}

/// Deliberate: until the next file begins, the bytes of the last one count twice.
TEST_F(SavingJobs, TheBytesOfAFileStayUntilTheNextOneBegins) {
    addLinkedClip(1, "a.mov", "12345");
    addLinkedClip(2, "b.mov", "123");
    std::vector<std::uint64_t> between;
    task_->onSaved = [&] { between.push_back(task_->currentFileBytes); };
    EXPECT_EQ(task_->download({video(1), video(2)}), DownloadTask::resultComplete);
    EXPECT_THAT(between, ElementsAre(5U, 3U));
    EXPECT_THAT(log_->fractions, ElementsAre(testing::DoubleNear(5.0 / 8, 1e-6), 1.0));
    EXPECT_FLOAT_EQ(task_->getProgress(), 11.0F / 8.0F);
}

TEST_F(DownloadTaskTest, KnowsItsTitleAndImportanceAndHasNoId) {
    auto const task = taskFor(mediaAll);
    EXPECT_EQ(task->getDescription(), L"the title");
    EXPECT_EQ(task->getImportance(), iBackgroundTask::importanceUsual);
    EXPECT_FALSE(task->getID().valid());
}

}  // namespace
}  // namespace test
