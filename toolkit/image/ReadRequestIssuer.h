#pragma once

#include <atomic>

#include "ole/Ox/OxObject.h"
#include "ole/os/Locks.h"
#include "toolkit/services/RequestStatus.h"

/// Somebody who wants to be told of the end of a read.
///
/// Ownership  Requests hold its proxy, never the issuer itself, so an issuer may die before its read
///            ends. A derived class calls `withdraw` at the start of its destructor.
/// Threads    `requestCompleted` comes on the read queue's thread, or on the thread that asked when the
///            frame is there already, and may come before that call has returned. It runs with locks of
///            the read held: it must not wait for another thread that reads, nor ask for a read itself.
/// Deliberate It is called once at most. It isn't if its request was merged into one that has just told
///            its issuers, or into one that has failed and is still held: a caller that waits does so
///            with a time limit, and looks at the request's status each time the limit has passed.
class ReadRequestIssuer {
public:
    class Proxy;

    ReadRequestIssuer();
    virtual ~ReadRequestIssuer();
    ReadRequestIssuer(ReadRequestIssuer const&) = delete;
    ReadRequestIssuer& operator=(ReadRequestIssuer const&) = delete;

    /// @param result  the `FrameBufferRep` of the read, or empty
    /// @param status  `requestComplete` or `requestFailed`
    virtual void requestCompleted(Ox::Ptr<iObject>& result, RequestStatus status) = 0;

    [[nodiscard]] Ox::Ptr<Proxy> const& getProxy() const { return proxy_; }

protected:
    /// After it returns no call is under way on another thread or to come.
    void withdraw();

private:
    Ox::Ptr<Proxy> proxy_;
};

/// Stands for an issuer and outlives it.
///
/// Lock order  Its lock is held while the issuer is called, so that an issuer can't die in the call.
class ReadRequestIssuer::Proxy : public virtual iObject {
public:
    explicit Proxy(ReadRequestIssuer* owner) : issuer(owner) {}

    /// Tells the issuer, if it is still there.
    void notify(Ox::Ptr<iObject>& result, RequestStatus status);
    /// Forgets the issuer; waits for a call that is under way on another thread.
    void clear();

    /// Null once the issuer has gone.
    std::atomic<ReadRequestIssuer*> issuer;

private:
    CriticalSection lock_;
};
