#pragma once

#include "plugins/ffmpeg/StreamFacts.h"
#include "toolkit/image/Surface.h"

namespace playfile_ffmpeg {

/// A surface that shows a decoded picture's own memory and holds the picture; nothing is copied. What
/// the picture doesn't say of itself is taken from the stream.
///
/// @param timeSeconds  of the frame, from the stream's start
Ox::Image::Surface surfaceOf(PicturePtr const& picture, StreamFacts const& facts, double timeSeconds);

/// The same for a surface that is already handed out and that its receiver doesn't look at before it is
/// finished. The picture must be of its size and format.
void showIn(Ox::Image::Surface& surface, PicturePtr const& picture, StreamFacts const& facts,
            double timeSeconds);

/// The picture that a surface shows; empty if it shows none or something else.
PicturePtr pictureOf(Ox::Image::Surface const& surface);

/// The library's descriptions of a stream's colour, pixel shape and fields.
Ox::Image::VideoData videoDataOf(StreamFacts const& facts);
Ox::Image::eFieldOrder fieldOrderOf(StreamFacts const& facts);

}  // namespace playfile_ffmpeg
