/// The merging of like reads.
///
/// Everything that matches or merges happens under the queue's lock, so `limitUsage` can't let go of a
/// request that is just being found. The counts that `despatch` and `limitUsage` test may rise and fall
/// on other threads, but a count of 1 means that the list's or the worker's own reference is the only
/// one, and a new one can then only come through the list, under the lock. `despatch` reads it without
/// the lock for a request that is on no list: nobody can reach that any more.
#include "video/VideoReadQueue.h"

#include <algorithm>

#include "playfile/Counters.h"
#include "playfile/Settings.h"

namespace Ox {
namespace {

constexpr unsigned workerCount = 1;
constexpr unsigned anyProcessor = static_cast<unsigned>(-1);
constexpr unsigned workerStackBytes = 0x80000;

void trace(TraceEvent::ePhase phase, char const* name, VideoReadRequest const& request,
           TraceEvent::Fact const& fact = {}) {
    PlayFileTrace::step(phase, VideoReadRequest::traceCategory, name, request.number, fact);
}

}  // namespace

VideoReadQueue::VideoReadQueue() {
    atRest = [this] { releaseForgottenFile(); };
    init(workerCount, iThread::normal, anyProcessor, workerStackBytes, Shutdown::queueOrder,
         static_cast<std::uint32_t>(getReadPollDelay()));
    lock_ = queue->sharedLock();
}

/// First of all nobody may shut the queue down any more, nor be about to.
VideoReadQueue::~VideoReadQueue() {
    Shutdown::removeCallback(shutdownCallback);
    purge();
    queue.decRef();
}

/// The worker is woken when the lock has been left: woken under it, it would go back to sleep at once. If this is the
/// worker, whose read has led to the next request, it looks again by itself; and then the queue may be ending, when
/// nobody can hold it any more. The issuer of a request that comes too late may let go of it while it is told.
unsigned int VideoReadQueue::queueReadRequest(Ptr<VideoReadRequest>& request) {
    ExternalPtr<DecouplingQueue<VideoReadRequest>> woken;
    Ptr<VideoReadRequest> failed;
    {
        ScopedLock const scope(lock());
        if (!queue) {
            PlayFileCounters::add(playFileCounters().framesFailed);
            failed = request;
            failed->requestHasCompleted(requestFailed);
            return 1;
        }
        Ptr<VideoReadRequest> found = findMatchingRequest(request);
        if (found) {
            reuseRequest(found, request);
        } else {
            PlayFileCounters::add(playFileCounters().requestsQueued);
            trace(TraceEvent::requestStep, "queued", *request);
            queue->enqueue(request);
            if (!queue->isThisThreadAWorker()) {
                woken = queue;
            }
        }
        limitUsage();
    }
    if (woken) {
        woken->wakeEvent()->set();
    }
    return 1;
}

Ptr<VideoReadRequest> VideoReadQueue::findMatchingRequest(Ptr<VideoReadRequest>& request) const {
    FrameLook look(request->frame, *request->file);
    auto const isAlike = [&](VideoReadRequest const& candidate) {
        return candidate.resultType == request->resultType && candidate.getWidth() >= request->getWidth();
    };
    if (queue) {
        for (Ptr<VideoReadRequest> const& pending : queue->requests()) {
            if (look.isYieldedBy(*pending) && isAlike(*pending)) {
                return pending;
            }
        }
    }
    return active_.find(look, isAlike);
}

void VideoReadQueue::reuseRequest(Ptr<VideoReadRequest>& existing, Ptr<VideoReadRequest>& request) {
    PlayFileCounters::add(playFileCounters().requestsMerged);
    trace(TraceEvent::requestStep, "merged", *request, {"into", static_cast<std::int64_t>(existing->number)});
    trace(TraceEvent::requestEnds, VideoReadRequest::traceName, *request);
    existing->issuers.addIssuersFrom(request->issuers);
    RequestStatus const status = existing->getRequestStatus();
    if (&existing != &request) {
        request = existing;
    }
    if (status == requestComplete) {
        request->requestHasCompleted(requestComplete);
    }
}

void VideoReadQueue::despatch(Ptr<VideoReadRequest>& request) {
    if (request.useCount() == 1) {
        PlayFileCounters::add(playFileCounters().requestsDropped);
        trace(TraceEvent::requestStep, "dropped", *request);
        trace(TraceEvent::requestEnds, VideoReadRequest::traceName, *request);
        return;
    }
    request->setRequestStatus(requestTakenUp);
    {
        ScopedLock const scope(lock());
        active_.add(request);
    }
    request->file->readVideo(request);
}

void VideoReadQueue::purge() {
    TakenUpRequests::Requests all;
    ScopedLock const scope(lock());
    all = active_.takeAll();
}

/// What goes is released outside the lock, as it can be slow: buffers, a last reference to a file.
void VideoReadQueue::limitUsage() {
    TakenUpRequests::Requests unused;
    ScopedLock const scope(lock());
    unused = active_.takeUnused();
}

/// As long as the counts say so, nobody else holds the file or one of its requests, so nobody can make the counts
/// rise. What goes is released outside the lock, and with the file the queue goes back into its pool.
void VideoReadQueue::releaseForgottenFile() {
    TakenUpRequests::Requests forgotten;
    ScopedLock const scope(lock());
    TakenUpRequests::Requests const& all = active_.all();
    if (all.empty() || !queue || !queue->requests().empty()) {
        return;
    }
    Ptr<FileReadInstance> const& file = all.front()->file;
    auto const holdsTheFileAlone = [&file](Ptr<VideoReadRequest> const& taken) {
        return taken->file == file && TakenUpRequests::isUnused(taken);
    };
    if (file.useCount() == all.size() && std::all_of(all.begin(), all.end(), holdsTheFileAlone)) {
        forgotten = active_.takeAll();
    }
}

std::size_t VideoReadQueue::getActiveCount() {
    ScopedLock const scope(lock());
    return active_.all().size();
}

std::size_t VideoReadQueue::getPendingCount() {
    ScopedLock const scope(lock());
    return queue ? queue->requests().size() : 0;
}

bool VideoReadQueue::isThisThreadTheWorker() const {
    return queue && queue->isThisThreadAWorker();
}

}  // namespace Ox
