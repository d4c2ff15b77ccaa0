#include "plugins/ffmpeg/PictureConverter.h"

#include "plugins/ffmpeg/PixelFormats.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace playfile_ffmpeg {
namespace {

/// From this height on a picture that doesn't state its matrix is taken for high definition.
constexpr int firstHdHeight = 720;
/// 1.0 in the fixed point numbers of contrast and saturation.
constexpr int unchanged = 1 << 16;

AVColorSpace matrixOf(AVFrame const& picture, AVColorSpace assumedMatrix) {
    if (picture.colorspace != AVCOL_SPC_UNSPECIFIED && picture.colorspace != AVCOL_SPC_RGB) {
        return picture.colorspace;
    }
    if (assumedMatrix != AVCOL_SPC_UNSPECIFIED) {
        return assumedMatrix;
    }
    return picture.height >= firstHdHeight ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

}  // namespace

AVColorSpace assumedMatrixOf(AVFrame const& picture) {
    return matrixOf(picture, AVCOL_SPC_UNSPECIFIED);
}

PictureShape shapeOf(AVFrame const& picture) {
    return {picture.width, picture.height, static_cast<AVPixelFormat>(picture.format)};
}

PicturePtr PictureConverter::convert(AVFrame const& picture, PictureShape const& shape,
                                     AVColorSpace assumedMatrix) {
    if (!prepare(picture, shape, assumedMatrix)) {
        return nullptr;
    }
    AvPtr<AVFrame> result = makeFrame();
    av_frame_copy_props(result.get(), &picture);
    result->width = shape.width;
    result->height = shape.height;
    result->format = shape.pixelFormat;
    if (av_frame_get_buffer(result.get(), 0) < 0) {
        return nullptr;
    }
    int const rows = sws_scale(context_.get(), picture.data, picture.linesize, 0, picture.height,
                               result->data, result->linesize);
    return rows == shape.height ? PicturePtr(result.release(), AvDeleter()) : nullptr;
}

/// Only a change between YUV and RGB needs a matrix; without one swscale keeps colours as they are.
bool PictureConverter::prepare(AVFrame const& picture, PictureShape const& shape,
                               AVColorSpace assumedMatrix) {
    auto const from = static_cast<AVPixelFormat>(picture.format);
    bool const isPossible = av_image_check_size(static_cast<unsigned>(shape.width),
                                                static_cast<unsigned>(shape.height), 0, nullptr) >= 0 &&
                            sws_isSupportedInput(from) != 0 && sws_isSupportedOutput(shape.pixelFormat) != 0;
    if (!isPossible) {
        return false;
    }
    context_.reset(sws_getCachedContext(context_.release(), picture.width, picture.height, from, shape.width,
                                        shape.height, shape.pixelFormat, SWS_BICUBIC, nullptr, nullptr,
                                        nullptr));
    if (context_ && isRgb(from) != isRgb(shape.pixelFormat)) {
        int const* const coefficients = sws_getCoefficients(matrixOf(picture, assumedMatrix));
        int const isFromFull = isRgb(from) || picture.color_range == AVCOL_RANGE_JPEG;
        int const isToFull = isRgb(shape.pixelFormat);
        sws_setColorspaceDetails(context_.get(), coefficients, isFromFull, coefficients, isToFull, 0,
                                 unchanged, unchanged);
    }
    return context_ != nullptr;
}

}  // namespace playfile_ffmpeg
