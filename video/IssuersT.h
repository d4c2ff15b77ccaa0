#pragma once

#include <cstdint>
#include <set>

#include "ole/Ox/OxObject.h"
#include "ole/os/Locks.h"
#include "toolkit/image/ReadRequestIssuer.h"

/// The parties that are to be told of the end of one read, each once.
///
/// Ownership  It holds proxies; the issuers behind them may go at any time.
/// Threads    Any. The issuers are called on the thread that calls `doCallbacks`.
/// Lock order Its lock is innermost among the locks of the read path, and is held while issuers are
///            called: an issuer must not wait for a thread that may merge into the same request.
class IssuersT {
public:
    /// Null is ignored.
    ///
    /// @param requestNumber  what the trace calls the read; 0 if it isn't traced
    explicit IssuersT(Ox::Ptr<ReadRequestIssuer::Proxy> const& issuer = {}, std::uint64_t requestNumber = 0);
    IssuersT(IssuersT const&) = delete;
    IssuersT& operator=(IssuersT const&) = delete;

    /// Tells every party that is still there, in the order of their proxies' addresses, and forgets all.
    void doCallbacks(Ox::Ptr<iObject>& result, RequestStatus status);

    /// Adds the parties of `other` that aren't here yet; `other` keeps its own.
    ///
    /// Requires that nobody changes `other` meanwhile: its lock isn't taken.
    void addIssuersFrom(IssuersT const& other);

    [[nodiscard]] bool empty();
    [[nodiscard]] std::size_t size();

private:
    struct ByAddress {
        bool operator()(Ox::Ptr<ReadRequestIssuer::Proxy> const& a,
                        Ox::Ptr<ReadRequestIssuer::Proxy> const& b) const {
            return std::less<>()(a.get(), b.get());
        }
    };

    std::uint64_t const requestNumber_;
    std::set<Ox::Ptr<ReadRequestIssuer::Proxy>, ByAddress> issuers_;
    CriticalSection lock_{eLockRank::issuers, "IssuersT"};
};
