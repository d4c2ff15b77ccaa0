#pragma once

#include <array>
#include <cstdint>

#include "ole/Ox/OxMemHolder.h"
#include "toolkit/image/ImageCore.h"
#include "toolkit/image/VideoDescription.h"

namespace Ox::Image {

/// Whether a surface brings memory of its own.
enum eAlloc : std::uint32_t { allocateOwn = 0, showForeignMemory = 1 };

/// One plane of pixels: its first row and the bytes from one row to the next.
struct Plane {
    std::uint8_t* data = nullptr;
    std::int64_t stride = 0;
};

/// An image: a handle onto a shared body, so that a copy that was given out before the pixels came
/// shows them as soon as they are there.
///
/// Ownership  The body holds the object that owns the pixels.
/// Threads    One thread fills a surface and calls `set`; others may ask `valid` and `wait` at any
///            time, and read the pixels once `valid` has answered true. Size and format are set before
///            the surface is handed out, the other descriptions before its planes; who waits for a
///            surface looks at them afterwards.
class Surface {
public:
    /// `wait` answers it when the surface is finished, whether or not it has pixels.
    static constexpr std::uint32_t waitFinished = 3;
    /// `wait` answers it when the limit has passed.
    static constexpr std::uint32_t waitTimedOut = 1;

    /// Without a body: never valid, always finished.
    Surface();
    Surface(Surface const& other);
    Surface(Surface&& other) noexcept;
    Surface& operator=(Surface const& other);
    Surface& operator=(Surface&& other) noexcept;
    ~Surface();

    /// @param stride  bytes from row to row of plane 0, 0 for the smallest; further planes follow in
    ///                memory, their strides in proportion
    Surface(std::uint32_t width, std::uint32_t height, Format format, std::uint16_t bitsPerComponent,
            std::uint16_t bitsPerPixel, eLayout layout, eAlloc allocation, std::uint32_t stride);

    /// True once the surface has pixels.
    [[nodiscard]] bool valid() const;
    /// Says that it is finished and releases all who wait, with pixels or without.
    void set();
    /// Waits at most `waitMs` ms (0xFFFFFFFF without limit) for `set`: `waitFinished` or
    /// `waitTimedOut`. A surface without an event is finished from the start.
    [[nodiscard]] std::uint32_t wait(std::uint32_t waitMs) const;
    /// From now on `wait` waits for `set`. Called before the surface is handed out.
    void addEvent();

    /// Shows the memory of an `iMemHolder` and holds it; nothing is copied. The planes follow from
    /// format, size and stride. Another kind of object is only held, as is memory that is too small for
    /// the image.
    void setDataPtr(Ox::Ptr<iObject> owner);
    /// Shows planes that `owner` keeps in memory.
    void setPlanes(std::array<Plane, FormatDescription::maxPlanes> const& planes, Ox::Ptr<iObject> owner);

    [[nodiscard]] std::uint32_t getWidth() const;
    [[nodiscard]] std::uint32_t getHeight() const;
    [[nodiscard]] Format getDataFormat() const;
    [[nodiscard]] std::uint16_t getBitsPerComponent() const;
    [[nodiscard]] std::uint16_t getBitsPerPixel() const;
    [[nodiscard]] eLayout getLayout() const;
    /// Empty (null data) if the surface has no such plane or no pixels.
    [[nodiscard]] Plane getPlane(unsigned plane) const;
    [[nodiscard]] Ox::Ptr<iObject> getOwner() const;

    void setOrientation(Orientation orientation);
    [[nodiscard]] Orientation getOrientation() const;
    void setVideoData(VideoData const& videoData);
    [[nodiscard]] VideoData getVideoData() const;
    void setFormatUID(FormatUID uid);
    [[nodiscard]] FormatUID getFormatUID() const;
    void setSampleData(SampleData const& sampleData);
    [[nodiscard]] SampleData getSampleData() const;

    /// True if both show the same body.
    [[nodiscard]] bool isSameAs(Surface const& other) const;

private:
    class Body;
    Ox::Ptr<Body> body_;
};

}  // namespace Ox::Image
