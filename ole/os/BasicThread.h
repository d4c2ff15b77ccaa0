#pragma once

#include <atomic>

#include "ole/os/Threads.h"

/// Base of a class that is one thread.
///
/// The subclass starts the thread at the end of its constructor and ends it at the start of its
/// destructor: the body is its own, and must not run on an object that is half there.
///
/// Threads  `beginThread` and `endThread`: the owner's, one after the other, never the thread itself. A
///          thread is begun once.
class BasicThread : public virtual iVirtual {
public:
    BasicThread(BasicThread const&) = delete;
    BasicThread& operator=(BasicThread const&) = delete;

    /// True on the thread itself, which must not destroy the object. Any thread may ask, once
    /// `beginThread` has returned.
    [[nodiscard]] bool isThisThread() const { return thread_ && thread_->isThisThread(); }

protected:
    BasicThread();
    ~BasicThread() override;

    /// The thread's body. It returns soon after `isRunning` has gone down; the stop event wakes it.
    virtual void threadFn() = 0;

    /// Makes and starts the thread; false if the system gives none.
    [[nodiscard]] bool beginThread(char const* name, iThread::ePriority priority);
    /// Tells the thread to end, and waits until it has. Harmless without a thread, and a second time.
    void endThread();

    /// Set for good when the thread is to end.
    [[nodiscard]] ThreadEventPtr const& stopEvent() const { return stopEvent_; }
    /// False once the thread is to end. What the owner did before it said so is then visible here.
    [[nodiscard]] bool isRunning() const { return isRunning_.load(std::memory_order_acquire); }

private:
    static int run(void* self);

    ThreadEventPtr const stopEvent_;
    std::atomic<bool> isRunning_{false};
    /// Written once, by `beginThread`.
    Ox::Ptr<iThread> thread_;
};
