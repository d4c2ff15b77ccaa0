#include "bench/support/NullFile.h"

namespace bench {

Ox::Ptr<VideoReadRequest> NullFile::request(std::uint32_t frame, CountingIssuer& issuer) {
    Ox::Ptr<IndexInfoRep> noIndexInfo;
    return Ox::makePtr<VideoReadRequest>(file_, noIndexInfo, frame, resultAsDelivered,
                                         DecodeFormat::getDefault(), issuer.getProxy());
}

Ox::Ptr<VideoReadRequest> NullFile::ask(std::uint32_t frame, CountingIssuer& issuer) {
    Ox::Ptr<VideoReadRequest> asked = request(frame, issuer);
    queue(asked);
    return asked;
}

}  // namespace bench
