#include "host/posix/PosixThreadService.h"

#include <chrono>
#include <mutex>
#include <thread>

#include "host/posix/PosixEvent.h"
#include "host/posix/PosixThread.h"

namespace {

class PosixLock : public iAccessLock {
public:
    bool lock(std::uint32_t waitMs) override {
        if (waitMs == noTimeLimit) {
            mutex_.lock();
            return true;
        }
        return mutex_.try_lock_for(std::chrono::milliseconds(waitMs));
    }
    void unlock() override { mutex_.unlock(); }

private:
    std::timed_mutex mutex_;
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
        waiter.sleep(waitMs);
    }
    for (std::size_t i = 0; i < enlisted; ++i) {
        static_cast<PosixEvent&>(*events[i]).withdraw(waiter);
    }
    return waiter.result() == EventWaiter::limitPassed ? -1 : waiter.result();
}

void PosixThreadService::sleep(std::uint32_t milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
