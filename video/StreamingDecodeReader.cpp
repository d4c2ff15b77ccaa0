/// Batches of decoded frames.
///
/// The decoder thread has one batch at a time, `currentBatch` as it finds it when it wakes. Only the queue's
/// thread makes batches and only it moves them, so between two looks under the lock nothing but the decoder's
/// progress changes. The decoder is woken by the read that made a batch; where the queue's thread finds it
/// asleep before the batch was decoded, it wakes it again and waits for the batch's last surface.
#include "video/StreamingDecodeReader.h"

#include "ole/os/OS.h"
#include "playfile/Counters.h"
#include "toolkit/services/Log.h"
#include "video/VideoReadRequest.h"

namespace {

constexpr char const* threadName = "StreamingDecode";

/// Holds a plain lock for the length of a scope, and lets go of it for a wait.
class LockScope {
public:
    explicit LockScope(iAccessLock& lock) : lock_(lock) { lock_.lock(); }
    ~LockScope() { lock_.unlock(); }
    LockScope(LockScope const&) = delete;
    LockScope& operator=(LockScope const&) = delete;

private:
    iAccessLock& lock_;
};

/// Lets go of a lock that is held, for the length of a scope.
class UnlockScope {
public:
    explicit UnlockScope(iAccessLock& lock) : lock_(lock) { lock_.unlock(); }
    ~UnlockScope() { lock_.lock(); }
    UnlockScope(UnlockScope const&) = delete;
    UnlockScope& operator=(UnlockScope const&) = delete;

private:
    iAccessLock& lock_;
};

/// The surface of a frame of a batch; the index is cut to 16 bits.
Ox::Image::Surface surfaceOf(FrameBufferRep const& batch, unsigned int frame) {
    Ox::Image::Surface surface;
    batch.getSurface(static_cast<std::uint16_t>(frame - batch.getStartValidFrameIndex()), surface);
    return surface;
}

}  // namespace

StreamingDecodeReader::StreamingDecodeReader(LightweightString<wchar_t> const& name,
                                             DecodeFormat const& format, OpenType type)
    : FileReadInstance(name, format, type) {}

StreamingDecodeReader::~StreamingDecodeReader() = default;

unsigned int StreamingDecodeReader::readVideo(Ox::Ptr<FrameBufferRep>& buffer,
                                              Ox::Ptr<VideoReadRequest>& request) {
    if (!metadata->readStreaming()) {
        return readVideoDirect(buffer, request);
    }
    if (!wakeEvent) {
        beginStreamDecode();
    }
    bool const isStreaming = decodeThread || isHeld(request->frame);
    return isStreaming ? readVideoStreaming(buffer, request) : readVideoDirect(buffer, request);
}

bool StreamingDecodeReader::isHeld(unsigned int frame) {
    LockScope const scope(*decodeLock);
    return framePresent(currentBatch, frame) || framePresent(previousBatch, frame);
}

/// Where the system gives no thread, the file is read straight.
void StreamingDecodeReader::beginStreamDecode() {
    iThreadService& threads = OS()->getThreads();
    wakeEvent = threads.makeEvent(false, false, 0);
    idleEvent = threads.makeEvent(true, true, 0);
    decodeLock = threads.makeLock(threadName);
    running.store(true, std::memory_order_relaxed);
    decodeThread = Ox::WorkerThreadPool::beginThread([this] { threadFn(); }, threadName, iThread::background);
    if (!decodeThread) {
        LogBoth("Failed to make thread (%s)\n", threadName);
    }
}

void StreamingDecodeReader::threadFn() {
    while (running.load(std::memory_order_relaxed)) {
        wakeEvent->wait(iThreadEvent::noTimeLimit);
        if (!running.load(std::memory_order_relaxed)) {
            return;
        }
        idleEvent->reset();
        Ox::Ptr<FrameBufferRep> batch;
        {
            LockScope const scope(*decodeLock);
            batch = currentBatch;
        }
        if (batch) {
            unsigned int const startFrame = batch->getStartValidFrameIndex();
            Ox::Image::Surface first;
            batch->getSurface(0, first);
            if (first.valid()) {
                first.set();
                PlayFileCounters::add(playFileCounters().streamDoubleDecodes);
                LogBoth("Double decode of %d\n", static_cast<int>(startFrame));
            } else {
                TraceSlice slice(VideoReadRequest::traceCategory, "decode");
                slice.with("frame", startFrame).with("count", batch->getNumFrames()).of(filename);
                decodeFrames(batch, startFrame);
            }
        }
        idleEvent->set();
    }
}

unsigned int StreamingDecodeReader::readVideoStreaming(Ox::Ptr<FrameBufferRep>& buffer,
                                                       Ox::Ptr<VideoReadRequest>& request) {
    Ox::Image::Surface surface;
    {
        LockScope const scope(*decodeLock);
        if (!findHeld(request->frame, surface)) {
            if (idleEvent->wait(0) == iThreadEvent::timedOut) {
                UnlockScope const unlocked(*decodeLock);
                idleEvent->wait(iThreadEvent::noTimeLimit);
            }
            if (!findHeld(request->frame, surface)) {
                giveUpPreviousBatch();
                finishCurrentBatch();
                previousBatch = currentBatch;
                currentBatch = nullptr;
                buildBatch(*request, surface);
            }
        }
    }
    buffer = Ox::makePtr<FrameBufferRep>(surface, request->frame);
    return frameRead;
}

bool StreamingDecodeReader::findHeld(unsigned int frame, Ox::Image::Surface& surface) {
    for (Ox::Ptr<FrameBufferRep>* const batch : {&currentBatch, &previousBatch}) {
        if (framePresent(*batch, frame)) {
            surface = surfaceOf(**batch, frame);
            PlayFileCounters::add(playFileCounters().streamFramesHeld);
            return true;
        }
    }
    return false;
}

/// Nobody may stay blocked on a frame that is going away.
void StreamingDecodeReader::giveUpPreviousBatch() {
    if (!previousBatch) {
        return;
    }
    Ox::Image::Surface surface;
    for (std::uint32_t index = 0; index < previousBatch->getNumFrames(); ++index) {
        previousBatch->getSurface(static_cast<std::uint16_t>(index), surface);
        surface.set();
    }
}

void StreamingDecodeReader::finishCurrentBatch() {
    if (!currentBatch) {
        return;
    }
    Ox::Image::Surface last;
    currentBatch->getSurface(static_cast<std::uint16_t>(currentBatch->getNumFrames() - 1), last);
    if (last.wait(0) != Ox::Image::Surface::waitFinished) {
        UnlockScope const unlocked(*decodeLock);
        wakeEvent->set();
        static_cast<void>(last.wait(iThreadEvent::noTimeLimit));
    }
}

void StreamingDecodeReader::buildBatch(VideoReadRequest const& request, Ox::Image::Surface& surface) {
    unsigned int const frame = request.frame;
    unsigned int start = frame;
    unsigned int end = frame;
    getDecodeRange(frame, start, end);
    if (static_cast<int>(start) < 0) {
        LogBoth("HEVC decodeStartIdx is negative %u from start %d to %d\n", frame, static_cast<int>(start),
                static_cast<int>(end));
    }
    if (end != start) {
        --end;
    }
    currentBatch = Ox::makePtr<FrameBufferRep>(metadata, start, end, FrameBufferRep::withEvents);
    stampBuffer(*currentBatch, request);
    PlayFileCounters::add(playFileCounters().streamBatches);
    PlayFileTrace::step(TraceEvent::requestStep, VideoReadRequest::traceCategory, "batch", request.number,
                        {"firstFrame", start});
    currentBatch->getSurface(static_cast<std::uint16_t>(frame - start), surface);
    wakeEvent->set();
}

void StreamingDecodeReader::endStreamDecode() {
    if (!idleEvent) {
        return;
    }
    running.store(false, std::memory_order_relaxed);
    idleEvent->wait(iThreadEvent::noTimeLimit);
    wakeEvent->set();
    Ox::WorkerThreadPool::endThread(decodeThread);
}

bool StreamingDecodeReader::framePresent(Ox::Ptr<FrameBufferRep>& batch, unsigned int frame) {
    return batch && frame >= batch->getStartValidFrameIndex() &&
           frame < batch->getStartValidFrameIndex() + batch->getNumFrames();
}
