#pragma once

#include <cstdint>
#include <vector>

#include "video/FrameLook.h"
#include "video/VideoReadRequest.h"

namespace Ox {

/// The reads that a queue has taken up and keeps: being read, or done and perhaps still held by others. An editor may
/// hold a thousand, and each new request looks through them all, so their frame numbers stand side by side.
///
/// Ownership  A reference to each.
/// Threads    Guarded by the lock of the queue.
class TakenUpRequests {
public:
    using Requests = std::vector<Ptr<VideoReadRequest>>;

    void add(Ptr<VideoReadRequest> const& request);

    /// The oldest that yields the frame and for which `isAlike` is true; empty if there is none.
    template <class Alike>
    [[nodiscard]] Ptr<VideoReadRequest> find(FrameLook& look, Alike const& isAlike) const {
        bool const isByFrame =
            isPlain_ && !requests_.empty() && look.isAboutSingleFrames(*requests_.front()->file);
        std::size_t i = isByFrame ? nextOfFrame(look.frame(), 0) : 0;
        while (i < requests_.size()) {
            if ((isByFrame || look.isYieldedBy(*requests_[i])) && isAlike(*requests_[i])) {
                return requests_[i];
            }
            i = isByFrame ? nextOfFrame(look.frame(), i + 1) : i + 1;
        }
        return {};
    }

    /// Takes out those that have ended and that nobody else holds.
    [[nodiscard]] Requests takeUnused();
    [[nodiscard]] Requests takeAll();

    /// Oldest first.
    [[nodiscard]] Requests const& all() const { return requests_; }

    /// True for a request that has ended and that nobody but its list holds.
    [[nodiscard]] static bool isUnused(Ptr<VideoReadRequest> const& request) {
        return request.useCount() == 1 && isFinished(request->getRequestStatus());
    }

private:
    [[nodiscard]] static bool isFinished(RequestStatus status) {
        return status != requestBuilt && status != requestTakenUp;
    }

    /// The first from `start` on that was asked for this frame; their number if there is none.
    [[nodiscard]] std::size_t nextOfFrame(std::uint32_t frame, std::size_t start) const;

    Requests requests_;
    /// `frames_[i]` is that of `requests_[i]`.
    std::vector<std::uint32_t> frames_;
    /// True if all are of one file and none has a unit: then the file alone says which frames each yields.
    bool isPlain_ = true;
};

}  // namespace Ox
