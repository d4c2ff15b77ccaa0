#include "toolkit/image/ReadRequestIssuer.h"

ReadRequestIssuer::ReadRequestIssuer() : proxy_(Ox::makePtr<Proxy>(this)) {}

ReadRequestIssuer::~ReadRequestIssuer() {
    proxy_->clear();
}

void ReadRequestIssuer::withdraw() {
    proxy_->clear();
}

void ReadRequestIssuer::Proxy::notify(Ox::Ptr<iObject>& result, RequestStatus status) {
    ScopedLock const scope(lock_);
    if (ReadRequestIssuer* const told = issuer.load()) {
        told->requestCompleted(result, status);
    }
}

void ReadRequestIssuer::Proxy::clear() {
    ScopedLock const scope(lock_);
    issuer.store(nullptr);
}
