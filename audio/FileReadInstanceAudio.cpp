/// The part of an open file that has to do with its audio queue, and with both queues.
#include "audio/AudioQueuePool.h"
#include "files/FileReadInstance.h"
#include "ole/Ox/OxQueueRelease.h"
#include "video/QueuePools.h"

FileReadInstance::FileReadInstance(LightweightString<wchar_t> const& name, DecodeFormat const& format,
                                   OpenType type)
    : PlayFile(name), openType(type), decodeFormat(format) {}

FileReadInstance::~FileReadInstance() {
    if (videoQueue_) {
        Ox::giveBack(videoQueuePool(), videoQueue_);
    }
    if (audioQueue_) {
        Ox::giveBack(audioQueuePool(), audioQueue_);
    }
    Ox::releaseQueue(videoQueue_);
    Ox::releaseQueue(audioQueue_);
}

/// The lock is held across the forwarding, so that requests of one file enter its queue one by one.
unsigned int FileReadInstance::queueReadRequest(Ox::Ptr<AudioReadRequest>& request) {
    ScopedLock const scope(lock);
    if (!audioQueue_ && (openType.mask() & OpenType::audio) != 0) {
        audioQueue_ = audioQueuePool().getItem();
    }
    return audioQueue_ ? audioQueue_->queueReadRequest(request) : oxFailure;
}
