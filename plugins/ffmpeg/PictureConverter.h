#pragma once

#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/StreamFacts.h"

namespace playfile_ffmpeg {

/// What a picture is to become.
struct PictureShape {
    int width = 0;
    int height = 0;
    AVPixelFormat pixelFormat = AV_PIX_FMT_NONE;
    bool operator==(PictureShape const&) const = default;
};

/// The shape of a picture as it is.
PictureShape shapeOf(AVFrame const& picture);

/// The matrix between RGB and YUV that a picture states, or else is taken for by its height.
[[nodiscard]] AVColorSpace assumedMatrixOf(AVFrame const& picture);

/// Scales pictures and changes their pixel format.
///
/// Between YUV and RGB it uses the picture's own matrix and range; a matrix that isn't stated is that of
/// the option, else ITU-R BT.709 for 720 lines and more and BT.601 below, as is usual. Chroma and size
/// are interpolated bicubically.
///
/// Ownership  It keeps the tables of the last conversion.
/// Threads    One at a time.
class PictureConverter {
public:
    /// Empty if FFmpeg can't make this of the picture.
    ///
    /// @param assumedMatrix  for a picture that states none; AVCOL_SPC_UNSPECIFIED to go by its height
    PicturePtr convert(AVFrame const& picture, PictureShape const& shape, AVColorSpace assumedMatrix);

private:
    bool prepare(AVFrame const& picture, PictureShape const& shape, AVColorSpace assumedMatrix);

    AvPtr<SwsContext> context_;
};

}  // namespace playfile_ffmpeg
