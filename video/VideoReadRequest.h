#pragma once

#include <atomic>
#include <cstdint>

#include "files/FileReadInstance.h"
#include "ole/Ox/OxMemHolder.h"
#include "playfile/Trace.h"
#include "toolkit/image/DecodeFormat.h"
#include "toolkit/image/FrameBufferRep.h"
#include "toolkit/image/IndexInfoRep.h"
#include "toolkit/image/ReadRequestIssuer.h"
#include "toolkit/services/RequestStatus.h"
#include "video/IssuersT.h"

/// One asynchronous read of one video frame: what is wanted, what came of it, and who is to be told.
///
/// Its `DecodeFormat` is the picture that is wanted.
///
/// Ownership  Held by `Ox::Ptr`, and the count matters: one that only its queue still holds is dropped
///            unread, which is how a caller cancels. It holds its file, which so stays open under it.
/// Threads    `getRequestStatus`: any thread, at any time; the result may be read once it is complete.
///            The rest belongs to whoever completes the read.
/// Deliberate The issuers are told before the status changes: during the call `getRequestStatus` gives
///            the old one, and who polls sees the end only when the callbacks are over. An issuer that
///            is merged in between those two is told by the next reuse of the request only.
class VideoReadRequest : public virtual iObject, public DecodeFormat {
public:
    /// @param frame   in the file's own numbering
    /// @param issuer  told of the end; may be empty
    VideoReadRequest(Ox::Ptr<FileReadInstance>& file, Ox::Ptr<IndexInfoRep>& indexInfo, unsigned int frame,
                     eResultType resultType, DecodeFormat const& format,
                     Ox::Ptr<ReadRequestIssuer::Proxy> issuer);

    [[nodiscard]] RequestStatus getRequestStatus() const { return status_.load(std::memory_order_acquire); }
    void setRequestStatus(RequestStatus status) { status_.exchange(status); }

    [[nodiscard]] Ox::Ptr<FrameBufferRep> getResultBuffer() const { return resultBuffer_; }
    void setResultBuffer(Ox::Ptr<FrameBufferRep> buffer) { resultBuffer_ = buffer; }

    /// Makes the result from raw pixels as the file's metadata describe them; the pixels aren't copied,
    /// the result holds `memory`. Nothing is left to decompress. The request isn't completed.
    Ox::Ptr<FrameBufferRep> setUncompressedResult(Ox::Ptr<iMemHolder> memory);

    /// Ends the read: decompresses the result if that is asked for, tells the issuers, and then stores
    /// the status. A second completion with status 2 tells only the issuers that came since the first.
    ///
    /// @param status  2 complete, 3 failed; 2 without a result counts as 3
    void requestHasCompleted(RequestStatus status);

    /// For readers that must tell the issuers themselves.
    void doCallbacks(Ox::Ptr<iObject>& result, RequestStatus status) { issuers.doCallbacks(result, status); }

    static constexpr char const* traceCategory = "video";
    static constexpr char const* traceName = "video request";

    std::uint32_t const frame;
    /// Empty for a reader without an index cache.
    Ox::Ptr<IndexInfoRep> const indexInfo;
    /// What the trace calls this request; 0 if it isn't traced.
    std::uint64_t const number = PlayFileTrace::nextRequest();
    IssuersT issuers;
    eResultType const resultType;
    Ox::Ptr<FileReadInstance> const file;

private:
    [[nodiscard]] RequestStatus decompressResult();

    std::atomic<RequestStatus> status_{requestBuilt};
    Ox::Ptr<FrameBufferRep> resultBuffer_;
};

/// Writes the format that a request asks for into a buffer.
void stampBuffer(FrameBufferRep& buffer, DecodeFormat const& format);
