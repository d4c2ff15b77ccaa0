/// What the operations that start a transfer put on the queue.
#include "material/MaterialManager.h"
#include "tests/fakes/TaskShelf.h"
#include "tests/transfer/TransferFixture.h"
#include "toolkit/services/ResourceText.h"
#include "transfer/ExternalDownloadTask.h"
#include "transfer/LocaliseTask.h"

namespace test {
namespace {

using Name = LightweightString<wchar_t>;

class StartingTransfersTest : public TransferFixture {
protected:
    ~StartingTransfersTest() override {
        for (ResId const id : {ResIds::severalClips, ResIds::localising, ResIds::externalDownload}) {
            setResourceText(id, {});
        }
    }

    static CookieVec cookies(std::vector<Cookie> const& list) {
        CookieVec vector;
        for (Cookie const& cookie : list) {
            vector.add(cookie);
        }
        return vector;
    }
    /// Runs what was queued last, with the fixture's log.
    int runTask() {
        auto const task = Ox::dynamicPtrCast<BackgroundTaskBase>(shelf_.tasks.back());
        task->setLog(log_);
        task->execute();
        return task->getResult();
    }
    /// A log that refers to clip 2, which is linked.
    void addLogOfLinkedClip() {
        addClip(1, "The log");
        addClip(2, "The clip");
        catalogue_.setReferences(clip(1), 3, {clip(2)});
        write("elsewhere/a.mov", "media");
        catalogue_.addEntry(video(2), linked('M', "v.mov", "elsewhere/a.mov"),
                            {asProxy(linked('M', "p.mov", "far://p.mov"))});
        write("remote/p.mov", "proxy");
    }

    TaskShelf shelf_;
};

TEST_F(StartingTransfersTest, TheTitleOfOneClipEndsInItsName) {
    addClip(1, "Shot");
    EXPECT_EQ(MaterialManager::makeTaskTitle(cookies({clip(1)}), L"Copy"), L"Copy : Shot");
}

TEST_F(StartingTransfersTest, TheTitleOfAClipThatDoesNotOpenIsTheBaseAlone) {
    EXPECT_EQ(MaterialManager::makeTaskTitle(cookies({clip(1)}), L"Copy"), L"Copy");
}

TEST_F(StartingTransfersTest, TheTitleOfSeveralHasTheirNumberEverywhere) {
    setResourceText(11054, L"$NUM$ of $NUM$ $NUM");
    EXPECT_EQ(MaterialManager::makeTaskTitle(cookies({clip(1), clip(2), clip(3)}), L"Copy"),
              L"Copy : 3 of 3 $NUM");
    EXPECT_EQ(MaterialManager::makeTaskTitle({}, L"Copy"), L"Copy : 0 of 0 $NUM");
}

TEST_F(StartingTransfersTest, EachCallQueuesOneTaskAndReturns) {
    MaterialManager::localiseMedia({}, 'M', true, true, iBackgroundTask::importanceLow, {});
    MaterialManager::localiseRemoteMedia({}, mediaAll, iBackgroundTask::importanceLow);
    MaterialManager::downloadRemoteMedia({}, mediaAll, {});
    ASSERT_EQ(shelf_.tasks.size(), 3U);
    EXPECT_EQ(shelf_.options, std::vector<bool>(3, false));
    EXPECT_TRUE(Ox::dynamicPtrCast<LocaliseTask>(shelf_.tasks[0]));
    EXPECT_TRUE(Ox::dynamicPtrCast<LocaliseTask>(shelf_.tasks[1]));
    EXPECT_TRUE(Ox::dynamicPtrCast<ExternalDownloadTask>(shelf_.tasks[2]));
    EXPECT_EQ(runTask(), 1);
}

TEST_F(StartingTransfersTest, LocalisingHasTheTitleThatItIsGivenOrTheUsualOneWithoutAClipsName) {
    addClip(1, "Shot");
    setResourceText(12989, L"Localising");
    MaterialManager::localiseMedia(cookies({clip(1)}), 'M', true, true, iBackgroundTask::importanceLow,
                                   L"Mine");
    MaterialManager::localiseMedia(cookies({clip(1)}), 'M', true, true, iBackgroundTask::importanceLow, {});
    EXPECT_EQ(shelf_.tasks[0]->getDescription(), L"Mine");
    EXPECT_EQ(shelf_.tasks[1]->getDescription(), L"Localising");
}

TEST_F(StartingTransfersTest, LocalisingIsAsImportantAsItIsSaidToBe) {
    std::vector<iBackgroundTask::eImportance> const all = {
        iBackgroundTask::importanceHigh, iBackgroundTask::importanceLow, iBackgroundTask::importanceUsual};
    for (auto const importance : all) {
        MaterialManager::localiseMedia({}, 'M', true, true, importance, L"Mine");
        EXPECT_EQ(shelf_.tasks.back()->getImportance(), importance);
    }
}

TEST_F(StartingTransfersTest, LocalisingRemoteMediaIsCalledAfterItsClips) {
    addClip(1, "Shot");
    setResourceText(12989, L"Localising");
    MaterialManager::localiseRemoteMedia(cookies({clip(1)}), mediaAll, iBackgroundTask::importanceUsual);
    EXPECT_EQ(shelf_.tasks[0]->getDescription(), L"Localising : Shot");
    EXPECT_EQ(shelf_.tasks[0]->getImportance(), iBackgroundTask::importanceUsual);
}

TEST_F(StartingTransfersTest, AnExternalDownloadHasAFixedImportance) {
    addClip(1, "Shot");
    setResourceText(12405, L"Downloading");
    MaterialManager::downloadRemoteMedia(cookies({clip(1)}), mediaAll, {});
    EXPECT_EQ(shelf_.tasks[0]->getDescription(), L"Downloading : Shot");
    EXPECT_EQ(static_cast<int>(shelf_.tasks[0]->getImportance()), 2);
}

TEST_F(StartingTransfersTest, LocalisingTakesLinkedMediaOfTheClipsThatLogsReferTo) {
    addLogOfLinkedClip();
    MaterialManager::localiseMedia(cookies({clip(1)}), 'M', true, false, iBackgroundTask::importanceLow, {});
    EXPECT_EQ(runTask(), 1);
    EXPECT_EQ(folder_.read("m/v.mov"), "media");
    EXPECT_FALSE(folder_.holds("m/p.mov"));
}

TEST_F(StartingTransfersTest, ProxiesAloneAreTakenWhereTheyAloneAreAskedFor) {
    addLogOfLinkedClip();
    MaterialManager::localiseMedia(cookies({clip(1)}), 'M', false, true, iBackgroundTask::importanceLow, {});
    EXPECT_EQ(runTask(), 1);
    EXPECT_FALSE(folder_.holds("m/v.mov"));
    EXPECT_EQ(folder_.read("m/p.mov"), "proxy");
}

TEST_F(StartingTransfersTest, WithNeitherThereIsATaskThatCopiesNothing) {
    addLogOfLinkedClip();
    MaterialManager::localiseMedia(cookies({clip(1)}), 'M', false, false, iBackgroundTask::importanceLow, {});
    EXPECT_EQ(runTask(), 1);
    EXPECT_EQ(calls_->count("copy"), 0U);
}

TEST_F(StartingTransfersTest, LocalisingRemoteMediaPassesOverWhatIsOnlyLinked) {
    addLogOfLinkedClip();
    MaterialManager::localiseRemoteMedia(cookies({clip(1)}), mediaOriginal, iBackgroundTask::importanceLow);
    EXPECT_EQ(runTask(), 1);
    EXPECT_EQ(calls_->count("copy"), 0U);
}

TEST_F(StartingTransfersTest, AnExternalDownloadHasACopyOfItsSettings) {
    addLogOfLinkedClip();
    ExternalDownloadSettings settings;
    settings.location = full("out");
    settings.proxyExt = L"mxf";
    MaterialManager::downloadRemoteMedia(cookies({clip(1)}), mediaProxy, settings);
    settings.location = {};
    EXPECT_EQ(runTask(), 1);
    EXPECT_EQ(folder_.read("out/The clip.proxy.mxf"), "proxy");
}

}  // namespace
}  // namespace test
