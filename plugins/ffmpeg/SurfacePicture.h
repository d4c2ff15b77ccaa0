#pragma once

#include "plugins/ffmpeg/AvPointers.h"
#include "toolkit/image/Surface.h"

namespace playfile_ffmpeg {

/// The picture that a surface shows, for encoders: its own one if FFmpeg has decoded it, else a copy. Empty if
/// it shows none, or one of a format that FFmpeg doesn't know.
[[nodiscard]] PicturePtr pictureFrom(Ox::Image::Surface const& surface);

}  // namespace playfile_ffmpeg
