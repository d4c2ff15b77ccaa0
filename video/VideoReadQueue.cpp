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

/// The frames that a request will yield of a file that isn't read streaming, both included.
struct FrameRange {
    std::uint32_t low;
    std::uint32_t high;

    [[nodiscard]] bool contains(std::uint32_t frame) const { return frame >= low && frame <= high; }
};

FrameRange framesOf(std::uint32_t frame, IndexInfoRep const* unit, FileReadInstance const& file) {
    if (unit) {
        return {unit->unitOffset + unit->unitStart, unit->unitEnd};
    }
    PlayFileMetadataRep const& metadata = *file.metadata;
    if (metadata.frameGrouped && metadata.framesPerGroup != 0) {
        std::uint32_t const low = frame - frame % metadata.framesPerGroup;
        return {low, low + metadata.framesPerGroup - 1};
    }
    return {frame, frame};
}

void trace(TraceEvent::ePhase phase, char const* name, VideoReadRequest const& request,
           TraceEvent::Fact const& fact = {}) {
    PlayFileTrace::step(phase, VideoReadRequest::traceCategory, name, request.number, fact);
}

bool isFinished(RequestStatus status) {
    return status != requestBuilt && status != requestTakenUp;
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
/// nobody can hold it any more.
unsigned int VideoReadQueue::queueReadRequest(Ptr<VideoReadRequest>& request) {
    ExternalPtr<DecouplingQueue<VideoReadRequest>> woken;
    {
        ScopedLock const scope(lock());
        if (!queue) {
            PlayFileCounters::add(playFileCounters().framesFailed);
            request->requestHasCompleted(requestFailed);
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

/// In a streamed file a read yields its own frame only. What others yield is asked at each look: a reader learns more
/// of a file while it reads.
Ptr<VideoReadRequest> VideoReadQueue::findMatchingRequest(Ptr<VideoReadRequest>& request) const {
    std::uint32_t const frame = request->frame;
    bool const isStreaming = request->file->metadata->readStreaming();
    auto const hasFrame = [&](std::uint32_t own, IndexInfoRep const* unit, FileReadInstance const& file) {
        return isStreaming ? own == frame : framesOf(own, unit, file).contains(frame);
    };
    auto const isAlike = [&](VideoReadRequest const& candidate) {
        return candidate.resultType == request->resultType && candidate.getWidth() >= request->getWidth();
    };
    if (queue) {
        for (Ptr<VideoReadRequest> const& pending : queue->requests()) {
            if (hasFrame(pending->frame, pending->indexInfo.get(), *pending->file) && isAlike(*pending)) {
                return pending;
            }
        }
    }
    for (TakenUp const& taken : active_) {
        if (hasFrame(taken.frame, taken.unit.get(), *taken.file) && isAlike(*taken.request)) {
            return taken.request;
        }
    }
    return {};
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
        active_.emplace_back(request);
    }
    request->file->readVideo(request);
}

void VideoReadQueue::purge() {
    ScopedLock const scope(lock());
    active_.clear();
}

/// What goes is released outside the lock, as it can be slow: buffers, a last reference to a file. Those
/// before the first that goes aren't moved.
void VideoReadQueue::limitUsage() {
    std::vector<Ptr<VideoReadRequest>> unused;
    ScopedLock const scope(lock());
    auto const isUnused = [](TakenUp const& taken) {
        return taken.request.useCount() == 1 && isFinished(taken.request->getRequestStatus());
    };
    auto kept = std::find_if(active_.begin(), active_.end(), isUnused);
    for (auto taken = kept; taken != active_.end(); ++taken) {
        if (isUnused(*taken)) {
            unused.push_back(std::move(taken->request));
        } else {
            *kept++ = std::move(*taken);
        }
    }
    active_.erase(kept, active_.end());
}

/// As long as the counts say so, nobody else holds the file or one of its requests, so nobody can make the counts
/// rise. What goes is released outside the lock, and with the file the queue goes back into its pool.
void VideoReadQueue::releaseForgottenFile() {
    std::vector<TakenUp> forgotten;
    ScopedLock const scope(lock());
    if (active_.empty() || !queue || !queue->requests().empty()) {
        return;
    }
    Ptr<FileReadInstance> const& file = active_.front().request->file;
    auto const holdsTheFileAlone = [&file](TakenUp const& taken) {
        return taken.file == file.get() && taken.request.useCount() == 1 &&
               isFinished(taken.request->getRequestStatus());
    };
    if (file.useCount() == active_.size() && std::all_of(active_.begin(), active_.end(), holdsTheFileAlone)) {
        forgotten.swap(active_);
    }
}

std::size_t VideoReadQueue::getActiveCount() {
    ScopedLock const scope(lock());
    return active_.size();
}

std::size_t VideoReadQueue::getPendingCount() {
    ScopedLock const scope(lock());
    return queue ? queue->requests().size() : 0;
}

bool VideoReadQueue::isThisThreadTheWorker() const {
    return queue && queue->isThisThreadAWorker();
}

}  // namespace Ox
