#include "video/IssuersT.h"

#include "playfile/Trace.h"

IssuersT::IssuersT(Ox::Ptr<ReadRequestIssuer::Proxy> const& issuer, std::uint64_t requestNumber)
    : requestNumber_(requestNumber) {
    if (issuer) {
        issuers_.insert(issuer);
    }
}

/// A party that is told may add others, or tell all of them itself.
void IssuersT::doCallbacks(Ox::Ptr<iObject>& result, RequestStatus status) {
    ScopedLock const scope(lock_);
    for (auto next = issuers_.begin(); next != issuers_.end();) {
        Ox::Ptr<ReadRequestIssuer::Proxy> const issuer = *next;
        TraceSlice slice("issuers", "callback", requestNumber_);
        slice.with("status", status);
        issuer->notify(result, status);
        next = issuers_.upper_bound(issuer);
    }
    issuers_.clear();
}

void IssuersT::addIssuersFrom(IssuersT const& other) {
    ScopedLock const scope(lock_);
    issuers_.insert(other.issuers_.begin(), other.issuers_.end());
}

bool IssuersT::empty() {
    return size() == 0;
}

std::size_t IssuersT::size() {
    ScopedLock const scope(lock_);
    return issuers_.size();
}
