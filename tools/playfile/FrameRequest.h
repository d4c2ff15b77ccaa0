#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
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

    /// Waits for the end of the read, and for its picture.
    ///
    /// @param surface  set to the frame's picture
    /// @return false if the frame couldn't be read
    /// @throws Stopped  if somebody asks the program to stop meanwhile
    [[nodiscard]] bool wait(Ox::Image::Surface& surface);

    /// True if another read answers this request too and not with what is wanted: a larger picture, one
    /// of another pixel format, or another frame of its group. Asked once the wait is over.
    [[nodiscard]] bool isAnsweredByAnother() const;

    /// Drops the read and what it has brought.
    void letGo();

    /// Asks for the same anew.
    [[nodiscard]] std::unique_ptr<FrameRequest> askAgain() const {
        return std::make_unique<FrameRequest>(cookie_, frame_, format_);
    }

    [[nodiscard]] std::uint32_t frame() const { return frame_; }

private:
    void requestCompleted(Ox::Ptr<iObject>& result, RequestStatus status) override;
    void noteEnd(Ox::Ptr<FrameBufferRep> const& buffer, bool isGood);
    [[nodiscard]] bool pickPicture(Ox::Image::Surface& surface) const;

    Cookie const cookie_;
    std::uint32_t const frame_;
    DecodeFormat const format_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    bool isGood_ = false;
    Ox::Ptr<FrameBufferRep> buffer_;
    Ox::Ptr<VideoReadRequest> request_;
};

/// Waits for a request and asks again if another read has answered it. `surface` is set to the picture.
///
/// @param request  afterwards the one that was answered
/// @return false if the frame couldn't be read
[[nodiscard]] bool finishRequest(std::unique_ptr<FrameRequest>& request, Ox::Image::Surface& surface);

/// Lets go of finished reads that nobody holds, so that no later read is answered by one of them.
void forgetFinishedReads();

}  // namespace cli
