#pragma once

#include <condition_variable>
#include <mutex>

#include "audio/AudioReadRequest.h"
#include "toolkit/image/ReadRequestIssuer.h"

namespace cli {

/// Samples of one channel asked for through the cache, and the waiting for them.
///
/// Ownership  It holds the request until it goes; by going earlier it cancels the read.
/// Threads    One thread asks, one waits; the answer comes on the read queue's thread.
/// Units      Samples of the file, from its first.
class SampleRequest : private ReadRequestIssuer {
public:
    /// @param cookie  of the channel
    SampleRequest(Cookie const& cookie, std::uint64_t start, std::uint32_t count);
    ~SampleRequest() override;

    /// Waits for the end of the read.
    ///
    /// @return false if it failed
    /// @throws Stopped  if somebody asks the program to stop meanwhile
    [[nodiscard]] bool wait();

    /// What was read, once the wait was good: fewer bytes than were asked for where the data end.
    [[nodiscard]] void const* bytes() const { return request_->getBuffer(); }
    [[nodiscard]] std::size_t byteCount() const;
    [[nodiscard]] std::uint64_t start() const { return start_; }

private:
    void requestCompleted(Ox::Ptr<iObject>& result, RequestStatus status) override;

    std::uint64_t const start_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    bool isGood_ = false;
    Ox::Ptr<AudioReadRequest> request_;
};

}  // namespace cli
