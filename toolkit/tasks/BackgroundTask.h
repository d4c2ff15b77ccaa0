#pragma once

#include <cstdint>

#include "ole/Ox/OxIdentified.h"
#include "ole/Ox/OxString.h"
#include "ole/os/Callback.h"
#include "toolkit/tasks/TaskLog.h"

class iBackgroundTaskQueue;

/// A piece of work that a queue's worker does, and that people can watch and stop.
///
/// Ownership  Counted; from the moment it is queued the queue holds it until it has ended.
/// Threads    `execute` on the worker; everything else on any thread.
class iBackgroundTask : public virtual iObject {
public:
    enum eStatus : std::uint32_t {
        queued = 0,
        running = 1,
        ended = 2,
        stopAsked = 3  ///< stays, also when the task has ended
    };
    /// How much people want to hear of it.
    enum eImportance : std::uint32_t { importanceLow = 0, importanceUsual = 1, importanceHigh = 2 };
    /// How long its log is kept.
    enum eLifetime : std::uint32_t { lifetimeUsual = 0, lifetimeMemorable = 2 };

    /// Told to listeners.
    struct Event {
        enum eKind : std::uint32_t { statusChanged = 0, hasEnded = 1 };

        eKind kind = statusChanged;
        eStatus status = queued;
    };
    using Listener = iCallbackBase<int, Event>;

    /// Does the work.
    virtual void execute() = 0;
    /// Asks for a stop; `getStatus` answers `stopAsked` from now on.
    virtual void abort() = 0;
    /// Blocks until the task has ended.
    virtual void waitForCompletion() const = 0;
    /// Releases those who wait.
    virtual void setCompletionEvent() = 0;
    /// From 0 to 1.
    [[nodiscard]] virtual float getProgress() const = 0;
    [[nodiscard]] virtual IdStamp getID() const = 0;
    /// For people.
    [[nodiscard]] virtual LightweightString<wchar_t> getDescription() const = 0;
    [[nodiscard]] virtual eImportance getImportance() const = 0;
    [[nodiscard]] virtual Ox::Ptr<iTaskLog> getLog() const = 0;
    [[nodiscard]] virtual eLifetime getLifetime() const { return lifetimeUsual; }
    [[nodiscard]] virtual bool isAbortable() const { return true; }
    [[nodiscard]] virtual bool isMemorable() const { return getLifetime() == lifetimeMemorable; }
    [[nodiscard]] virtual iBackgroundTaskQueue* getQueue() const = 0;
    virtual void setQueue(iBackgroundTaskQueue* queue) = 0;
    [[nodiscard]] virtual eStatus getStatus() const = 0;
    virtual void setStatus(eStatus status) = 0;
    /// Calls `listener` until the guard is let go.
    [[nodiscard]] virtual Ox::Ptr<Ox::Guard> addListener(Ox::Ptr<Listener> const& listener) = 0;
    [[nodiscard]] virtual bool shouldLogDuration() const { return isMemorable(); }
};

/// Somebody who has tasks done one after the other.
///
/// Threads  Any.
class iBackgroundTaskQueue {
public:
    virtual ~iBackgroundTaskQueue() = default;
    /// Takes a task over; it is done behind those that came before.
    ///
    /// @param option  always false
    virtual void queue(Ox::Ptr<iBackgroundTask> const& task, bool option = false) = 0;
};
