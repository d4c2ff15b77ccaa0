#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "tests/fakes/RecordingIssuer.h"
#include "tests/fakes/ScriptedFile.h"
#include "tests/fakes/WatchedThreads.h"
#include "toolkit/services/Settings.h"
#include "video/VideoReadQueue.h"

using RequestPtr = Ox::Ptr<VideoReadRequest>;

/// Watches all threads, and lets idle workers look at their lists every 2 ms, unless an earlier test of
/// the process has read that setting.
class WatchedWorkers : public ::testing::Test {
protected:
    WatchedWorkers() { setConfigInt("ReadPollDelay", 2); }

    WatchedThreads& threads = WatchedThreads::instance();
};

/// A video read queue whose list can be filled behind its back and whose end is recorded.
class OpenedQueue : public Ox::VideoReadQueue {
public:
    explicit OpenedQueue(std::shared_ptr<CallLog> calls) : calls_(std::move(calls)) {}
    ~OpenedQueue() override { queue.decRef(); }

    void shutdown(Shutdown::eExitType exitType) override {
        calls_->add("queue.shutdown");
        VideoReadQueue::shutdown(exitType);
    }
    /// Waits at the gate, between the list of those that wait and the list of those under way.
    void despatch(RequestPtr& request) override {
        despatchGate.pass();
        VideoReadQueue::despatch(request);
    }
    /// Adds a request without waking the worker.
    void enqueueSilently(RequestPtr& request) { queue->enqueue(request); }
    /// Stops the worker when it has served what waits.
    void stop() { queue.decRef(); }

    Gate despatchGate{true};

private:
    std::shared_ptr<CallLog> const calls_;
};

/// A queue of its own and a file that does as its script says.
class QueueFixture : public WatchedWorkers {
protected:
    using Frames = std::vector<std::uint32_t>;

    /// What is wanted, beside the frame.
    struct Wanted {
        std::uint32_t width = 100;
        std::uint32_t height = 50;
        Ox::Image::Format format = Ox::Image::gray8;
        eResultType resultType = resultAsDelivered;
        RecordingIssuer* issuer = nullptr;
        Ox::Ptr<IndexInfoRep> indexInfo = nullptr;
        /// Empty for the fixture's own.
        Ox::Ptr<FileReadInstance> file = nullptr;
    };

    ~QueueFixture() override;

    RequestPtr make(std::uint32_t frame, Wanted const& wanted);
    RequestPtr make(std::uint32_t frame) { return make(frame, Wanted()); }
    /// Queues a read and gives what the caller's pointer then holds.
    RequestPtr ask(std::uint32_t frame, Wanted const& wanted);
    RequestPtr ask(std::uint32_t frame) { return ask(frame, Wanted()); }
    /// Queues a read and waits until it is done and the worker has let go of it.
    RequestPtr read(std::uint32_t frame, Wanted wanted);
    RequestPtr read(std::uint32_t frame) { return read(frame, Wanted()); }
    /// Makes the worker busy with a read of another file, so that whatever comes now has to wait.
    void occupyWorker();
    /// Lets the worker go, stops it when it has served everything, and gives the frames of this file
    /// that it has read.
    Frames finish();

    std::shared_ptr<CallLog> const calls = std::make_shared<CallLog>();
    FileScriptPtr const script = std::make_shared<FileScript>(calls);
    Ox::Ptr<FileReadInstance> file = makeVideoFile(script);
    FileScriptPtr const occupantScript = std::make_shared<FileScript>();
    RecordingIssuer first;
    RecordingIssuer second;
    OpenedQueue queue{calls};

private:
    RequestPtr occupant_;
};

[[nodiscard]] Ox::Ptr<IndexInfoRep> makeUnit(std::uint16_t offset, std::uint32_t start, std::uint32_t end);
