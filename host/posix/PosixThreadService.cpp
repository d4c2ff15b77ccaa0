#include "host/posix/PosixThreadService.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "host/posix/PosixEvent.h"
#include "host/posix/PosixThread.h"

namespace {

/// A flag under a mutex: the thread sanitizer doesn't see a mutex being taken that is waited for with a
/// limit on the steady clock.
class PosixLock : public iAccessLock {
public:
    bool lock(std::uint32_t waitMs) override {
        std::unique_lock scope(mutex_);
        auto const isFree = [this] { return !isHeld_; };
        if (waitMs == noTimeLimit) {
            released_.wait(scope, isFree);
        } else if (!released_.wait_for(scope, std::chrono::milliseconds(waitMs), isFree)) {
            return false;
        }
        isHeld_ = true;
        return true;
    }
    void unlock() override {
        std::scoped_lock const scope(mutex_);
        isHeld_ = false;
        released_.notify_one();
    }

private:
    std::mutex mutex_;
    std::condition_variable released_;
    bool isHeld_ = false;
};

}  // namespace

ThreadEventPtr PosixThreadService::makeEvent(bool isManualReset, bool isInitiallySet, int) {
    return Ox::makePtr<PosixEvent>(isManualReset, isInitiallySet);
}

Ox::Ptr<iAccessLock> PosixThreadService::makeLock(char const*) {
    return Ox::makePtr<PosixLock>();
}

Ox::Ptr<iThread> PosixThreadService::makeThread(ThreadDescription const& description) {
    auto const thread = Ox::makePtr<PosixThread>(description);
    return thread->start(thread) ? Ox::Ptr<iThread>(thread) : Ox::Ptr<iThread>();
}

/// One waiter is enlisted with each event in turn, until one of them ends the wait.
int PosixThreadService::waitForAny(std::vector<ThreadEventPtr> const& events, std::uint32_t waitMs) {
    EventWaiter waiter;
    std::size_t enlisted = 0;
    bool isWaiting = true;
    while (isWaiting && enlisted < events.size()) {
        auto& event = static_cast<PosixEvent&>(*events[enlisted]);
        isWaiting = event.enlist(waiter, static_cast<std::int32_t>(enlisted));
        ++enlisted;
    }
    if (isWaiting) {
        waiter.wait(waitMs);
    }
    for (std::size_t i = 0; i < enlisted; ++i) {
        static_cast<PosixEvent&>(*events[i]).withdraw(waiter);
    }
    return waiter.result() == EventWaiter::limitPassed ? -1 : waiter.result();
}

void PosixThreadService::sleep(std::uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
