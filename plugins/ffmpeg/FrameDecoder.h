#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/PictureMemory.h"

namespace playfile_ffmpeg {

/// One decoder of libavcodec.
///
/// Packets are sent with their number in decoding order in place of a time; the picture that comes of a
/// packet bears that number, so that it is known whatever order pictures come out in.
///
/// Threads      One at a time; decodes on threads of its own.
class FrameDecoder {
public:
    enum class eThreading {
        lowLatency,  ///< All threads on one picture, which comes out as soon as the coding allows.
        throughput,  ///< A picture per thread where the codec can; pictures come out later.
        onePicture   ///< The same with one thread only, as the others would have nothing to do.
    };

    /// `parameters` are referred to as long as the decoder lives.
    /// `reorderDepth`: how many pictures the decoder must hold back at least. Empty on failure, with the
    /// reason in `error`.
    static std::unique_ptr<FrameDecoder> open(AVCodecParameters const& parameters, uint32_t reorderDepth,
                                              eThreading threading, std::string& error);

    /// True if frames can be decoded in parallel.
    static bool hasFrameThreads(AVCodecID codec);

    /// Takes the packet's bytes as packet `number`. `mayDrop`: nobody will ask for its picture, so it
    /// needs no decoding if no other refers to it. A damaged packet is taken and yields nothing.
    void send(AVPacket& packet, uint32_t number, bool mayDrop);

    /// Counts damage that the decoder doesn't see.
    void countError() { ++errorCount_; }

    /// Tells the decoder that nothing follows, so that it gives out what it holds back.
    void drain();

    /// A decoder of one picture is one for throughput from the next reset() on.
    void expectMore();

    /// Forgets everything; the next packet must be a key. After damage the decoder is made anew: what
    /// it took from a damaged packet, parameter sets above all, would outlive a flush.
    void reset();

    /// The next picture; empty if the decoder wants more packets, or has given out all after drain().
    /// `number` is that of its packet.
    AvPtr<AVFrame> receive(uint32_t& number);

    bool hasEnded() const { return hasEnded_; }
    uint64_t sentCount() const { return sentCount_; }
    uint64_t errorCount() const { return errorCount_; }
    uint64_t decodedCount() const { return decodedCount_; }
    AVCodecContext const& context() const { return *context_; }

private:
    FrameDecoder(AVCodecParameters const& parameters, uint32_t reorderDepth, eThreading threading)
        : parameters_(parameters), reorderDepth_(reorderDepth), threading_(threading) {}

    int openContext();
    static int getBuffer(AVCodecContext* context, AVFrame* picture, int flags);

    AVCodecParameters const& parameters_;
    uint32_t const reorderDepth_;
    eThreading threading_;
    PictureMemory memory_;
    AvPtr<AVCodecContext> context_;
    bool hasEnded_ = false;
    bool isOutdated_ = false;  ///< To be opened anew, as `threading_` has changed.
    uint64_t sentCount_ = 0;
    uint64_t decodedCount_ = 0;
    uint64_t errorCount_ = 0;
    uint64_t errorsBeforeOpening_ = 0;
};

/// True for a picture that was made with the help of others.
bool isPredicted(AVFrame const& picture);

}  // namespace playfile_ffmpeg
