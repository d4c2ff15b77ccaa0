#pragma once

#include "ole/os/OS.h"

namespace test {

/// Hands every operation on to the thread service that was in force when it was made. A test overrides
/// the single operations that it is about, and puts it in force through `ForwardingOS::threads`.
///
/// Requires of overriding tests: an event that `waitForAny` gets must be one that the real service made.
/// Threads  Any.
class ForwardingThreadService : public iThreadService {
public:
    ForwardingThreadService() : real_(OS()->getThreads()) {}
    virtual ~ForwardingThreadService() = default;
    ForwardingThreadService(ForwardingThreadService const&) = delete;
    ForwardingThreadService& operator=(ForwardingThreadService const&) = delete;

    [[nodiscard]] ThreadEventPtr makeEvent(bool isManualReset, bool isInitiallySet, int option) override {
        return real_.makeEvent(isManualReset, isInitiallySet, option);
    }
    [[nodiscard]] Ox::Ptr<iAccessLock> makeLock(char const* name) override { return real_.makeLock(name); }
    [[nodiscard]] Ox::Ptr<iThread> makeThread(ThreadDescription const& description) override {
        return real_.makeThread(description);
    }
    int waitForAny(std::vector<ThreadEventPtr> const& events, std::uint32_t waitMs) override {
        return real_.waitForAny(events, waitMs);
    }
    void sleep(std::uint32_t milliseconds) override { real_.sleep(milliseconds); }

protected:
    [[nodiscard]] iThreadService& real() const { return real_; }

private:
    iThreadService& real_;
};

}  // namespace test
