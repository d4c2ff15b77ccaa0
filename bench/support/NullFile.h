#pragma once

#include <cstdint>

#include "bench/support/CountingIssuer.h"
#include "bench/support/NullReader.h"
#include "video/VideoReadRequest.h"

namespace bench {

/// A file of a `NullReader`, opened past the cache, and the requests that are made of it.
///
/// Threads  One.
class NullFile {
public:
    /// A request for `frame` that tells `issuer`; not queued yet.
    [[nodiscard]] Ox::Ptr<VideoReadRequest> request(std::uint32_t frame, CountingIssuer& issuer);

    /// Hands a request to the file's queue.
    void queue(Ox::Ptr<VideoReadRequest>& request) { file_->queueReadRequest(request); }

    /// Asks for `frame`; the result is what the queue made of the request.
    Ox::Ptr<VideoReadRequest> ask(std::uint32_t frame, CountingIssuer& issuer);

private:
    Ox::Ptr<FileReadInstance> file_{Ox::makePtr<NullReader>(LightweightString<wchar_t>(L"null"))};
};

}  // namespace bench
