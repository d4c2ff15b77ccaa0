#include "tools/playfile/FrameRequest.h"

#include <chrono>
#include <limits>
#include <thread>

#include "files/PlayFileCache.h"
#include "tools/playfile/Interrupt.h"

namespace cli {
namespace {

/// How long a wait may last before it looks round. An issuer that joins a read which is just ending, or
/// has failed, is told nothing: then only the request's status says that it is over.
constexpr std::chrono::milliseconds lookRoundInterval{20};

/// How often a frame is asked for again that another read has answered.
constexpr unsigned mostRepeats = 1000;

bool isOver(RequestStatus status) {
    return status == requestComplete || status == requestFailed;
}

/// Waits for the decoder of a file that is read streaming: such a read ends before its picture is there,
/// and a picture that never comes shows in the surface only.
bool hasPixels(Ox::Image::Surface const& surface) {
    while (surface.wait(lookRoundInterval.count()) != Ox::Image::Surface::waitFinished) {
        checkForInterrupt();
    }
    return surface.valid();
}

}  // namespace

FrameRequest::FrameRequest(Cookie const& cookie, std::uint32_t frame, DecodeFormat const& format)
    : cookie_(cookie), frame_(frame), format_(format) {
    OxResult const result = PlayFileCache::Shared()->videoReadRequest(
        request_, cookie, static_cast<int>(frame), false, resultDecompressed, format, getProxy());
    if (result != oxSuccess) {
        noteEnd({}, false);
    }
}

FrameRequest::~FrameRequest() {
    withdraw();
}

bool FrameRequest::wait(Ox::Image::Surface& surface) {
    std::unique_lock scope(mutex_);
    while (!hasEnded_) {
        checkForInterrupt();
        if (ended_.wait_for(scope, lookRoundInterval, [this] { return hasEnded_; })) {
            break;
        }
        RequestStatus const status = request_->getRequestStatus();
        if (isOver(status)) {
            buffer_ = request_->getResultBuffer();
            isGood_ = status == requestComplete;
            hasEnded_ = true;
        }
    }
    scope.unlock();
    return isGood_ && pickPicture(surface) && hasPixels(surface);
}

bool FrameRequest::isAnsweredByAnother() const {
    if (!request_ || !buffer_) {
        return false;
    }
    Ox::Image::Surface surface;
    bool const isOfAnotherForm = request_->getDataFormat() != format_.getDataFormat() ||
                                 request_->getWidth() != format_.getWidth() ||
                                 request_->getHeight() != format_.getHeight();
    return isOfAnotherForm || !pickPicture(surface);
}

void FrameRequest::letGo() {
    withdraw();
    buffer_ = nullptr;
    request_ = nullptr;
}

void FrameRequest::requestCompleted(Ox::Ptr<iObject>& result, RequestStatus status) {
    noteEnd(Ox::dynamicPtrCast<FrameBufferRep>(result), status == requestComplete);
}

void FrameRequest::noteEnd(Ox::Ptr<FrameBufferRep> const& buffer, bool isGood) {
    std::lock_guard const scope(mutex_);
    buffer_ = buffer;
    isGood_ = isGood;
    hasEnded_ = true;
    ended_.notify_all();
}

/// The buffer may be that of a read for another frame, which brought this one too. A file of one frame
/// has that frame at every number.
bool FrameRequest::pickPicture(Ox::Image::Surface& surface) const {
    if (!buffer_) {
        return false;
    }
    FileReadInstance const& file = *request_->file;
    std::uint32_t const fileFrame = frame_ + static_cast<std::uint32_t>(file.getVideoOrigin());
    bool const isOnlyFrame = file.metadata->videoSampleCount == 1;
    std::uint32_t const index = isOnlyFrame ? 0 : fileFrame - buffer_->getStartValidFrameIndex();
    return index < buffer_->getNumFrames() && buffer_->getSurface(static_cast<std::uint16_t>(index), surface);
}

/// A read that has just ended may still be held by the thread that did it, and answer the next request
/// too; it goes as soon as nobody holds it any more.
bool finishRequest(std::unique_ptr<FrameRequest>& request, Ox::Image::Surface& surface) {
    bool isGood = request->wait(surface);
    for (unsigned repeat = 0; request->isAnsweredByAnother() && repeat < mostRepeats; ++repeat) {
        std::unique_ptr<FrameRequest> const answered = std::move(request);
        surface = Ox::Image::Surface();
        answered->letGo();
        std::this_thread::yield();
        forgetFinishedReads();
        request = answered->askAgain();
        isGood = request->wait(surface);
    }
    return isGood;
}

/// The bound is one that closes no file.
void forgetFinishedReads() {
    PlayFileCache::Shared()->limitUsage(std::numeric_limits<unsigned int>::max());
}

}  // namespace cli
