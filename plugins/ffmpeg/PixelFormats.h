#pragma once

#include "plugins/ffmpeg/AvPointers.h"
#include "toolkit/image/Format.h"

namespace playfile_ffmpeg {

/// The library's number of a pixel format; it is made known to the library if it wasn't. Both sides use
/// the same names.
Ox::Image::Format formatOf(AVPixelFormat pixelFormat);

/// The pixel format of a number; AV_PIX_FMT_NONE if FFmpeg has none of that name.
AVPixelFormat pixelFormatOf(Ox::Image::Format format);

/// True for red, green and blue, or a palette of such; their samples use all of their range.
bool isRgb(AVPixelFormat pixelFormat);

}  // namespace playfile_ffmpeg
