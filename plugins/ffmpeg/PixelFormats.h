#pragma once

#include "plugins/ffmpeg/AvPointers.h"
#include "toolkit/image/Format.h"

namespace playfile_ffmpeg {

/// The library's number of a pixel format; it is made known to the library if it wasn't. Both sides use
/// the same names.
Ox::Image::Format formatOf(AVPixelFormat pixelFormat);

/// The pixel format of a number; AV_PIX_FMT_NONE if FFmpeg has none of that name.
AVPixelFormat pixelFormatOf(Ox::Image::Format format);

}  // namespace playfile_ffmpeg
