/// A file and its video queue: when it takes one, what a read answers, and who frees what.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <future>

#include "tests/video/QueueFixture.h"
#include "toolkit/services/TimedTask.h"
#include "video/QueuePools.h"

namespace {

/// A file that reads through a queue of the pool.
class FileReadInstanceVideoTest : public WatchedWorkers {
protected:
    using FilePtr = Ox::Ptr<FileReadInstance>;

    ~FileReadInstanceVideoTest() override { script->readGate.open(); }

    RequestPtr ask(FilePtr const& from, std::uint32_t frame, RecordingIssuer* told = nullptr) {
        FilePtr held = from;
        Ox::Ptr<IndexInfoRep> none;
        Ox::Ptr<ReadRequestIssuer::Proxy> const proxy = told ? told->getProxy() : nullptr;
        auto request =
            Ox::makePtr<VideoReadRequest>(held, none, frame, resultAsDelivered, DecodeFormat(), proxy);
        EXPECT_EQ(from->queueReadRequest(request), 1U);
        return request;
    }
    /// Reads a frame and waits until its worker has let go of it.
    RequestPtr read(FilePtr const& from, std::uint32_t frame) {
        RecordingIssuer told;
        RequestPtr request = ask(from, frame, &told);
        EXPECT_TRUE(told.waitForCalls(1));
        EXPECT_TRUE(threads.waitUntilIdle(script->readBy));
        return request;
    }
    /// Opens a file, reads a frame of it and closes it; gives the number that the frame holds.
    std::uint32_t readOnce(std::uint32_t frame) {
        FilePtr const file = makeVideoFile(script);
        RequestPtr const request = read(file, frame);
        file->purge();
        return numberOf(request->getResultBuffer());
    }
    /// Leaves a file to its worker alone, which is inside a read.
    void leaveToWorker() {
        script->readGate.close();
        FilePtr leaving = makeVideoFile(script);
        RequestPtr const dropped = ask(leaving, 5, &issuer);
        ASSERT_TRUE(script->readGate.waitForArrivals(1));
        leaving->purge();
    }
    static std::uint64_t created() { return videoQueuePool().getCreated(); }

    FileScriptPtr const script = std::make_shared<FileScript>();
    RecordingIssuer issuer;
    bool const isQuiet = threads.waitUntilAllIdle();
    std::uint64_t const createdBefore = created();
    std::size_t const freeBefore = videoQueuePool().getFreeCount();
};

TEST_F(FileReadInstanceVideoTest, HoldsNoQueueBeforeItsFirstRequest) {
    FilePtr file = makeVideoFile(script);
    file->purge();
    file->limitUsage();
    file = nullptr;
    EXPECT_EQ(created(), createdBefore);
    EXPECT_EQ(videoQueuePool().getFreeCount(), freeBefore);
}

TEST_F(FileReadInstanceVideoTest, TakesOneQueueForAllItsRequests) {
    FilePtr const file = makeVideoFile(script);
    read(file, 1);
    std::uint64_t const afterFirst = created();
    read(file, 2);
    file->purge();
    EXPECT_EQ(created(), afterFirst);
    EXPECT_EQ(script->framesRead(), (std::vector<std::uint32_t>{1, 2}));
}

TEST_F(FileReadInstanceVideoTest, GivesItsQueueToTheFileThatComesNext) {
    std::vector<Ox::ExternalPtr<Ox::VideoReadQueue>> taken;
    while (videoQueuePool().getFreeCount() > 0) {
        taken.push_back(videoQueuePool().getItem());
    }
    readOnce(1);
    std::thread::id const worker = script->readBy;
    std::uint64_t const afterFirst = created();
    readOnce(2);
    EXPECT_EQ(created(), afterFirst);
    EXPECT_EQ(script->readBy.load(), worker);
}

TEST_F(FileReadInstanceVideoTest, GivesItsQueueBackWhenItIsDestroyed) {
    FilePtr file = makeVideoFile(script);
    read(file, 1);
    std::size_t const whileOpen = videoQueuePool().getFreeCount();
    file->purge();
    file = nullptr;
    EXPECT_EQ(videoQueuePool().getFreeCount(), whileOpen + 1);
}

TEST_F(FileReadInstanceVideoTest, LooksAtItsOpenTypeAndNotAtItsReadableTypes) {
    FilePtr const file = makeVideoFile(script);
    file->readableTypes = 0;
    EXPECT_EQ(numberOf(read(file, 3)->getResultBuffer()), 3U);
    file->purge();
}

TEST_F(FileReadInstanceVideoTest, ReadsVideoOfAFileThatIsOpenForBoth) {
    FilePtr const file = Ox::makePtr<ScriptedFile>("both", OpenType::both, script);
    EXPECT_EQ(numberOf(read(file, 3)->getResultBuffer()), 3U);
    file->purge();
}

TEST_F(FileReadInstanceVideoTest, HoldsItsLockWhileItForwards) {
    FilePtr const file = makeVideoFile(script);
    RequestPtr const held = read(file, 5);
    bool isLocked = false;
    RecordingIssuer looking(
        [&](RecordingIssuer::Call const&) { isLocked = file->lock.isHeldByThisThread(); });
    ask(file, 5, &looking);
    file->purge();
    EXPECT_TRUE(isLocked);
    EXPECT_FALSE(file->lock.isHeldByThisThread());
}

TEST_F(FileReadInstanceVideoTest, PurgesAndLimitsWithoutItsLock) {
    FilePtr const file = makeVideoFile(script);
    read(file, 5);
    ScopedLock const scope(file->lock);
    auto const purging = std::async(std::launch::async, [&] {
        file->limitUsage();
        file->purge();
    });
    EXPECT_EQ(purging.wait_for(testPatience), std::future_status::ready);
}

TEST_F(FileReadInstanceVideoTest, PurgeLetsGoOfTheReadsOfTheQueue) {
    FilePtr const file = makeVideoFile(script);
    RequestPtr const held = read(file, 5);
    file->purge();
    EXPECT_EQ(held.useCount(), 1U);
}

TEST_F(FileReadInstanceVideoTest, LimitUsageLetsGoOfTheReadsThatNobodyHolds) {
    FilePtr const file = makeVideoFile(script);
    read(file, 5);
    std::uint32_t const held = file.useCount();
    file->limitUsage();
    EXPECT_EQ(file.useCount(), held - 1);
}

/// What a read of the reader answers, and what becomes of the request.
class ReadResultTest : public FileReadInstanceVideoTest {
protected:
    ~ReadResultTest() override {
        script->readGate.open();
        file->purge();
    }
    RequestPtr readAnswering(unsigned code) {
        script->answer = [=](std::uint32_t) { return code; };
        return read(file, 5);
    }
    FilePtr file = makeVideoFile(script);
};

TEST_F(ReadResultTest, TwoCompletesTheRequestWithTheBuffer) {
    RequestPtr const request = readAnswering(2);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(numberOf(request->getResultBuffer()), 5U);
}

TEST_F(ReadResultTest, TwoWithAnEmptyBufferFailsTheRequest) {
    script->makeBuffer = [](std::uint32_t) { return Ox::Ptr<FrameBufferRep>(); };
    EXPECT_EQ(readAnswering(2)->getRequestStatus(), requestFailed);
}

TEST_F(ReadResultTest, AnythingButOneAndTwoFailsTheRequestAndDropsAFilledBuffer) {
    for (unsigned const code : {0U, 3U, 4U, 2000U, 0xFFFFFFFFU}) {
        RequestPtr const request = readAnswering(code);
        EXPECT_EQ(request->getRequestStatus(), requestFailed) << code;
        EXPECT_FALSE(request->getResultBuffer()) << code;
        file->purge();
    }
}

TEST_F(ReadResultTest, AFailureIsToldWithAnEmptyResult) {
    script->answer = [](std::uint32_t) { return 3U; };
    RequestPtr const request = ask(file, 5, &issuer);
    ASSERT_TRUE(issuer.waitForCalls(1));
    EXPECT_EQ(issuer.only().status, requestFailed);
    EXPECT_FALSE(issuer.only().result);
}

TEST_F(ReadResultTest, OneLeavesTheRequestToTheReaderWhichCompletesItLater) {
    script->keepsRequests = true;
    script->answer = [](std::uint32_t) { return 1U; };
    RequestPtr const request = ask(file, 5, &issuer);
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    ASSERT_TRUE(threads.waitUntilIdle(script->readBy));
    EXPECT_EQ(request->getRequestStatus(), requestTakenUp);
    EXPECT_EQ(issuer.callCount(), 0U);
    RequestPtr const kept = script->takeKept().front();
    kept->setResultBuffer(makeNumberedBuffer(5));
    kept->requestHasCompleted(requestComplete);
    EXPECT_EQ(issuer.only().thread, std::this_thread::get_id());
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    file->purge();
}

TEST_F(ReadResultTest, OneDropsTheBufferThatTheReaderHandedBack) {
    script->keepsRequests = true;
    script->answer = [](std::uint32_t) { return 1U; };
    RequestPtr const request = ask(file, 5);
    ASSERT_TRUE(script->readGate.waitForArrivals(1));
    ASSERT_TRUE(threads.waitUntilIdle(script->readBy));
    EXPECT_FALSE(request->getResultBuffer());
    script->dropKept();
}

TEST_F(ReadResultTest, AReaderThatDoesNotReadVideoFailsTheRequest) {
    class Silent : public FileReadInstance {
    public:
        Silent() : FileReadInstance(L"silent", DecodeFormat(), OpenType::video) {}
        [[nodiscard]] LightweightString<char> getDescription() const override { return "silent"; }
    };
    FilePtr const silent = Ox::makePtr<Silent>();
    RequestPtr const request = ask(silent, 5, &issuer);
    ASSERT_TRUE(issuer.waitForCalls(1));
    EXPECT_EQ(issuer.only().status, requestFailed);
    EXPECT_FALSE(issuer.only().result);
    silent->purge();
}

TEST_F(ReadResultTest, IsTimedAsSectionReadOfTheTaskVideoOnEveryWayOut) {
    auto const readCount = [] {
        auto const sections = TimedTaskManager::getTimedTask("Video")->getSections();
        auto const found = std::find_if(sections.begin(), sections.end(),
                                        [](auto const& section) { return section.name.view() == "read"; });
        return found == sections.end() ? 0 : found->count;
    };
    readAnswering(2);
    std::uint64_t const before = readCount();
    file->purge();
    readAnswering(2);
    file->purge();
    readAnswering(3);
    EXPECT_EQ(readCount(), before + 2);
}

TEST_F(FileReadInstanceVideoTest, CanBeReleasedForTheLastTimeOnItsOwnQueuesThread) {
    leaveToWorker();
    script->readGate.open();
    ASSERT_TRUE(threads.waitUntilIdle(script->readBy));
    EXPECT_EQ(script->destroyedCount, 1U);
    EXPECT_EQ(script->destroyedBy.load(), script->readBy.load());
    std::uint64_t const afterFirst = created();
    readOnce(6);
    EXPECT_EQ(created(), afterFirst) << "the queue was not given back";
}

/// The pool is shut once in a process, so this has a process of its own.
class ShutPoolDeathTest : public FileReadInstanceVideoTest {
protected:
    ShutPoolDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Ends the process with 0 if the queue of the last file ends without waiting for itself.
    [[noreturn]] void releaseOnWorkerWithPoolShut() {
        leaveToWorker();
        videoQueuePool().shutdown(Shutdown::normalExit);
        std::shared_ptr<MadeThread> const worker = threads.find("DQ<VideoReadRequest>");
        script->readGate.open();
        bool const hasEnded = worker && worker->ended.waitForArrivals(1) && threads.find("QueueRelease") &&
                              threads.find("QueueRelease")->ended.waitForArrivals(1);
        bool const wasOnWorker = script->destroyedBy.load() == script->readBy.load();
        std::_Exit(hasEnded && wasOnWorker && script->destroyedCount == 1 ? 0 : 1);
    }
};

TEST_F(ShutPoolDeathTest, DoesNotWaitForItselfWhenTheLastReleaseIsOnTheQueuesThread) {
    EXPECT_EXIT(releaseOnWorkerWithPoolShut(), ::testing::ExitedWithCode(0), "");
}

TEST_F(ShutPoolDeathTest, StillReadsFilesThatComeLater) {
    EXPECT_EXIT(
        {
            videoQueuePool().shutdown(Shutdown::normalExit);
            std::_Exit(readOnce(5) == 5 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(ShutPoolDeathTest, EndsTheQueueWithItsFile) {
    EXPECT_EXIT(
        {
            FilePtr file = makeVideoFile(script);
            read(file, 5);
            videoQueuePool().shutdown(Shutdown::normalExit);
            std::shared_ptr<MadeThread> const worker = threads.find("DQ<VideoReadRequest>");
            file->purge();
            file = nullptr;
            bool const isJoined = worker->ended.arrivals() == 1;
            std::_Exit(isJoined && videoQueuePool().getFreeCount() == 0 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
