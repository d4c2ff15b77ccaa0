#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"
#include "ole/os/Events.h"
#include "ole/os/Locks.h"

/// A thread that the thread service has made and started.
///
/// Threads  Any thread may call it. Dropping the pointer leaves the thread running.
class iThread : public virtual iObject {
public:
    static constexpr std::uint32_t noTimeLimit = 0xFFFFFFFF;

    /// How urgent the thread's work is.
    enum ePriority : std::int32_t {
        normal = 3,      ///< read queues
        background = 4,  ///< one step behind: opening ahead of need, decoding ahead
    };

    /// What an exception that left a thread's entry function said.
    struct Exception {
        LightweightString<char> threadName;
        LightweightString<char> message;
    };

    /// False if the system refuses it; the thread then runs on as it was.
    virtual bool setPriority(ePriority priority) = 0;

    /// Binds the thread to the processors of a bit mask; -1 lets it run on any.
    virtual void setAffinity(int mask) = 0;

    /// Waits at most `waitMs` milliseconds for the thread's end; true if it has ended.
    virtual bool waitForEnd(std::uint32_t waitMs) = 0;

    /// True on the thread itself.
    [[nodiscard]] virtual bool isThisThread() const = 0;

    /// The name it was made with, in full (the kernel shows the first 15 characters).
    [[nodiscard]] virtual LightweightString<char> getName() const = 0;
};

/// What a thread is made from.
struct ThreadDescription {
    using Entry = int (*)(void* argument);
    using ExceptionHandler = void (*)(iThread::Exception const&);

    Entry entry = nullptr;
    void* argument = nullptr;
    /// Bytes; 0 for the system's default. Less than the system allows counts as the least allowed.
    std::uint32_t stackSize = 0;
    LightweightString<char> name;
    /// Called on the thread with what left `entry`; without a handler the process ends.
    ExceptionHandler exceptionHandler = nullptr;
    /// False in every description of this system; kept for hosts that tell two kinds of threads apart.
    bool isSystemThread = false;
};

/// Makes threads, events and locks.
///
/// Threads  Any. Nothing here calls back.
class iThreadService {
public:
    /// @param isManualReset    see `iThreadEvent`
    /// @param isInitiallySet   true makes it set from the start
    /// @param option           always 0
    [[nodiscard]] virtual ThreadEventPtr makeEvent(bool isManualReset, bool isInitiallySet, int option) = 0;

    /// Makes a plain lock; the name is for debugging.
    [[nodiscard]] virtual Ox::Ptr<iAccessLock> makeLock(char const* name = "") = 0;

    /// Makes and starts a thread; empty if the system gives none.
    [[nodiscard]] virtual Ox::Ptr<iThread> makeThread(ThreadDescription const& description) = 0;

    /// Waits for any one of `events`, at most `waitMs` milliseconds (0xFFFFFFFF without limit).
    /// The result is the index of the event that ended the wait (the first in order if several are
    /// set), -1 if the limit passed. An automatic event that ended the wait is clear again.
    virtual int waitForAny(std::vector<ThreadEventPtr> const& events, std::uint32_t waitMs) = 0;

    /// Lets the calling thread sleep.
    virtual void sleep(std::uint32_t milliseconds) = 0;

protected:
    ~iThreadService() = default;
};

/// Given to every queue thread: logs the exception with the thread's name; the thread then ends.
void threadExceptionHandler(iThread::Exception const& exception);
