#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "toolkit/image/DecodeFormat.h"
#include "toolkit/image/Surface.h"
#include "toolkit/image/VideoDecompressionInfo.h"

class PlayFileMetadataRep;

/// One or more frames that a read has brought.
///
/// Its `DecodeFormat` says what was asked for; what was delivered stands in its surfaces.
///
/// Threads  `decompressStatus` is handled atomically by any thread; the rest is set before the buffer
///          is handed out.
class FrameBufferRep : public virtual iObject {
public:
    /// The values of `decompressStatus`.
    enum eStatus : std::uint32_t {
        waiting = 1,  ///< nobody has decompressed it
        claimed = 2,  ///< somebody is about to
        done = 3,
        failed = 4,
    };

    /// Whether the surfaces of a run can be waited for.
    enum eSurfaceEvents : std::uint32_t { withoutEvents = 0, withEvents = 1 };

    /// Most frames that a run has: an index has 16 bits.
    static constexpr std::uint32_t maxFrames = 65536;

    /// One frame, waiting for decompression.
    FrameBufferRep(Ox::Image::Surface const& surface, std::uint32_t frame);
    /// A run of frames, the last one included, as the metadata describe the file's. The surfaces have no
    /// pixels yet. Of a run that is longer than `maxFrames` only those are there.
    FrameBufferRep(Ox::Ptr<PlayFileMetadataRep>& metadata, std::uint32_t startFrame, std::uint32_t lastFrame,
                   eSurfaceEvents events);

    /// Copies the surface of a frame to `surface`; false, with `surface` untouched, if there is none.
    bool getSurface(std::uint16_t index, Ox::Image::Surface& surface) const;
    [[nodiscard]] std::uint32_t getNumFrames() const;
    /// The number, in the file's numbering, of the first frame.
    [[nodiscard]] std::uint32_t getStartValidFrameIndex() const { return startFrame_; }

    void setDecompressComplete(eStatus status) { decompressStatus.store(status); }
    [[nodiscard]] VideoDecompressionInfo const& getVideoDecompressionInfo() const { return info_; }
    void setVideoDecompressionInfo(VideoDecompressionInfo const& info) { info_ = info; }

    std::atomic<std::uint32_t> decompressStatus{waiting};
    DecodeFormat decodeFormat;

private:
    std::vector<Ox::Image::Surface> surfaces_;
    std::uint32_t startFrame_;
    VideoDecompressionInfo info_;
};
