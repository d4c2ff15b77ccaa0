#pragma once

#include <cstdint>
#include <vector>

#include "bench/support/CountingIssuer.h"
#include "bench/support/NullReader.h"
#include "video/VideoReadRequest.h"

namespace bench {

/// A file of a `NullReader`, opened past the cache, and the requests that are made of it.
///
/// All reads of one file tell one and the same issuer.
///
/// Threads  One.
class NullFile {
public:
    /// Asks for `frame`; the result is what the queue made of the request.
    Ox::Ptr<VideoReadRequest> ask(std::uint32_t frame, CountingIssuer& issuer);

    /// The reads of `count` frames from 0 on, all of them ended and all held. Requires that `issuer` has
    /// been told of no read before.
    [[nodiscard]] std::vector<Ox::Ptr<VideoReadRequest>> readAndHold(std::uint32_t count,
                                                                     CountingIssuer& issuer);

    /// Asks for `count` frames from `frame` on, with at most `window` reads under way, and waits for the
    /// end of all. Requires that `issuer` has been told of `frame` reads before.
    void askAhead(std::uint32_t frame, std::uint32_t count, std::uint32_t window, CountingIssuer& issuer);

private:
    Ox::Ptr<FileReadInstance> file_{Ox::makePtr<NullReader>(LightweightString<wchar_t>(L"null"))};
};

}  // namespace bench
