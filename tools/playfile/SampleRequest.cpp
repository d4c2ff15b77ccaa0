#include "tools/playfile/SampleRequest.h"

#include <algorithm>
#include <chrono>

#include "files/PlayFileCache.h"
#include "tools/playfile/Interrupt.h"

namespace cli {
namespace {

/// How long a wait may last before it looks whether the program is to stop.
constexpr std::chrono::milliseconds lookRoundInterval{100};

}  // namespace

SampleRequest::SampleRequest(Cookie const& cookie, std::uint64_t start, std::uint32_t count) : start_(start) {
    OxResult const result = PlayFileCache::Shared()->audioReadRequest(request_, cookie, start, count,
                                                                      levelOriginal, getProxy(), true);
    if (result != oxSuccess || request_->file->queueReadRequest(request_) != oxSuccess) {
        hasEnded_ = true;
    }
}

SampleRequest::~SampleRequest() {
    withdraw();
}

bool SampleRequest::wait() {
    std::unique_lock scope(mutex_);
    while (!ended_.wait_for(scope, lookRoundInterval, [this] { return hasEnded_; })) {
        checkForInterrupt();
    }
    return isGood_;
}

/// A read of a compressed stream brings more than was asked for.
std::size_t SampleRequest::byteCount() const {
    std::uint64_t const asked =
        std::uint64_t{request_->numSamples} * request_->getAudioMetadata()[request_->stream].bytesPerSample;
    return std::min<std::uint64_t>(request_->getUsed(), asked);
}

void SampleRequest::requestCompleted(Ox::Ptr<iObject>&, RequestStatus status) {
    std::lock_guard const scope(mutex_);
    isGood_ = status == requestComplete;
    hasEnded_ = true;
    ended_.notify_all();
}

}  // namespace cli
