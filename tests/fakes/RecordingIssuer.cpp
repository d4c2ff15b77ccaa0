#include "tests/fakes/RecordingIssuer.h"

#include <atomic>

#include "gtest/gtest.h"

namespace {

unsigned nextOrder() {
    static std::atomic<unsigned> counter{0};
    return ++counter;
}

}  // namespace

void RecordingIssuer::requestCompleted(Ox::Ptr<iObject>& result, RequestStatus status) {
    Call const call{result, status, std::this_thread::get_id(), nextOrder()};
    {
        std::lock_guard const scope(lock_);
        calls_.push_back(call);
    }
    if (onCall_) {
        onCall_(call);
    }
    std::lock_guard const scope(lock_);
    changed_.notify_all();
}

bool RecordingIssuer::waitForCalls(std::size_t count, std::chrono::seconds patience) {
    std::unique_lock scope(lock_);
    return changed_.wait_for(scope, patience, [&] { return calls_.size() >= count; });
}

bool RecordingIssuer::waitForCall(unsigned waitMs) {
    std::unique_lock scope(lock_);
    return changed_.wait_for(scope, std::chrono::milliseconds(waitMs), [&] { return !calls_.empty(); });
}

std::vector<RecordingIssuer::Call> RecordingIssuer::calls() const {
    std::lock_guard const scope(lock_);
    return calls_;
}

RecordingIssuer::Call RecordingIssuer::only() const {
    std::lock_guard const scope(lock_);
    EXPECT_EQ(calls_.size(), 1U);
    return calls_.empty() ? Call{nullptr, requestBuilt, {}, 0} : calls_.front();
}
