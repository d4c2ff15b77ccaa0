#pragma once

#include "ole/Ox/OxObject.h"
#include "toolkit/image/FrameBufferRep.h"
#include "toolkit/image/VideoDecompressionInfo.h"

/// Decompresses the frames of one kind of buffer.
///
/// Threads  Any, several at once for different buffers.
class iVideoDecoder : public virtual iObject {
public:
    [[nodiscard]] virtual bool canDecode(VideoDecompressionInfo const& info) const = 0;
    /// Decompresses the frames of `buffer` in place or puts another buffer there. 1 on success, with
    /// the buffer's status set to done; any other result leaves the status to the caller.
    virtual int decompress(Ox::Ptr<FrameBufferRep>& buffer) = 0;
};

namespace Ox {

/// The registry of video decoders, made at first use. From the start it holds one for frames whose
/// pixels need no decompression: it waits for the surfaces and succeeds if they have pixels.
///
/// Threads  Any.
class DecoderInfo {
public:
    [[nodiscard]] static DecoderInfo& instance();
    /// The first decoder, in the order of registration, that can decode it; empty if there is none.
    [[nodiscard]] Ptr<iVideoDecoder> getDecoderFor(VideoDecompressionInfo const& info) const;
    void add(Ptr<iVideoDecoder> const& decoder);
    void remove(Ptr<iVideoDecoder> const& decoder);
};

}  // namespace Ox

/// Decoders kept for use again by the files that are open.
///
/// Threads  Any.
class CodecPool {
public:
    /// Something that keeps decoders.
    class iKeeper : public virtual iObject {
    public:
        /// Lets go of every decoder that nobody uses.
        virtual void flushUnreferenced() = 0;
    };

    static void addKeeper(Ox::Ptr<iKeeper> const& keeper);
    static void removeKeeper(Ox::Ptr<iKeeper> const& keeper);
    /// Asks every keeper, in the order in which they were added.
    static void flushAllUnreferenced();
};
