#pragma once

#include <cstdint>

#include "toolkit/sound/AudioMetadata.h"
#include "toolkit/sound/ByteBufferImpl.h"
#include "toolkit/sound/StreamBufferList.h"

namespace Ox {

/// One decoder of one compressed audio stream, with the state that runs from frame to frame.
///
/// A decoder overrides one of the two decoding operations and says by `decodesToStreams` which. It puts
/// its samples behind those that the output holds already, raises the used sizes, and says in `decoded`
/// how many samples of each channel came out; none is allowed for a frame that only fills the decoder.
///
/// Threads  One at a time: the opening thread first, then the file's audio queue.
/// Errors   A decoding operation that isn't good leaves the output as it was.
class AudioCodecInstance : public virtual iObject {
public:
    /// What `status` says.
    enum eStatus : int {
        probe = 0,  ///< to be tried on the stream's first frames
        ready = 5,
    };
    /// What a decoding operation answers.
    enum eDecodeResult : std::uint32_t {
        needsMore = 0,  ///< only while the decoder is tried: ask again with the next frame
        good = 3,
        notSupported = 4,  ///< this way of decoding isn't there
        accepted = 5,      ///< good as well; while it is tried, the stream is the decoder's
    };

    /// For the log.
    [[nodiscard]] virtual LightweightString<char> getDescription() const { return metadata.codec; }

    /// True if it decodes into one buffer a channel, false if into one interleaved buffer.
    [[nodiscard]] virtual bool decodesToStreams() = 0;

    /// Decodes a frame into interleaved samples.
    ///
    /// @param samplesPerFrame  of the stream; any number while the decoder is tried
    /// @param packet           the frame; the decoder may keep it
    /// @param skipStart        samples to blank at the start of what this frame gives
    /// @param skipEnd          samples to blank at its end
    virtual std::uint32_t decodeAudioBuffer(Ptr<ByteBufferImpl>& /*output*/, unsigned int /*samplesPerFrame*/,
                                            Ptr<ByteBufferImpl>& /*packet*/, unsigned int& /*decoded*/,
                                            unsigned int /*skipStart*/, unsigned int /*skipEnd*/) {
        return notSupported;
    }
    /// Decodes a frame into a buffer a channel. What is to be skipped is blanked by the caller.
    virtual std::uint32_t decodeAudioStream(Aud::StreamBufferList& /*output*/,
                                            unsigned int /*samplesPerFrame*/, Ptr<ByteBufferImpl>& /*packet*/,
                                            unsigned int& /*decoded*/, unsigned int /*skipStart*/,
                                            unsigned int /*skipEnd*/) {
        return notSupported;
    }

    /// Forgets all that earlier frames have left.
    virtual void resetToStart() {}
    /// How many frames before any position must be decoded and thrown away before the output is right.
    [[nodiscard]] virtual unsigned int getPreRollFrames() = 0;

    /// The stream as it is decoded: what `AudioReader` puts into the file's metadata.
    Aud::Metadata metadata;
    /// An `eStatus`; any other value makes the decoder unusable.
    int status = ready;
};

}  // namespace Ox
