#pragma once

#include <cstddef>

#include "ole/Ox/OxDecouplingQueue.h"
#include "video/TakenUpRequests.h"
#include "video/VideoReadRequest.h"

namespace Ox {

/// Serves the video reads of one open file: one worker thread, reads in order of arrival.
///
/// Before it takes a request the queue looks through everything it holds: waiting, being read, or read
/// and still referenced. A request that one of those will satisfy is absorbed: its issuers join the
/// older one, and the caller's pointer then holds that.
///
/// Ownership  The pool owns idle queues; a file borrows one from its first video read until its
///            destructor. A caller cancels by dropping its pointer: a waiting request that only the
///            queue still holds is discarded, unread, untold. A finished one that a caller keeps goes
///            on matching; one that nobody holds goes at the next `limitUsage`, or when the worker rests and
///            finds that nobody holds the file either.
/// Threads    queueReadRequest, purge, limitUsage: any thread. despatch: the worker only. No lock is
///            held while a frame is read.
/// Lock order The file's lock, the pool's lock (first read only), the queue's lock, `IssuersT`'s lock.
/// Errors     A read reports by the request's status. A request that comes after `shutdown` fails.
/// Deliberate A failed request that is still referenced absorbs new issuers and does not call them.
///            Between the list of those that wait and the list of those under way a request is on
///            neither, and a like one that comes just then is read separately.
class VideoReadQueue : public DecouplingQueue<VideoReadRequest>::Decoupler {
public:
    /// Starts the worker.
    VideoReadQueue();
    ~VideoReadQueue() override;

    /// Absorbs the request or queues it; the answer is always 1.
    unsigned int queueReadRequest(Ptr<VideoReadRequest>& request);

    /// The request that will yield `request`'s frame at its width or wider: those that wait come before
    /// those under way or done, older ones before newer. Empty if there is none. Requires the lock.
    [[nodiscard]] Ptr<VideoReadRequest> findMatchingRequest(Ptr<VideoReadRequest>& request) const;

    /// Joins the issuers of `request` to `existing`, and makes `request` hold it. If it is complete they
    /// are told at once, on this thread.
    void reuseRequest(Ptr<VideoReadRequest>& existing, Ptr<VideoReadRequest>& request);

    /// Reads one request, unless nobody else holds it any more.
    void despatch(Ptr<VideoReadRequest>& request) override;

    /// Lets go of every request that was taken up; those that wait stay.
    void purge();

    /// Lets go of the finished requests that nobody else holds.
    void limitUsage();

    /// Lets go of everything if the file is held by nothing but finished requests that nobody else holds:
    /// file, queue and requests hold each other then, and nobody can come by a request for it any more.
    void releaseForgottenFile();

    /// How many requests were taken up and are still kept.
    [[nodiscard]] std::size_t getActiveCount();
    /// How many wait.
    [[nodiscard]] std::size_t getPendingCount();
    /// True on the queue's own worker, which must not destroy the queue.
    [[nodiscard]] bool isThisThreadTheWorker() const;

private:
    [[nodiscard]] CriticalSection& lock() { return lock_->section; }

    /// The queue's own lock, which outlives the queue.
    Ptr<DecouplingQueue<VideoReadRequest>::SharedLock> lock_;
    /// Guarded by the lock.
    TakenUpRequests active_;
};

}  // namespace Ox
