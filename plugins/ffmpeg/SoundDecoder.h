#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>

#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/FrameMemory.h"

namespace playfile_ffmpeg {

/// A decoder of sound of the FFmpeg libraries that gives all that it decodes: what a container wants
/// skipped is left to whoever numbers the samples.
///
/// Threads      One at a time.
class SoundDecoder {
public:
    /// Empty with the reason in `error`.
    static std::unique_ptr<SoundDecoder> open(AVCodecParameters const& parameters, std::string& error);

    /// Forgets what earlier packets have left, as for a packet in the middle of the stream.
    void restart();
    /// Forgets it as thoroughly as a new decoder does.
    void restartAtFirstPacket();

    /// Takes a packet; null says that no more follow. A packet without bytes counts as damaged.
    /// False if it can't be decoded.
    bool feed(AVPacket const* packet);
    /// The same for a packet of which there is nothing but its bytes.
    bool feed(std::span<uint8_t const> bytes);
    /// What came of it, frame by frame; null when there is no more. The frame is the decoder's own, and is used
    /// for the next one.
    AVFrame* receive();
    /// Takes back the memory of a frame that isn't needed any more.
    void giveBack(AvPtr<AVBufferRef> memory) { memory_.takeBack(std::move(memory)); }

    /// True if it still has samples when the last packet was taken.
    bool isDelayed() const;
    AVCodecContext const& context() const { return *context_; }

private:
    explicit SoundDecoder(AvPtr<AVCodecParameters> parameters);
    int openContext();
    void takeOverSkipping();
    void makeRoom(size_t byteCount);
    static int getBuffer(AVCodecContext* context, AVFrame* frame, int flags);

    AvPtr<AVCodecParameters> const parameters_;
    AvPtr<AVCodecContext> context_;
    AvPtr<AVPacket> const packet_;
    size_t blockByteCount_ = 0;  ///< Of the block that the packet has.
    FrameMemory memory_;
    AvPtr<AVFrame> const frame_;
};

/// A copy; throws std::bad_alloc when there is no memory.
AvPtr<AVCodecParameters> copyOf(AVCodecParameters const& parameters);

}  // namespace playfile_ffmpeg
