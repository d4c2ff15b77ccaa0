#include "audio/AudioReadQueue.h"

#include "ole/os/Immortal.h"
#include "ole/os/OS.h"
#include "playfile/Counters.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/TimedTask.h"

namespace Ox {
namespace {

/// Its times, which workers note until the process is gone.
struct AudioTask {
    Ox::Ptr<TimedTaskBase> const task = TimedTaskManager::createTimedTask("Audio");
};

constexpr char const* threadName = "AudioReadQueue";

void fail(Ptr<AudioReadRequest> const& request) {
    request->setRequestStatus(requestFailed);
    Ptr<iObject> self(request);
    request->doCallbacks(self);
}

void traceDrop(AudioReadRequest const& request) {
    constexpr char const* category = AudioReadRequest::traceCategory;
    PlayFileTrace::step(TraceEvent::requestStep, category, "dropped", request.number);
    PlayFileTrace::step(TraceEvent::requestEnds, category, AudioReadRequest::traceName, request.number);
}

void traceWhat(TraceSlice& slice, AudioReadRequest const& request) {
    slice.with("stream", request.stream)
        .with("channel", request.channelInStream)
        .with("sample", static_cast<std::int64_t>(request.startSample))
        .with("count", request.numSamples)
        .of(request.file->filename);
}

}  // namespace

AudioReadQueue::AudioReadQueue()
    : wakeEvent_(OS()->getThreads().makeEvent(false, false, 0)),
      shutdownCallback_(new Shutdown::MethodCallback<AudioReadQueue>(this, &AudioReadQueue::shutdown)) {
    if (!beginThread(threadName, iThread::normal)) {
        LogBoth("Failed to make thread (%s)\n", threadName);
        isStopped_ = true;
    }
    Shutdown::addCallback(shutdownCallback_, Shutdown::queueOrder);
}

/// First of all nobody may shut the queue down any more, nor be about to.
AudioReadQueue::~AudioReadQueue() {
    Shutdown::removeCallback(shutdownCallback_);
    endThread();
}

void AudioReadQueue::shutdown(Shutdown::eExitType) {
    {
        ScopedLock const scope(lock_);
        isStopped_ = true;
    }
    if (!isThisThreadTheWorker()) {
        endThread();
    }
}

/// The worker is woken when the lock has been left: woken under it, it would go back to sleep at once.
unsigned int AudioReadQueue::queueReadRequest(Ptr<AudioReadRequest>& request) {
    PlayFileTrace::step(TraceEvent::requestStep, AudioReadRequest::traceCategory, "queued", request->number);
    if (accept(request)) {
        PlayFileCounters::add(playFileCounters().audioRequestsQueued);
        wakeEvent_->set();
    } else {
        fail(request);
    }
    return 1;
}

bool AudioReadQueue::accept(Ptr<AudioReadRequest> const& request) {
    ScopedLock const scope(lock_);
    if (!isStopped_) {
        pending_.insert(request);
        pendingCount_.store(pending_.size(), std::memory_order_relaxed);
    }
    return !isStopped_;
}

void AudioReadQueue::despatchItemFromQueue() {
    Ptr<AudioReadRequest> request = takeFirst();
    Ptr<TimedTaskBase> const& task = immortal<AudioTask>().task;
    TimedSection const section(task, "read");
    if (!request) {
        return;
    }
    if (request.useCount() == 1) {
        PlayFileCounters::add(playFileCounters().audioRequestsDropped);
        traceDrop(*request);
        return;
    }
    TraceSlice slice(AudioReadRequest::traceCategory, "read", request->number);
    traceWhat(slice, *request);
    request->file->readAudio(request);
}

void AudioReadQueue::threadFn() {
    std::vector<ThreadEventPtr> const events{wakeEvent_, stopEvent()};
    while (isRunning()) {
        OS()->getThreads().waitForAny(events, iThreadEvent::noTimeLimit);
        while (isRunning() && getPendingCount() != 0) {
            despatchItemFromQueue();
        }
    }
    while (getPendingCount() != 0) {
        despatchItemFromQueue();
    }
}

Ptr<AudioReadRequest> AudioReadQueue::takeFirst() {
    ScopedLock const scope(lock_);
    if (pending_.empty()) {
        return {};
    }
    Ptr<AudioReadRequest> const first = *pending_.begin();
    pending_.erase(pending_.begin());
    pendingCount_.store(pending_.size(), std::memory_order_relaxed);
    return first;
}

}  // namespace Ox
