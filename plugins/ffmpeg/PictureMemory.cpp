#include "plugins/ffmpeg/PictureMemory.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>

extern "C" {
#include <libavutil/imgutils.h>
}

namespace playfile_ffmpeg {
namespace {

/// What the widest instructions want of a line's and a plane's first byte.
constexpr size_t alignment = 64;
/// Decoders read and write so far behind a plane at most.
constexpr size_t behindPlane = 128;
constexpr size_t planeCount = 4;
/// Smaller pieces cost more to get from the system than to fill with zeros.
constexpr size_t leastMapped = size_t{1} << 20;

/// How a picture's planes lie in one piece of memory.
struct Layout {
    std::array<int, planeCount> lineBytes{};
    std::array<size_t, planeCount> planeBytes{};  ///< 0 for those that the format doesn't have.
    size_t byteCount = 0;
};

size_t aligned(size_t byteCount) {
    return (byteCount + alignment - 1) / alignment * alignment;
}

/// Lines grow together: some decoders count on a plane's lines having twice the bytes of another's.
bool layOutLines(AVPixelFormat format, int width, std::array<int, planeCount>& lineBytes) {
    constexpr auto step = static_cast<int>(alignment);
    width = (width + step - 1) / step * step;
    bool isAligned = false;
    for (; !isAligned; width += step) {
        if (av_image_fill_linesizes(lineBytes.data(), format, width) < 0) {
            return false;
        }
        isAligned = std::all_of(lineBytes.begin(), lineBytes.end(),
                                [](int lineSize) { return lineSize % step == 0; });
    }
    return true;
}

bool layOut(AVCodecContext& context, AVFrame const& picture, Layout& layout) {
    auto const format = static_cast<AVPixelFormat>(picture.format);
    int width = picture.width;
    int height = picture.height;
    std::array<int, AV_NUM_DATA_POINTERS> unused{};
    avcodec_align_dimensions2(&context, &width, &height, unused.data());
    if (!layOutLines(format, width, layout.lineBytes)) {
        return false;
    }
    std::array<ptrdiff_t, planeCount> lineSizes{};
    std::copy(layout.lineBytes.begin(), layout.lineBytes.end(), lineSizes.begin());
    if (av_image_fill_plane_sizes(layout.planeBytes.data(), format, height, lineSizes.data()) < 0) {
        return false;
    }
    for (size_t const bytes : layout.planeBytes) {
        layout.byteCount += bytes > 0 ? aligned(bytes + behindPlane) : 0;
    }
    return true;
}

void unmap(void* end, uint8_t* piece) {
    munmap(piece, static_cast<size_t>(static_cast<uint8_t*>(end) - piece));
}

AVBufferRef* makePiece(size_t byteCount) {
    if (byteCount < leastMapped) {
        return av_buffer_allocz(byteCount);
    }
    void* const memory = mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        return nullptr;
    }
    auto* const piece = static_cast<uint8_t*>(memory);
    AVBufferRef* const buffer = av_buffer_create(piece, byteCount, unmap, piece + byteCount, 0);
    if (buffer == nullptr) {
        munmap(piece, byteCount);
    }
    return buffer;
}

}  // namespace

int PictureMemory::giveTo(AVCodecContext& context, AVFrame& picture, int flags) {
    Layout layout;
    if (!isFor(context) || !layOut(context, picture, layout)) {
        return avcodec_default_get_buffer2(&context, &picture, flags);
    }
    picture.buf[0] = take(layout.byteCount).release();
    if (picture.buf[0] == nullptr) {
        return AVERROR(ENOMEM);
    }
    uint8_t* plane = picture.buf[0]->data;
    for (size_t i = 0; i < planeCount; ++i) {
        bool const isThere = layout.planeBytes[i] > 0;
        picture.linesize[i] = layout.lineBytes[i];
        picture.data[i] = isThere ? plane : nullptr;
        plane += isThere ? aligned(layout.planeBytes[i] + behindPlane) : 0;
    }
    picture.extended_data = picture.data;
    return 0;
}

/// A pool of another size gives its pieces up as they come back.
AvPtr<AVBufferRef> PictureMemory::take(size_t byteCount) {
    std::lock_guard const scope(lock_);
    if (!pool_ || byteCount != byteCount_) {
        pool_.reset(av_buffer_pool_init(byteCount, makePiece));
        byteCount_ = byteCount;
    }
    return AvPtr<AVBufferRef>(pool_ ? av_buffer_pool_get(pool_.get()) : nullptr);
}

}  // namespace playfile_ffmpeg
