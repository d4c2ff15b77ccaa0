#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "ole/Ox/OxDecouplingQueue.h"

namespace test {

/// A request with a number.
class Job : public virtual iObject {
public:
    explicit Job(int jobNumber) : number(jobNumber) {}
    int const number;
};

/// How a `JobOwner` sets up its queue.
struct QueueSetup {
    unsigned numThreads = 1;
    iThread::ePriority priority = iThread::normal;
    unsigned threadOption = static_cast<unsigned>(-1);
    unsigned stackSize = 0;
    unsigned shutdownOrder = Shutdown::queueOrder;
    std::uint32_t waitMs = iThread::noTimeLimit;
    char const* name = nullptr;
};

/// An owner of a queue of jobs; it notes what its queue despatches.
///
/// Threads  Any; `onDespatch` and `onShutdown` are set before the queue works.
class JobOwner : public DecouplingQueue<Job>::Decoupler {
public:
    using JobPtr = Ox::Ptr<Job>;
    using Queue = DecouplingQueue<Job>;

    explicit JobOwner(QueueSetup const& setup = {}) {
        if (setup.name) {
            name = LightweightString<char>(setup.name);
        }
        init(setup.numThreads, setup.priority, setup.threadOption, setup.stackSize, setup.shutdownOrder,
             setup.waitMs);
    }
    ~JobOwner() override {
        Shutdown::removeCallback(shutdownCallback);
        queue.decRef();
    }

    void despatch(JobPtr& job) override {
        if (onDespatch) {
            onDespatch(job);
        }
        std::scoped_lock const lock(mutex_);
        done_.push_back(job->number);
        workers_.push_back(std::this_thread::get_id());
        changed_.notify_all();
    }
    void shutdown(Shutdown::eExitType exitType) override {
        if (onShutdown) {
            onShutdown();
        }
        Decoupler::shutdown(exitType);
    }

    /// Adds jobs of these numbers without waking a worker.
    void enqueue(std::vector<int> const& numbers) {
        for (int const number : numbers) {
            JobPtr job = Ox::makePtr<Job>(number);
            queue->enqueue(job);
        }
    }
    void add(int number) {
        enqueue({number});
        queue->signal();
    }

    /// Waits until that many jobs were despatched, and gives their numbers in order.
    std::vector<int> awaitDone(std::size_t count) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return done_.size() >= count; });
        return done_;
    }
    [[nodiscard]] std::vector<int> done() {
        std::scoped_lock const lock(mutex_);
        return done_;
    }
    /// The thread of each despatch, in order.
    [[nodiscard]] std::vector<std::thread::id> workers() {
        std::scoped_lock const lock(mutex_);
        return workers_;
    }

    [[nodiscard]] Ox::ExternalPtr<Queue> const& theQueue() const { return queue; }
    [[nodiscard]] LightweightString<char> const& theName() const { return name; }
    [[nodiscard]] Shutdown::CallbackPtr const& theCallback() const { return shutdownCallback; }

    std::function<void(JobPtr&)> onDespatch;
    std::function<void()> onShutdown;

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<int> done_;
    std::vector<std::thread::id> workers_;
};

}  // namespace test
