#pragma once

#include "plugins/ffmpeg/PictureConverter.h"
#include "toolkit/image/DecodeFormat.h"

namespace playfile_ffmpeg {

/// What a request makes of a picture: what it doesn't state is the picture's own; if it states only one of
/// width and height, the other keeps the proportions.
PictureShape wantedShape(DecodeFormat const& wanted, PictureShape const& own);

}  // namespace playfile_ffmpeg
