#pragma once

#include "plugins/ffmpeg/FFmpegReader.h"
#include "video/VideoReadRequest.h"

namespace test {

/// The surface that a read of a frame hands out, which needn't be finished; without a body if the read failed. It
/// goes straight to the reader, without a queue.
[[nodiscard]] inline Ox::Image::Surface askReader(Ox::Ptr<playfile_ffmpeg::FFmpegReader> const& reader,
                                                  std::uint32_t frame, DecodeFormat const& format) {
    Ox::Ptr<FileReadInstance> file = reader;
    Ox::Ptr<IndexInfoRep> none;
    auto request = Ox::makePtr<VideoReadRequest>(file, none, frame, resultDecompressed, format,
                                                 Ox::Ptr<ReadRequestIssuer::Proxy>());
    Ox::Ptr<FrameBufferRep> buffer;
    Ox::Image::Surface surface;
    if (reader->readVideo(buffer, request) == FileReadInstance::frameRead) {
        buffer->getSurface(0, surface);
    }
    return surface;
}

}  // namespace test
