#include "plugins/ffmpeg/SurfacePicture.h"

#include <new>

#include "plugins/ffmpeg/PictureSurface.h"
#include "plugins/ffmpeg/PixelFormats.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

namespace playfile_ffmpeg {
namespace {

/// Rows of a plane.
int rowsOf(AVFrame const& picture, int plane) {
    AVPixFmtDescriptor const& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
    bool const isChroma = plane == 1 || plane == 2;
    return isChroma ? AV_CEIL_RSHIFT(picture.height, format.log2_chroma_h) : picture.height;
}

/// False if the surface lacks a plane.
bool copyPlanes(Ox::Image::Surface const& surface, AVFrame& picture) {
    auto const pixelFormat = static_cast<AVPixelFormat>(picture.format);
    bool const isBottomUp = surface.getLayout() == Ox::Image::layoutBottomUp;
    for (int plane = 0; plane < av_pix_fmt_count_planes(pixelFormat); ++plane) {
        Ox::Image::Plane from = surface.getPlane(static_cast<unsigned>(plane));
        int const byteCount = av_image_get_linesize(pixelFormat, picture.width, plane);
        int const rows = rowsOf(picture, plane);
        if (from.data == nullptr || byteCount < 0) {
            return false;
        }
        if (isBottomUp) {
            from = {from.data + from.stride * (rows - 1), -from.stride};
        }
        av_image_copy_plane(picture.data[plane], picture.linesize[plane], from.data,
                            static_cast<int>(from.stride), byteCount, rows);
    }
    return true;
}

void describe(Ox::Image::Surface const& surface, AVFrame& picture) {
    Ox::Image::VideoData const video = surface.getVideoData();
    picture.color_primaries = static_cast<AVColorPrimaries>(video.colour.primaries);
    picture.color_trc = static_cast<AVColorTransferCharacteristic>(video.colour.transfer);
    picture.colorspace = static_cast<AVColorSpace>(video.colour.matrix);
    if (video.colour.isRangeStated) {
        picture.color_range = video.colour.isFullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    }
    picture.chroma_location = static_cast<AVChromaLocation>(video.colour.chromaLocation);
    picture.sample_aspect_ratio = {static_cast<int>(video.pixelAspectNumerator),
                                   static_cast<int>(video.pixelAspectDenominator)};
    Ox::Image::eFieldOrder const order = surface.getSampleData().fieldOrder;
    picture.top_field_first = order == Ox::Image::eFieldOrder::topFirst;
    picture.interlaced_frame = picture.top_field_first != 0 || order == Ox::Image::eFieldOrder::bottomFirst;
}

PicturePtr copyOf(Ox::Image::Surface const& surface) {
    AvPtr<AVFrame> picture = makeFrame();
    picture->width = static_cast<int>(surface.getWidth());
    picture->height = static_cast<int>(surface.getHeight());
    picture->format = pixelFormatOf(surface.getDataFormat());
    if (picture->format == AV_PIX_FMT_NONE || av_frame_get_buffer(picture.get(), 0) < 0 ||
        !copyPlanes(surface, *picture)) {
        return nullptr;
    }
    describe(surface, *picture);
    return PicturePtr(picture.release(), AvDeleter());
}

}  // namespace

PicturePtr pictureFrom(Ox::Image::Surface const& surface) {
    if (!surface.valid()) {
        return nullptr;
    }
    PicturePtr const shown = pictureOf(surface);
    return shown ? shown : copyOf(surface);
}

}  // namespace playfile_ffmpeg
