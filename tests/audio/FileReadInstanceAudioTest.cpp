/// A file and its queues: when it takes the one for sound, and who frees what.
#include <cstdlib>

#include "audio/AudioQueuePool.h"
#include "tests/audio/AudioFixture.h"
#include "tests/fakes/ScriptedFile.h"
#include "tests/fakes/WatchedThreads.h"
#include "video/QueuePools.h"

namespace {

/// A file that reads through a queue of the pool.
class FileReadInstanceAudioTest : public ::testing::Test {
protected:
    using FilePtr = Ox::Ptr<FileReadInstance>;

    ~FileReadInstanceAudioTest() override { script->readGate.open(); }

    [[nodiscard]] FilePtr makeFile(OpenType type = OpenType::audio) const {
        return Ox::makePtr<ScriptedSound>("sound", type, script, std::vector{soundFormat(2)});
    }
    /// The caller cancels the read by dropping the pointer.
    [[nodiscard]] AudioRequestPtr ask(FilePtr const& from, RecordingIssuer* told) {
        AudioRequestPtr request = makeSoundRequest(from, {.issuer = told});
        EXPECT_EQ(from->queueReadRequest(request), 1U);
        return request;
    }
    /// Reads, and waits until the worker has let go of the request.
    void read(FilePtr const& from) {
        RecordingIssuer told;
        AudioRequestPtr const request = ask(from, &told);
        EXPECT_TRUE(told.waitForCalls(1));
        EXPECT_TRUE(threads.waitUntilIdle(script->readBy));
    }
    /// Leaves a file to its worker alone, which is inside a read. An issuer that is told keeps the request.
    void leaveToWorker(RecordingIssuer* told = nullptr) {
        script->readGate.close();
        FilePtr const leaving = makeFile();
        AudioRequestPtr const dropped = ask(leaving, told);
        ASSERT_TRUE(script->readGate.waitForArrivals(1));
    }
    /// Empties the pool, and gives what was in it.
    static std::vector<Ox::ExternalPtr<Ox::AudioReadQueue>> takeAll() {
        std::vector<Ox::ExternalPtr<Ox::AudioReadQueue>> taken;
        while (audioQueuePool().getFreeCount() > 0) {
            taken.push_back(audioQueuePool().getItem());
        }
        return taken;
    }
    static std::uint64_t created() { return audioQueuePool().getCreated(); }

    WatchedThreads& threads = WatchedThreads::instance();
    SoundScriptPtr const script = std::make_shared<SoundScript>();
    RecordingIssuer issuer;
    std::uint64_t const createdBefore = created();
    std::size_t const freeBefore = audioQueuePool().getFreeCount();
};

TEST_F(FileReadInstanceAudioTest, HoldsNoQueueBeforeItsFirstRequest) {
    FilePtr file = makeFile();
    file->purge();
    file->limitUsage();
    file = nullptr;
    EXPECT_EQ(created(), createdBefore);
    EXPECT_EQ(audioQueuePool().getFreeCount(), freeBefore);
}

TEST_F(FileReadInstanceAudioTest, TakesOneQueueForAllItsRequests) {
    FilePtr const file = makeFile();
    read(file);
    std::uint64_t const afterFirst = created();
    std::thread::id const worker = script->readBy;
    read(file);
    EXPECT_EQ(created(), afterFirst);
    EXPECT_EQ(script->readBy.load(), worker);
}

TEST_F(FileReadInstanceAudioTest, GivesItsQueueToTheFileThatComesNext) {
    auto const taken = takeAll();
    read(makeFile());
    std::thread::id const worker = script->readBy;
    std::uint64_t const afterFirst = created();
    read(makeFile());
    EXPECT_EQ(created(), afterFirst);
    EXPECT_EQ(script->readBy.load(), worker);
}

TEST_F(FileReadInstanceAudioTest, GivesItsQueueBackWhenItIsDestroyed) {
    FilePtr file = makeFile();
    read(file);
    std::size_t const whileOpen = audioQueuePool().getFreeCount();
    file = nullptr;
    EXPECT_EQ(audioQueuePool().getFreeCount(), whileOpen + 1);
}

TEST_F(FileReadInstanceAudioTest, LooksAtItsOpenTypeAndNotAtItsReadableTypes) {
    FilePtr const file = makeFile();
    file->readableTypes = OpenType::video;
    read(file);
    EXPECT_EQ(script->startsRead().size(), 1U);
}

TEST_F(FileReadInstanceAudioTest, ReadsSoundOfAFileThatIsOpenForBoth) {
    read(makeFile(OpenType::both));
    EXPECT_EQ(script->startsRead().size(), 1U);
}

TEST_F(FileReadInstanceAudioTest, TakesNoRequestThatItWasNotOpenedFor) {
    FilePtr const file = makeFile(OpenType::video);
    file->readableTypes = OpenType::both;
    AudioRequestPtr request = makeSoundRequest(file, {.issuer = &issuer});
    EXPECT_EQ(file->queueReadRequest(request), 0U);
    EXPECT_EQ(request->getRequestStatus(), requestBuilt);
    EXPECT_EQ(issuer.callCount(), 0U);
    EXPECT_EQ(created(), createdBefore);
}

TEST_F(FileReadInstanceAudioTest, TakesAVideoQueueAndASoundQueueEachForItself) {
    FilePtr const file = makeFile(OpenType::both);
    std::uint64_t const videoBefore = videoQueuePool().getCreated();
    read(file);
    EXPECT_EQ(videoQueuePool().getCreated(), videoBefore);
}

TEST_F(FileReadInstanceAudioTest, IsHeldByARequestThatIsRead) {
    leaveToWorker(&issuer);
    EXPECT_EQ(script->destroyedCount, 0U);
    script->readGate.open();
    ASSERT_TRUE(issuer.waitForCalls(1));
    EXPECT_EQ(issuer.only().status, requestComplete);
}

TEST_F(FileReadInstanceAudioTest, CanBeReleasedForTheLastTimeOnItsOwnQueuesThread) {
    auto const taken = takeAll();
    leaveToWorker();
    script->readGate.open();
    ASSERT_TRUE(script->destroyGate.waitForArrivals(1));
    ASSERT_TRUE(threads.waitUntilIdle(script->readBy));
    EXPECT_EQ(script->destroyedCount, 1U);
    EXPECT_EQ(script->destroyedBy.load(), script->readBy.load());
    EXPECT_EQ(audioQueuePool().getFreeCount(), 1U) << "the queue was not given back";
    std::uint64_t const afterFirst = created();
    read(makeFile());
    EXPECT_EQ(created(), afterFirst);
}

/// The pool is shut once in a process, so this has a process of its own.
class ShutAudioPoolDeathTest : public FileReadInstanceAudioTest {
protected:
    ShutAudioPoolDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Ends the process with 0 if the queue of the last file ends without waiting for itself.
    [[noreturn]] void seeTheQueueEnd() {
        leaveToWorker();
        audioQueuePool().shutdown(Shutdown::normalExit);
        std::shared_ptr<MadeThread> const worker = threads.find("AudioReadQueue");
        script->readGate.open();
        bool const hasEnded = worker->ended.waitForArrivals(1) && threads.find("QueueRelease") &&
                              threads.find("QueueRelease")->ended.waitForArrivals(1);
        bool const wasOnWorker = script->destroyedBy.load() == script->readBy.load();
        std::_Exit(hasEnded && wasOnWorker && script->destroyedCount == 1 ? 0 : 1);
    }
};

TEST_F(ShutAudioPoolDeathTest, DoesNotWaitForItselfWhenTheLastReleaseIsOnTheQueuesThread) {
    EXPECT_EXIT(seeTheQueueEnd(), ::testing::ExitedWithCode(0), "");
}

TEST_F(ShutAudioPoolDeathTest, StillReadsFilesThatComeLater) {
    EXPECT_EXIT(
        {
            audioQueuePool().shutdown(Shutdown::normalExit);
            read(makeFile());
            std::_Exit(script->startsRead().size() == 1 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(ShutAudioPoolDeathTest, EndsTheQueueWithItsFile) {
    EXPECT_EXIT(
        {
            FilePtr file = makeFile();
            read(file);
            audioQueuePool().shutdown(Shutdown::normalExit);
            std::shared_ptr<MadeThread> const worker = threads.find("AudioReadQueue");
            bool const isRunning = worker->ended.arrivals() == 0;
            file = nullptr;
            bool const isJoined = worker->ended.arrivals() == 1;
            std::_Exit(isRunning && isJoined && audioQueuePool().getFreeCount() == 0 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

/// A file that is read for both media takes and gives back both queues.
class BothQueuesDeathTest : public FileReadInstanceAudioTest {
protected:
    BothQueuesDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// A file with both queues, neither of them at work.
    FilePtr makeReadFile() {
        FilePtr file = makeFile(OpenType::both);
        read(file);
        RecordingIssuer told;
        Ox::Ptr<IndexInfoRep> none;
        auto request =
            Ox::makePtr<VideoReadRequest>(file, none, 0, resultAsDelivered, DecodeFormat(), told.getProxy());
        file->queueReadRequest(request);
        EXPECT_TRUE(told.waitForCalls(1));
        request = nullptr;
        EXPECT_TRUE(threads.waitUntilAllIdle());
        file->purge();
        return file;
    }
};

TEST_F(BothQueuesDeathTest, AreGivenBackTogether) {
    FilePtr file = makeReadFile();
    std::size_t const videoFree = videoQueuePool().getFreeCount();
    std::size_t const audioFree = audioQueuePool().getFreeCount();
    file = nullptr;
    EXPECT_EQ(videoQueuePool().getFreeCount(), videoFree + 1);
    EXPECT_EQ(audioQueuePool().getFreeCount(), audioFree + 1);
}

TEST_F(BothQueuesDeathTest, EndVideosFirst) {
    EXPECT_EXIT(
        {
            FilePtr file = makeReadFile();
            videoQueuePool().shutdown(Shutdown::normalExit);
            audioQueuePool().shutdown(Shutdown::normalExit);
            std::shared_ptr<MadeThread> const video = threads.find("DQ<VideoReadRequest>");
            std::shared_ptr<MadeThread> const audio = threads.find("AudioReadQueue");
            bool const areRunning = video->ended.arrivals() + audio->ended.arrivals() == 0;
            audio->ended.close();
            std::thread closing([&] { file = nullptr; });
            bool const isVideoOver = video->ended.waitForArrivals(1);
            audio->ended.open();
            closing.join();
            std::_Exit(areRunning && isVideoOver && audio->ended.arrivals() == 1 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

/// A queue that was shut down fails its requests on the caller's thread, which shows what that thread holds.
class ShutAudioQueueDeathTest : public FileReadInstanceAudioTest {
protected:
    ShutAudioQueueDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ShutAudioQueueDeathTest, IsForwardedToWithTheFilesLockHeld) {
    EXPECT_EXIT(
        {
            FilePtr const file = makeFile();
            read(file);
            Shutdown::run(Shutdown::normalExit);
            bool isLocked = false;
            RecordingIssuer looking(
                [&](RecordingIssuer::Call const&) { isLocked = file->lock.isHeldByThisThread(); });
            AudioRequestPtr const request = ask(file, &looking);
            bool const hasFailed = request->getRequestStatus() == requestFailed;
            std::_Exit(isLocked && hasFailed && !file->lock.isHeldByThisThread() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
