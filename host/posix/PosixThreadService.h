#pragma once

#include "ole/os/Threads.h"

/// Threads, events and locks of the system.
class PosixThreadService final : public iThreadService {
public:
    [[nodiscard]] ThreadEventPtr makeEvent(bool isManualReset, bool isInitiallySet, int option) override;
    [[nodiscard]] Ox::Ptr<iAccessLock> makeLock(char const* name) override;
    [[nodiscard]] Ox::Ptr<iThread> makeThread(ThreadDescription const& description) override;
    /// The events must be its own.
    int waitForAny(std::vector<ThreadEventPtr> const& events, std::uint32_t waitMs) override;
    void sleep(std::uint32_t milliseconds) override;
};
