#pragma once

#include <functional>

#include "ole/os/Threads.h"

namespace Ox {

/// A thread with a body of its own, see `WorkerThreadPool`.
class WorkerThread {
public:
    explicit WorkerThread(std::function<void()> body) : body_(std::move(body)) {}
    WorkerThread(WorkerThread const&) = delete;
    WorkerThread& operator=(WorkerThread const&) = delete;

private:
    friend class WorkerThreadPool;
    static int run(void* self);

    std::function<void()> const body_;
    Ptr<iThread> thread_;
};

/// Hands out threads for work that lasts as long as some object does.
///
/// Threads  Any. What leaves a body as an exception is logged, and the thread ends.
class WorkerThreadPool {
public:
    using ThreadPtr = ExternalPtr<WorkerThread>;

    /// Starts a thread; empty if the system gives none. It must be ended by `endThread`.
    [[nodiscard]] static ThreadPtr beginThread(std::function<void()> body, char const* name,
                                               iThread::ePriority priority);
    /// Waits until the body has returned, which the caller has told it to do, and lets go of the thread. On
    /// that very thread it doesn't wait, and the thread's object lives on. An empty pointer is harmless.
    static void endThread(ThreadPtr& thread);
};

}  // namespace Ox
