#include "tests/plugins_ffmpeg/NumberedPicture.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace test {
namespace {

using playfile_ffmpeg::AvDeleter;
using playfile_ffmpeg::AvPtr;
using playfile_ffmpeg::PictureConverter;
using playfile_ffmpeg::PicturePtr;
using playfile_ffmpeg::PictureShape;

constexpr int cellCount = 12;
constexpr int cellPixels = 16;
constexpr uint8_t dark = 16;
constexpr uint8_t light = 235;
constexpr uint8_t grey = 128;

uint8_t lumaAt(int number, int x, int y) {
    if (y < cellPixels && x < cellCount * cellPixels) {
        return (number >> (x / cellPixels) & 1) != 0 ? light : dark;
    }
    return static_cast<uint8_t>(grey + 80 * std::sin(0.03 * x + 0.05 * y + 0.2 * number));
}

uint8_t chromaAt(int plane, int number, int x, int y) {
    bool const isCell = y < cellPixels && x < cellCount * cellPixels;
    return isCell ? grey
                  : static_cast<uint8_t>(grey + 60 * std::sin(0.02 * x * plane + 0.03 * y - 0.1 * number));
}

int sampleAt(AVFrame const& picture, int component, int x, int y) {
    AVComponentDescriptor const& sample =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format))->comp[component];
    uint8_t const* const bytes =
        picture.data[sample.plane] + y * picture.linesize[sample.plane] + x * sample.step;
    return sample.depth > 8 ? bytes[0] | bytes[1] << 8 : bytes[0];
}

/// Of one component.
double noiseOf(AVFrame const& left, AVFrame const& right, int component) {
    AVPixFmtDescriptor const& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(left.format));
    bool const isChroma = component != 0;
    int const width = isChroma ? AV_CEIL_RSHIFT(left.width, format.log2_chroma_w) : left.width;
    int const height = isChroma ? AV_CEIL_RSHIFT(left.height, format.log2_chroma_h) : left.height;
    double sum = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            double const difference = sampleAt(left, component, x, y) - sampleAt(right, component, x, y);
            sum += difference * difference;
        }
    }
    return sum / width / height;
}

}  // namespace

PicturePtr numberedPicture(int number, PictureShape const& shape) {
    AvPtr<AVFrame> made = playfile_ffmpeg::makeFrame();
    made->width = shape.width;
    made->height = shape.height;
    made->format = AV_PIX_FMT_YUV444P;
    if (av_frame_get_buffer(made.get(), 0) < 0) {
        throw std::runtime_error("no picture of this size can be made");
    }
    for (int y = 0; y < shape.height; ++y) {
        for (int x = 0; x < shape.width; ++x) {
            made->data[0][y * made->linesize[0] + x] = lumaAt(number, x, y);
            made->data[1][y * made->linesize[1] + x] = chromaAt(1, number, x, y);
            made->data[2][y * made->linesize[2] + x] = chromaAt(2, number, x, y);
        }
    }
    return PictureConverter().convert(*made, shape, AVCOL_SPC_UNSPECIFIED);
}

double likeness(AVFrame const& left, AVFrame const& right) {
    if (playfile_ffmpeg::shapeOf(left) != playfile_ffmpeg::shapeOf(right)) {
        return 0.0;
    }
    AVPixFmtDescriptor const& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(left.format));
    double noise = 0.0;
    for (int component = 0; component < format.nb_components; ++component) {
        noise = std::max(noise, noiseOf(left, right, component));
    }
    double const peak = (1 << format.comp[0].depth) - 1;
    return noise == 0.0 ? isTheSame : 10.0 * std::log10(peak * peak / noise);
}

}  // namespace test
