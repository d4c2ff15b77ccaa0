#pragma once

#include "ole/Ox/OxObject.h"

/// Something that holds memory which it can give back when memory is wanted.
///
/// The toolkit asks everyone that is enrolled: first to limit its use, then to purge.
///
/// Ownership  The registry doesn't own its members. A derived class calls `enrol` at the end of its
///            constructor and `withdraw` at the start of its destructor, so that no call meets half
///            an object.
/// Threads    The three virtual operations are called on any thread, with no lock of the toolkit that
///            another thread could be waiting for, except in `withdraw`.
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
    /// After it returns no call is under way or to come.
    void withdraw();
};
