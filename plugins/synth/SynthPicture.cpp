#include "plugins/synth/SynthPicture.h"

#include <cstring>
#include <memory>

#include "ole/Ox/OxMemHolder.h"
#include "plugins/synth/SynthCode.h"

namespace {

/// The memory of one picture.
class PictureMemory : public iMemHolder {
public:
    explicit PictureMemory(std::uint32_t byteCount)
        : bytes_(std::make_unique<std::uint8_t[]>(byteCount)), size_(byteCount) {}
    [[nodiscard]] void* getBuffer() const override { return bytes_.get(); }
    [[nodiscard]] std::uint32_t getSize() const override { return size_; }
    [[nodiscard]] std::uint32_t getUsed() const override { return size_; }
    std::uint32_t setUsed(std::uint32_t) override { return size_; }

private:
    std::unique_ptr<std::uint8_t[]> bytes_;
    std::uint32_t size_;
};

std::uint32_t byteCountOf(Ox::Image::FormatDescription const& format, std::uint32_t width,
                          std::uint32_t height) {
    std::uint32_t byteCount = 0;
    for (unsigned plane = 0; plane < format.planeCount; ++plane) {
        byteCount += planeRowBytes(format, plane, width) * planeRows(format, plane, height);
    }
    return byteCount;
}

/// A pattern of diagonal stripes; `shift` tells colours apart.
std::uint8_t patternAt(std::uint32_t frame, std::uint32_t column, std::uint32_t row, unsigned shift) {
    return static_cast<std::uint8_t>(((column + row + frame * 4) >> shift) & 0xFFU);
}

/// Writes one row of the first plane, `componentCount` bytes a pixel.
void paintRow(std::uint8_t* target, std::uint32_t frame, std::uint32_t row, std::uint32_t width,
              std::uint32_t height, unsigned componentCount) {
    bool const isCode = row < SynthCode::rowsOf(height);
    for (std::uint32_t column = 0; column < width; ++column) {
        std::uint8_t const code =
            SynthCode::isLight(frame, column, width) ? SynthCode::light : SynthCode::dark;
        for (unsigned component = 0; component < componentCount; ++component) {
            *target++ = isCode ? code : patternAt(frame, column, row, component);
        }
    }
}

/// Writes a plane of colour differences, which are neutral beside the number.
void paintChroma(Ox::Image::Plane const& plane, std::uint32_t frame, std::uint32_t rowBytes,
                 std::uint32_t rows, std::uint32_t height) {
    constexpr int neutral = 128;
    std::uint32_t const codeRows = SynthCode::rowsOf(height) / 2 + 1;
    for (std::uint32_t row = 0; row < rows; ++row) {
        int const value = row < codeRows ? neutral : patternAt(frame, row, 0, 1);
        std::memset(plane.data + plane.stride * row, value, rowBytes);
    }
}

}  // namespace

Ox::Image::Surface makeSynthPicture(std::uint32_t frame, std::uint32_t width, std::uint32_t height,
                                    Ox::Image::Format format) {
    Ox::Image::FormatDescription const& description = *Ox::Image::describeFormat(format);
    Ox::Image::Surface picture(width, height, format, description.bitsPerComponent, description.bitsPerPixel,
                               Ox::Image::layoutTopDown, Ox::Image::showForeignMemory, 0);
    picture.setDataPtr(Ox::makePtr<PictureMemory>(byteCountOf(description, width, height)));
    Ox::Image::Plane const first = picture.getPlane(0);
    for (std::uint32_t row = 0; row < height; ++row) {
        paintRow(first.data + first.stride * row, frame, row, width, height, description.sampleBits[0] / 8U);
    }
    for (unsigned plane = 1; plane < description.planeCount; ++plane) {
        paintChroma(picture.getPlane(plane), frame, planeRowBytes(description, plane, width),
                    planeRows(description, plane, height), height);
    }
    return picture;
}
