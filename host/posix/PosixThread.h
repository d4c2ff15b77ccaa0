#pragma once

#include <pthread.h>
#include <sys/types.h>

#include <mutex>

#include "host/posix/PosixEvent.h"
#include "ole/os/Threads.h"

/// A thread of the system.
///
/// Ownership  The running thread holds its own object. It is joined by the first `waitForEnd` that sees
///            its end, else it ends detached.
class PosixThread : public iThread {
public:
    explicit PosixThread(ThreadDescription const& description) : description_(description) {}
    ~PosixThread() override;

    /// Starts the thread and waits until it runs; false if the system gives none. `self` is held by it.
    bool start(Ox::Ptr<PosixThread> const& self);

    /// Normal is what the process has, background one step behind. To be refused for want of privileges
    /// counts as success: the thread then is further behind than asked for, which does no harm.
    bool setPriority(ePriority priority) override;
    void setAffinity(int mask) override;
    /// False at once if the thread asks for its own end.
    bool waitForEnd(std::uint32_t waitMs) override;
    [[nodiscard]] bool isThisThread() const override;
    [[nodiscard]] LightweightString<char> getName() const override { return description_.name; }

private:
    static void* run(void* argument);
    void runEntry();
    void hadException(char const* message);
    void setKernelId(pid_t kernelId);
    template <class Function>
    bool withKernelId(Function const& function);

    ThreadDescription const description_;
    PosixEvent started_{true, false};
    PosixEvent ended_{true, false};
    // Constant once the thread runs.
    pthread_t handle_{};
    bool isStarted_ = false;
    std::mutex kernelIdLock_;
    /// Guarded by kernelIdLock_, which is held while the number is used, so that it isn't that of a
    /// later thread. 0 once the thread has ended.
    pid_t kernelId_ = 0;
    std::mutex joinLock_;
    /// Guarded by joinLock_.
    bool isJoined_ = false;
};
