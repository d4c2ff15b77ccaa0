#include "video/FilePreOpen.h"

#include <algorithm>

#include "files/PlayFileCache.h"
#include "ole/os/Immortal.h"
#include "ole/os/OS.h"
#include "playfile/Counters.h"
#include "playfile/Settings.h"
#include "playfile/Trace.h"
#include "toolkit/services/TimedTask.h"

namespace Ox {
namespace {

/// Its times, which workers note until the process is gone.
struct PreopenTask {
    Ox::Ptr<TimedTaskBase> const task = TimedTaskManager::createTimedTask("Preopen");
};

constexpr unsigned anyProcessor = static_cast<unsigned>(-1);
constexpr unsigned usualStack = 0;
constexpr char const* traceCategory = "files";

/// Set for good when the service is gone.
std::atomic<bool> hasEnded{false};

void traceQueued(PreOpenRequest const& request) {
    if (PlayFileTrace::isOn()) {
        TraceEvent event;
        event.category = traceCategory;
        event.name = "pre-open queued";
        event.of(request.cookie.asWString());
        PlayFileTrace::add(std::move(event));
    }
}

void count(Ptr<FileReadInstance> const& file) {
    PlayFileCounters& counters = playFileCounters();
    PlayFileCounters::add(file ? counters.preOpensOpened : counters.preOpensFailed);
}

void setFile(PreOpenRequest& request, Ptr<FileReadInstance> const& file) {
    request.file = file;
    request.status.store(file ? requestComplete : requestFailed, std::memory_order_release);
}

}  // namespace

Ptr<PreOpenRequest> PreOpenRequest::create(Cookie const& cookie, DecodeFormat const& format,
                                           int streamIndex) {
    auto request = makePtr<PreOpenRequest>(cookie, format, streamIndex);
    Ptr<FileReadInstance> const file =
        PlayFileCache::Shared()->isOpen(cookie, format, static_cast<unsigned>(streamIndex));
    if (file) {
        setFile(*request, file);
    } else if (!FilePreOpen::add(request)) {
        count({});
        setFile(*request, {});
    }
    return request;
}

/// Without threads of the service, which the setting may say, the caller's does the work.
bool FilePreOpen::add(Ptr<PreOpenRequest>& request) {
    FilePreOpen* const service = instance();
    if (hasEnded.load(std::memory_order_acquire)) {
        return false;
    }
    if (service->queue->threadCount() == 0) {
        service->despatch(request);
        return true;
    }
    PlayFileCounters::add(playFileCounters().preOpensQueued);
    traceQueued(*request);
    service->queue->enqueue(request);
    service->queue->signal();
    return true;
}

FilePreOpen* FilePreOpen::instance() {
    static FilePreOpen* const service = new FilePreOpen();
    return service;
}

FilePreOpen::FilePreOpen() {
    unsigned const threads = std::min(OS()->getProcessorCount(), static_cast<unsigned>(getNumThreads()));
    init(threads, iThread::background, anyProcessor, usualStack, Shutdown::queueOrder,
         iThreadEvent::noTimeLimit);
}

/// First of all nobody may shut the service down any more, nor be about to.
FilePreOpen::~FilePreOpen() {
    Shutdown::removeCallback(shutdownCallback);
    queue.decRef();
}

void FilePreOpen::despatch(Ptr<PreOpenRequest>& request) {
    Ptr<TimedTaskBase> const& task = immortal<PreopenTask>().task;
    TimedSection const section(task, "open");
    TraceSlice slice(traceCategory, "pre-open");
    Ptr<FileReadInstance> const file = PlayFileCache::Shared()->open(
        request->cookie, request->format, static_cast<unsigned>(request->streamIndex));
    count(file);
    slice.with("isOpen", file ? 1 : 0);
    if (file) {
        slice.of(file->filename);
    }
    setFile(*request, file);
}

/// On a worker, whose open is ending the process and never returns, the service stays as it is.
void FilePreOpen::shutdown(Shutdown::eExitType exitType) {
    hasEnded.store(true, std::memory_order_release);
    if (queue && queue->isThisThreadAWorker()) {
        Decoupler::shutdown(exitType);
        return;
    }
    delete this;
}

}  // namespace Ox
