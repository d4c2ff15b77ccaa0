/// The part of an open file that has to do with its video queue.
#include "files/FileReadInstance.h"
#include "ole/os/Immortal.h"
#include "playfile/Counters.h"
#include "toolkit/services/TimedTask.h"
#include "video/QueuePools.h"
#include "video/VideoReadQueue.h"
#include "video/VideoReadRequest.h"

namespace {

/// Its times, which workers note until the process is gone.
struct VideoTask {
    Ox::Ptr<TimedTaskBase> const task = TimedTaskManager::createTimedTask("Video");
};

}  // namespace

/// The lock is held across the forwarding, so that requests of one file enter its queue one by one.
unsigned int FileReadInstance::queueReadRequest(Ox::Ptr<VideoReadRequest>& request) {
    ScopedLock const scope(lock);
    if (!videoQueue_ && (openType.mask() & OpenType::video) != 0) {
        videoQueue_ = videoQueuePool().getItem();
        hasVideoQueue_.store(true, std::memory_order_release);
    }
    return videoQueue_ ? videoQueue_->queueReadRequest(request) : oxFailure;
}

void FileReadInstance::purge() {
    if (hasVideoQueue_.load(std::memory_order_acquire)) {
        videoQueue_->purge();
    }
}

void FileReadInstance::limitUsage() {
    if (hasVideoQueue_.load(std::memory_order_acquire)) {
        videoQueue_->limitUsage();
    }
}

void FileReadInstance::readVideo(Ox::Ptr<VideoReadRequest>& request) {
    Ox::Ptr<TimedTaskBase> const& task = immortal<VideoTask>().task;
    TimedSection const section(task, "read");
    TraceSlice slice(VideoReadRequest::traceCategory, "read", request->number);
    slice.with("frame", request->frame).of(filename);
    Ox::Ptr<FrameBufferRep> buffer;
    switch (readVideo(buffer, request)) {
        case frameRead:
            PlayFileCounters::add(playFileCounters().framesRead);
            request->setResultBuffer(buffer);
            request->requestHasCompleted(requestComplete);
            break;
        case takenOver:
            PlayFileCounters::add(playFileCounters().framesRead);
            break;
        default:
            PlayFileCounters::add(playFileCounters().framesFailed);
            request->requestHasCompleted(requestFailed);
            break;
    }
}

unsigned int FileReadInstance::readVideo(Ox::Ptr<FrameBufferRep>&, Ox::Ptr<VideoReadRequest>&) {
    return noFrame;
}
