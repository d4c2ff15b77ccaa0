#pragma once

#include <set>

#include "audio/AudioReadRequest.h"
#include "ole/os/BasicThread.h"
#include "ole/os/Shutdown.h"

namespace Ox {

/// Serves the audio reads of one open file: one worker thread, always the lowest sample first, so that
/// a reader sees its requests in the order of the data.
///
/// Nothing is merged: each request is served on its own. Requests that begin at the same sample go by
/// their channel, and those alike in both in the order of arrival.
///
/// Ownership  The pool owns idle queues; a file borrows one from its first audio read until its
///            destructor. A caller cancels by dropping its pointer: a request that only the queue still
///            holds is dropped unread, untold.
/// Threads    queueReadRequest: any thread. despatchItemFromQueue, threadFn: the worker only. shutdown:
///            the thread that runs `Shutdown`.
/// Lock order The file's lock, then the queue's. The queue's is never held while a read runs.
/// Errors     A read reports by the request's status. A request that comes after `shutdown` fails, and so
///            does one of a queue whose thread the system didn't give.
class AudioReadQueue : public BasicThread {
public:
    /// Starts the worker, and registers with `Shutdown`.
    AudioReadQueue();
    /// Ends the worker, which serves what is waiting first.
    ~AudioReadQueue() override;

    /// Queues a reference of its own; the answer is always 1.
    unsigned int queueReadRequest(Ptr<AudioReadRequest>& request);

    /// Ends the worker, which serves what is waiting first.
    ///
    /// Deliberate  On the worker itself, whose read is ending the process and never returns, what waits
    ///             is left: the worker can't wait for itself.
    void shutdown(Shutdown::eExitType exitType);

    /// One round of the worker: reads the first request, unless nobody else holds it any more.
    void despatchItemFromQueue();

    /// True on the queue's own worker, which must not destroy the queue.
    [[nodiscard]] bool isThisThreadTheWorker() const { return isThisThread(); }

    /// How many wait.
    [[nodiscard]] std::size_t getPendingCount() const {
        return pendingCount_.load(std::memory_order_relaxed);
    }

protected:
    void threadFn() override;

private:
    struct LowestFirst {
        bool operator()(Ptr<AudioReadRequest> const& a, Ptr<AudioReadRequest> const& b) const {
            return a->startSample != b->startSample ? a->startSample < b->startSample
                                                    : a->getChannelIndex() < b->getChannelIndex();
        }
    };

    /// False if nobody would serve the request.
    [[nodiscard]] bool accept(Ptr<AudioReadRequest> const& request);
    [[nodiscard]] Ptr<AudioReadRequest> takeFirst();

    CriticalSection lock_{eLockRank::queue, "AudioReadQueue"};
    std::multiset<Ptr<AudioReadRequest>, LowestFirst> pending_ PLAYFILE_GUARDED_BY(lock_);
    /// Set when the worker is to end: nothing is added to `pending_` any more.
    bool isStopped_ PLAYFILE_GUARDED_BY(lock_) = false;
    /// Size of `pending_` for the worker's loop, which looks without the lock: a stale value costs a
    /// further round or a further wait at most, as every arrival signals as well.
    std::atomic<std::size_t> pendingCount_{0};
    ThreadEventPtr const wakeEvent_;
    Shutdown::CallbackPtr const shutdownCallback_;
};

}  // namespace Ox
