#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "ole/Ox/OxClassName.h"
#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"
#include "ole/os/OS.h"
#include "ole/os/Shutdown.h"
#include "toolkit/services/Log.h"

/// Cuts the thread that asks for work from the threads that do it.
///
/// A caller hands a counted request to a first-in, first-out list and returns at once. Worker threads
/// take requests off the list and hand each to the owner's `despatch`. A request that was accepted is
/// always despatched, also while the queue ends.
///
/// Ownership  The owner (`Decoupler`) holds the queue; its last release joins the workers and frees it.
///            The list holds its requests, a worker the one that it despatches.
/// Threads    enqueue, signal: any thread. `despatch` runs on a worker, with `lock` not held.
/// Lock order `lock` is a queue lock; nothing is called under it here.
/// Units      Waits in milliseconds, 0xFFFFFFFF without limit.
/// Errors     A priority that the system refuses is logged; the thread runs on without it. What leaves
///            `despatch` as an exception goes to `threadExceptionHandler`.
template <class T>
class DecouplingQueue {
public:
    class Decoupler;
    using RequestPtr = Ox::Ptr<T>;
    using RequestList = std::deque<RequestPtr>;

    /// More threads than this count as this many.
    static constexpr unsigned maxThreads = 16;

    /// The lock, counted so that an owner may go on using it when the queue has gone.
    struct SharedLock : public Ox::InternalRefCount {
        CriticalSection section{eLockRank::queue, "DecouplingQueue"};
    };

    /// Makes the events and threads; with `numThreads` 0 neither, and then it can take no request.
    ///
    /// @param threadOption  handed on to each thread
    /// @param stackSize     bytes, 0 for the system's default
    /// @param decoupler     the owner; must outlive the queue
    /// @param waitMs        the longest sleep of a worker before it looks at the list again
    DecouplingQueue(unsigned numThreads, iThread::ePriority priority, int threadOption, unsigned stackSize,
                    Decoupler* decoupler, std::uint32_t waitMs)
        : decoupler_(decoupler), waitMs_(waitMs) {
        if (numThreads == 0) {
            return;
        }
        wakeEvent_ = OS()->getThreads().makeEvent(false, false, 0);
        stopEvent_ = OS()->getThreads().makeEvent(true, false, 0);
        isRunning_.store(true, std::memory_order_relaxed);
        for (unsigned i = 0; i < std::min(numThreads, maxThreads); ++i) {
            startThread(priority, threadOption, stackSize);
        }
    }

    /// Joins the workers, which despatch all that is waiting first.
    ~DecouplingQueue() {
        if (!threads_.empty()) {
            isRunning_.store(false, std::memory_order_relaxed);
            stopEvent_->set();
            for (Ox::Ptr<iThread> const& thread : threads_) {
                thread->waitForEnd(iThread::noTimeLimit);
            }
            threads_.clear();
        }
        wakeEvent_.decRef();
        stopEvent_.decRef();
        requests_.clear();
    }
    DecouplingQueue(DecouplingQueue const&) = delete;
    DecouplingQueue& operator=(DecouplingQueue const&) = delete;

    /// Appends a reference of its own to `request`.
    void enqueue(RequestPtr& request) {
        ScopedLock const scope(lock());
        requests_.push_back(request);
        requestCount_.store(requests_.size(), std::memory_order_relaxed);
    }

    /// Wakes a worker if anything is waiting.
    void signal() {
        bool isEmpty = true;
        {
            ScopedLock const scope(lock());
            isEmpty = requests_.empty();
        }
        if (!isEmpty) {
            wakeEvent_->set();
        }
    }

    /// A worker's body; 0 when it ends.
    static int decoupledThread(void* queue) {
        static_cast<DecouplingQueue*>(queue)->work();
        return 0;
    }

    [[nodiscard]] CriticalSection& lock() { return lock_->section; }
    [[nodiscard]] Ox::Ptr<SharedLock> const& sharedLock() const { return lock_; }
    /// What wakes a worker. It may be set when the queue has gone.
    [[nodiscard]] ThreadEventPtr const& wakeEvent() const { return wakeEvent_; }

    /// What is waiting, oldest first. Requires `lock`.
    [[nodiscard]] RequestList const& requests() const { return requests_; }

    [[nodiscard]] std::size_t threadCount() const { return threads_.size(); }

    /// True on one of the queue's own workers, which must not destroy the queue.
    [[nodiscard]] bool isThisThreadAWorker() const {
        return std::any_of(threads_.begin(), threads_.end(),
                           [](Ox::Ptr<iThread> const& thread) { return thread->isThisThread(); });
    }

    /// Makes the queue hold itself, so that no release frees it.
    void keepForEver(Ox::ExternalPtr<DecouplingQueue> const& self) { self_ = self; }

private:
    void startThread(iThread::ePriority priority, int threadOption, unsigned stackSize) {
        ThreadDescription description;
        description.entry = &DecouplingQueue::decoupledThread;
        description.argument = this;
        description.stackSize = stackSize;
        description.name = decoupler_->name;
        description.exceptionHandler = &threadExceptionHandler;
        Ox::Ptr<iThread> thread = OS()->getThreads().makeThread(description);
        if (!thread) {
            LogBoth("Failed to make thread (%s)\n", decoupler_->name.c_str());
            return;
        }
        threads_.push_back(thread);
        if (!thread->setPriority(priority)) {
            LogBoth("Failed to set process priority (%s)\n", decoupler_->name.c_str());
        }
        thread->setAffinity(threadOption);
    }

    void work() {
        std::vector<ThreadEventPtr> const events{wakeEvent_, stopEvent_};
        bool hasWorked = false;
        while (isRunning()) {
            OS()->getThreads().waitForAny(events, waitMs_);
            while (isRunning() && hasRequests()) {
                despatchFirst();
                hasWorked = true;
            }
            if (isRunning()) {
                rest(hasWorked);
            }
        }
        while (hasRequests()) {
            despatchFirst();
            hasWorked = true;
        }
        rest(hasWorked);
    }

    /// Before its first request a worker may run while its owner is still being made.
    void rest(bool hasWorked) {
        if (hasWorked && decoupler_->atRest) {
            decoupler_->atRest();
        }
    }

    /// The real test is made under the lock: another worker may have emptied the list meanwhile.
    void despatchFirst() {
        RequestPtr request;
        {
            ScopedLock const scope(lock());
            if (!requests_.empty()) {
                request = std::move(requests_.front());
                requests_.pop_front();
                requestCount_.store(requests_.size(), std::memory_order_relaxed);
            }
        }
        if (request) {
            decoupler_->despatch(request);
        }
    }

    /// `stopEvent_` is what wakes a sleeping worker, so a relaxed flag is enough.
    [[nodiscard]] bool isRunning() const { return isRunning_.load(std::memory_order_relaxed); }
    /// A cheap hint, without the lock.
    [[nodiscard]] bool hasRequests() const { return requestCount_.load(std::memory_order_relaxed) != 0; }

    Ox::Ptr<SharedLock> const lock_ = Ox::makePtr<SharedLock>();
    // Guarded by lock_.
    RequestList requests_;
    std::atomic<std::uint64_t> requestCount_{0};
    // Constant while workers live.
    ThreadEventPtr wakeEvent_;
    ThreadEventPtr stopEvent_;
    Decoupler* const decoupler_;
    std::vector<Ox::Ptr<iThread>> threads_;
    std::atomic<bool> isRunning_{false};
    std::uint32_t const waitMs_;
    /// Set when the queue is never to be freed.
    Ox::ExternalPtr<DecouplingQueue> self_;
};

/// The owner of a queue: derive from it, and call `init` from the constructor of the derived class.
///
/// Ownership  A derived class's destructor removes `shutdownCallback` from `Shutdown` first, so that nobody
///            else is about to release `queue`, and then releases it, while its `despatch` still exists.
/// Threads    Constructor, `init` and destructor: one thread. `shutdown`: the thread that runs
///            `Shutdown`. After `shutdown`, `queue` is empty and no request may be added any more.
template <class T>
class DecouplingQueue<T>::Decoupler {
public:
    Decoupler() = default;
    Decoupler(Decoupler const&) = delete;
    Decoupler& operator=(Decoupler const&) = delete;

    virtual ~Decoupler() {
        if (shutdownCallback) {
            Shutdown::removeCallback(shutdownCallback);
        }
        shutdownCallback.decRef();
        name = LightweightString<char>();
        queue.decRef();
    }

    /// Does the work of one request, on a worker, with the queue's lock not held. The worker keeps its
    /// reference to `request` until this returns.
    virtual void despatch(Ox::Ptr<T>& request) = 0;

    /// Stops and frees the queue.
    ///
    /// Deliberate  On a worker of the queue, whose `despatch` is ending the process and never returns,
    ///             the queue stays as it is: the worker can't wait for itself.
    virtual void shutdown(Shutdown::eExitType) {
        if (queue && queue->isThisThreadAWorker()) {
            queue->keepForEver(queue);
        }
        queue.decRef();
    }

protected:
    /// Names the threads (a `name` set before is kept), makes the queue and registers with `Shutdown`.
    void init(unsigned numThreads, iThread::ePriority priority, unsigned threadOption, unsigned stackSize,
              unsigned shutdownOrder, std::uint32_t waitMs) {
        if (name.empty()) {
            name = LightweightString<char>("DQ<") + Ox::classNameOf(typeid(T)) + LightweightString<char>(">");
        }
        queue = Ox::ExternalPtr<DecouplingQueue>(new DecouplingQueue(
            numThreads, priority, static_cast<int>(threadOption), stackSize, this, waitMs));
        shutdownCallback =
            Shutdown::CallbackPtr(new Shutdown::MethodCallback<Decoupler>(this, &Decoupler::shutdown));
        Shutdown::addCallback(shutdownCallback, shutdownOrder);
    }

    Ox::ExternalPtr<DecouplingQueue> queue;
    LightweightString<char> name;
    Shutdown::CallbackPtr shutdownCallback;
    /// Called on a worker that has served a request, each time it looks and finds nothing to do, and before
    /// it ends. Empty, or set before `init`.
    std::function<void()> atRest;

private:
    friend class DecouplingQueue<T>;
};
