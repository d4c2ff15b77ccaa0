#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxObject.h"

/// An event that threads wait for.
///
/// An automatic-reset event wakes one waiter for each `set` and is clear again; a manual-reset event
/// stays set, for all, until `reset`.
///
/// Threads  Any. Waiting sleeps in the kernel; after a short wait the next one may look a moment first.
class iThreadEvent : public virtual iObject {
public:
    static constexpr std::uint32_t noTimeLimit = 0xFFFFFFFF;

    enum eWaitResult : std::uint32_t {
        signalled = 0,  ///< the event was set; an automatic one is clear again
        timedOut = 1,   ///< the limit passed with the event not set
    };

    virtual eWaitResult wait(std::uint32_t waitMs) = 0;
    virtual void set() = 0;
    virtual void reset() = 0;
};

using ThreadEventPtr = Ox::Ptr<iThreadEvent>;
