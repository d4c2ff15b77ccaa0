#pragma once

#include "ole/Ox/OxObject.h"

/// Something that holds memory which it can give back when memory is wanted.
///
/// The toolkit asks everyone that is enrolled: first to limit its use, then to purge.
///
/// Ownership  The registry doesn't own its members. A derived class calls `enrol` at the end of its
///            constructor and `withdraw` at the start of its destructor, so that no call meets half
///            an object.
/// Threads    The three virtual operations are called on any thread, several at once, without a lock of
///            the toolkit.
class Reclaimable : public virtual iVirtual {
public:
    /// Gives back all that nobody uses.
    virtual void purge() = 0;
    /// Gives back what is above the owner's own bound.
    virtual void limitUsage() = 0;
    /// Writes to the log what is held.
    virtual void reportUsage() = 0;

    static void limitAll();
    static void purgeAll();
    static void reportAll();

protected:
    void enrol();
    /// After it returns no call is under way on another thread or to come. It may be called from inside
    /// a call.
    void withdraw();
};
