#include "host/remote/RemoteLimits.h"

#include "toolkit/services/Settings.h"

namespace {

RemoteLimits::Time setting(char const* key, int defaultMs) {
    return RemoteLimits::Time(config_int(key, defaultMs, 1, RemoteLimits::longestMs));
}

}  // namespace

RemoteLimits RemoteLimits::read() {
    RemoteLimits limits;
    limits.connect = setting("remoteConnectMs", defaultConnectMs);
    limits.firstByte = setting("remoteFirstByteMs", defaultFirstByteMs);
    limits.stall = setting("remoteStallMs", defaultStallMs);
    limits.query = setting("remoteQueryMs", defaultQueryMs);
    limits.rest = setting("remoteRestMs", defaultRestMs);
    limits.listing = setting("remoteListingMs", defaultListingMs);
    return limits;
}
