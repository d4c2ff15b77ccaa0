#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "toolkit/catalogue/Cookie.h"
#include "toolkit/image/DecodeFormat.h"
#include "toolkit/image/FrameBufferRep.h"
#include "toolkit/image/ReadRequestIssuer.h"
#include "toolkit/image/Surface.h"
#include "video/VideoReadRequest.h"

namespace cli {

/// One frame asked for through the cache, and the waiting for it.
///
/// Ownership  It holds the request until it goes; by going earlier it cancels the read.
/// Threads    One thread asks, one waits; the answer comes on the read queue's thread.
class FrameRequest : private ReadRequestIssuer {
public:
    FrameRequest(Cookie const& cookie, std::uint32_t frame, DecodeFormat const& format);
    ~FrameRequest() override;

    /// Waits for the end of the read.
    ///
    /// @param surface  set to the frame's picture
    /// @return false if the frame couldn't be read
    /// @throws Stopped  if somebody asks the program to stop meanwhile
    [[nodiscard]] bool wait(Ox::Image::Surface& surface);

    /// True if a read that was asked for in another form answers this request too: a larger picture,
    /// or one of another pixel format.
    [[nodiscard]] bool isAnsweredByAnother() const;

    [[nodiscard]] std::uint32_t frame() const { return frame_; }

private:
    void requestCompleted(Ox::Ptr<iObject>& result, RequestStatus status) override;
    void noteEnd(Ox::Ptr<FrameBufferRep> const& buffer, bool isGood);
    [[nodiscard]] bool pickPicture(Ox::Image::Surface& surface) const;

    std::uint32_t const frame_;
    DecodeFormat const format_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    bool isGood_ = false;
    Ox::Ptr<FrameBufferRep> buffer_;
    Ox::Ptr<VideoReadRequest> request_;
};

}  // namespace cli
