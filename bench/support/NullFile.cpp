#include "bench/support/NullFile.h"

namespace bench {

Ox::Ptr<VideoReadRequest> NullFile::ask(std::uint32_t frame, CountingIssuer& issuer) {
    Ox::Ptr<IndexInfoRep> noIndexInfo;
    auto request = Ox::makePtr<VideoReadRequest>(file_, noIndexInfo, frame, resultAsDelivered,
                                                 DecodeFormat::getDefault(), issuer.getProxy());
    file_->queueReadRequest(request);
    return request;
}

std::vector<Ox::Ptr<VideoReadRequest>> NullFile::readAndHold(std::uint32_t count, CountingIssuer& issuer) {
    std::vector<Ox::Ptr<VideoReadRequest>> held(count);
    for (std::uint32_t frame = 0; frame < count; ++frame) {
        held[frame] = ask(frame, issuer);
        issuer.waitFor(frame + 1);
    }
    return held;
}

void NullFile::askAhead(std::uint32_t frame, std::uint32_t count, std::uint32_t window,
                        CountingIssuer& issuer) {
    std::vector<Ox::Ptr<VideoReadRequest>> underWay(window);
    for (std::uint32_t const end = frame + count; frame < end; ++frame) {
        issuer.waitFor(frame + 1 > window ? frame + 1 - window : 0);
        underWay[frame % window] = ask(frame, issuer);
    }
    issuer.waitFor(frame);
}

}  // namespace bench
