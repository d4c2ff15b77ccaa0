#pragma once

#include "plugins/ffmpeg/StreamFacts.h"
#include "toolkit/image/Surface.h"

namespace playfile_ffmpeg {

/// A surface that shows a decoded picture's own memory and holds the picture; nothing is copied. What
/// the picture doesn't say of itself is taken from the stream.
///
/// @param timeSeconds  of the frame, from the stream's start
Ox::Image::Surface surfaceOf(PicturePtr const& picture, StreamFacts const& facts, double timeSeconds);

/// The library's descriptions of a stream's colour, pixel shape and fields.
Ox::Image::VideoData videoDataOf(StreamFacts const& facts);
Ox::Image::eFieldOrder fieldOrderOf(StreamFacts const& facts);

}  // namespace playfile_ffmpeg
