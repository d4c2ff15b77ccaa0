#include "video/TakenUpRequests.h"

#include <algorithm>
#include <utility>

namespace Ox {

void TakenUpRequests::add(Ptr<VideoReadRequest> const& request) {
    bool const isFirst = requests_.empty();
    isPlain_ = (isFirst || (isPlain_ && request->file == requests_.front()->file)) && !request->indexInfo;
    requests_.push_back(request);
    frames_.push_back(request->frame);
}

std::size_t TakenUpRequests::nextOfFrame(std::uint32_t frame, std::size_t start) const {
    return static_cast<std::size_t>(
        std::find(frames_.begin() + static_cast<std::ptrdiff_t>(start), frames_.end(), frame) -
        frames_.begin());
}

/// Those before the first that goes aren't moved.
TakenUpRequests::Requests TakenUpRequests::takeUnused() {
    Requests unused;
    std::size_t kept = 0;
    while (kept < requests_.size() && !isUnused(requests_[kept])) {
        ++kept;
    }
    for (std::size_t i = kept; i < requests_.size(); ++i) {
        if (isUnused(requests_[i])) {
            unused.push_back(std::move(requests_[i]));
        } else {
            requests_[kept] = std::move(requests_[i]);
            frames_[kept] = frames_[i];
            ++kept;
        }
    }
    requests_.resize(kept);
    frames_.resize(kept);
    return unused;
}

TakenUpRequests::Requests TakenUpRequests::takeAll() {
    frames_.clear();
    return std::exchange(requests_, {});
}

}  // namespace Ox
