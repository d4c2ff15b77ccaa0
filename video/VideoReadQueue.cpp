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

/// The frames that a request will yield, both included.
struct FrameRange {
    std::uint32_t low;
    std::uint32_t high;
};

FrameRange framesOf(VideoReadRequest const& candidate, bool isStreaming) {
    if (isStreaming) {
        return {candidate.frame, candidate.frame};
    }
    if (IndexInfoRep const* unit = candidate.indexInfo.get()) {
        return {unit->unitOffset + unit->unitStart, unit->unitEnd};
    }
    PlayFileMetadataRep const& metadata = *candidate.file->metadata;
    if (metadata.frameGrouped && metadata.framesPerGroup != 0) {
        std::uint32_t const low = candidate.frame - candidate.frame % metadata.framesPerGroup;
        return {low, low + metadata.framesPerGroup - 1};
    }
    return {candidate.frame, candidate.frame};
}

bool isFinished(RequestStatus status) {
    return status != requestBuilt && status != requestTakenUp;
}

}  // namespace

VideoReadQueue::VideoReadQueue() {
    init(workerCount, iThread::normal, anyProcessor, workerStackBytes, Shutdown::queueOrder,
         static_cast<std::uint32_t>(getReadPollDelay()));
    lock_ = queue->sharedLock();
}

VideoReadQueue::~VideoReadQueue() {
    purge();
    queue.decRef();
}

unsigned int VideoReadQueue::queueReadRequest(Ptr<VideoReadRequest>& request) {
    ScopedLock const scope(lock());
    if (!queue) {
        request->requestHasCompleted(requestFailed);
        return 1;
    }
    Ptr<VideoReadRequest> found = findMatchingRequest(request);
    if (found) {
        reuseRequest(found, request);
    } else {
        PlayFileCounters::add(playFileCounters().requestsQueued);
        queue->enqueue(request);
        queue->signal();
    }
    limitUsage();
    return 1;
}

Ptr<VideoReadRequest> VideoReadQueue::findMatchingRequest(Ptr<VideoReadRequest>& request) const {
    bool const isStreaming = request->file->metadata->readStreaming();
    auto const matches = [&](Ptr<VideoReadRequest> const& candidate) {
        FrameRange const range = framesOf(*candidate, isStreaming);
        return request->frame >= range.low && request->frame <= range.high &&
               candidate->resultType == request->resultType && candidate->getWidth() >= request->getWidth();
    };
    if (queue) {
        auto const& pending = queue->requests();
        auto const found = std::find_if(pending.begin(), pending.end(), matches);
        if (found != pending.end()) {
            return *found;
        }
    }
    auto const found = std::find_if(active_.begin(), active_.end(), matches);
    return found == active_.end() ? Ptr<VideoReadRequest>() : *found;
}

void VideoReadQueue::reuseRequest(Ptr<VideoReadRequest>& existing, Ptr<VideoReadRequest>& request) {
    PlayFileCounters::add(playFileCounters().requestsMerged);
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
        return;
    }
    request->setRequestStatus(requestTakenUp);
    {
        ScopedLock const scope(lock());
        active_.push_back(request);
    }
    request->file->readVideo(request);
}

void VideoReadQueue::purge() {
    ScopedLock const scope(lock());
    active_.clear();
}

/// What goes is released outside the lock, as it can be slow: buffers, a last reference to a file.
void VideoReadQueue::limitUsage() {
    RequestVector unused;
    {
        ScopedLock const scope(lock());
        auto const kept =
            std::stable_partition(active_.begin(), active_.end(), [](Ptr<VideoReadRequest> const& request) {
                return request.useCount() != 1 || !isFinished(request->getRequestStatus());
            });
        unused.assign(std::make_move_iterator(kept), std::make_move_iterator(active_.end()));
        active_.erase(kept, active_.end());
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
