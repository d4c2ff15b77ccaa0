#include "audio/AudioReadQueue.h"

#include "ole/os/OS.h"
#include "playfile/Counters.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/TimedTask.h"

namespace Ox {
namespace {

constexpr char const* threadName = "AudioReadQueue";

}  // namespace

AudioReadQueue::AudioReadQueue() : wakeEvent_(OS()->getThreads().makeEvent(false, false, 0)) {
    if (!beginThread(threadName, iThread::normal)) {
        LogBoth("Failed to make thread (%s)\n", threadName);
    }
}

AudioReadQueue::~AudioReadQueue() {
    endThread();
}

/// The worker is woken when the lock has been left: woken under it, it would go back to sleep at once.
unsigned int AudioReadQueue::queueReadRequest(Ptr<AudioReadRequest>& request) {
    PlayFileCounters::add(playFileCounters().audioRequestsQueued);
    {
        ScopedLock const scope(lock_);
        pending_.insert(request);
        pendingCount_.store(pending_.size(), std::memory_order_relaxed);
    }
    wakeEvent_->set();
    return 1;
}

void AudioReadQueue::despatchItemFromQueue() {
    Ptr<AudioReadRequest> request = takeFirst();
    static Ptr<TimedTaskBase> const task = TimedTaskManager::createTimedTask("Audio");
    TimedSection const section(task, "read");
    if (!request) {
        return;
    }
    if (request.useCount() == 1) {
        PlayFileCounters::add(playFileCounters().audioRequestsDropped);
        return;
    }
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
