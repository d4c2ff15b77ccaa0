#pragma once

#include <cstdint>

#include "files/FileReadInstance.h"
#include "ole/Ox/OxMemHolder.h"
#include "playfile/Trace.h"
#include "toolkit/image/ReadRequestIssuer.h"
#include "toolkit/services/RequestStatus.h"
#include "toolkit/sound/AudioMetadata.h"
#include "video/IssuersT.h"

/// Which samples are wanted.
///
/// Units  A sample is one sample of every channel of its stream.
struct AudioRequest {
    /// Index into the file's `audioStreams`.
    std::uint32_t stream = 0;
    /// Channel inside that stream, from 0.
    std::uint32_t channelInStream = 0;
    /// Channel over the whole file, from 0.
    std::uint32_t channel = 0;
    /// In the file's own numbering.
    std::uint64_t startSample = 0;
    /// Held to what the file has.
    std::uint32_t numSamples = 0;
};

/// One asynchronous read of one channel: what is wanted, what came of it, and who is to be told.
///
/// Ownership  Held by `Ox::Ptr`, and the count matters: one that only its queue still holds is dropped
///            unread, which is how a caller cancels. It holds its file, which so stays open under it.
/// Threads    Built on the caller's thread, read and ended on its queue's. What was wanted never changes.
///            The buffer may be looked at once an issuer was told or the status has left 0.
/// Units      Samples as in `AudioRequest`; a stream that the file doesn't have counts as one without
///            channels.
/// Deliberate The status is stored before the issuers are told: the reverse of a video request.
class AudioReadRequest : public virtual iObject, public AudioRequest {
public:
    /// @param mcsCount  samples to fetch: `numSamples`, or more where a stream is read by frames
    /// @param issuer    told of the end; may be empty
    AudioReadRequest(Ox::Ptr<FileReadInstance>& readFrom, AudioRequest const& request, unsigned int mcsCount,
                     Ox::Ptr<ReadRequestIssuer::Proxy> issuer);

    /// The samples; null before the read has ended, and after one that found the end of the data.
    [[nodiscard]] void* getBuffer() const { return buffer.getBuffer(); }
    /// The bytes of the samples.
    [[nodiscard]] std::uint32_t getUsed() const { return buffer.getUsed(); }

    /// 0 as built, 2 complete, 3 failed.
    [[nodiscard]] RequestStatus getRequestStatus() const { return status_.load(std::memory_order_acquire); }
    void setRequestStatus(RequestStatus status) { status_.store(status, std::memory_order_release); }

    /// The formats of the file's streams.
    [[nodiscard]] std::vector<Aud::Metadata> const& getAudioMetadata() const {
        return file->metadata->audioStreams;
    }
    /// Where the request begins in interleaved sample data, in bytes.
    [[nodiscard]] std::uint64_t getStartByte() const;
    /// The size of the whole read in bytes, as a 32-bit number.
    [[nodiscard]] std::uint32_t getBytesPerMCS() const;
    /// Orders requests that begin at the same sample.
    ///
    /// Deliberate  The streams before count as if they had this one's channels: it is a key, no index.
    [[nodiscard]] std::uint32_t getChannelIndex() const;

    /// Tells the issuers of the present status. @param self  this request
    void doCallbacks(Ox::Ptr<iObject>& self);

    static constexpr char const* traceCategory = "sound";
    static constexpr char const* traceName = "sound request";

    /// What the trace calls this request; 0 if it isn't traced.
    std::uint64_t const number = PlayFileTrace::nextRequest();
    IssuersT issuers;
    Ox::Ptr<FileReadInstance> const file;
    /// The result: one channel.
    Aud::StreamBuffer buffer;
    std::uint32_t const mcsCount;

private:
    /// The format of the request's stream; null if the file has no such stream.
    [[nodiscard]] Aud::Metadata const* findStream() const;

    std::atomic<RequestStatus> status_{requestBuilt};
};
