#pragma once

#include "plugins/ffmpeg/PictureConverter.h"

namespace test {

/// A picture of soft shades that move from number to number, with the number in its top rows as the clips of
/// the script bear it; at least 192 x 32.
[[nodiscard]] playfile_ffmpeg::PicturePtr numberedPicture(int number,
                                                          playfile_ffmpeg::PictureShape const& shape);

/// Peak signal to noise of the worst plane, in decibel; both of one shape of planar YUV. 0 if they aren't.
[[nodiscard]] double likeness(AVFrame const& left, AVFrame const& right);

/// Above what `likeness` answers for pictures that differ; it answers it for equal ones.
inline constexpr double isTheSame = 1000.0;

}  // namespace test
