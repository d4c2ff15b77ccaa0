#include "toolkit/image/Surface.h"

#include <atomic>
#include <memory>

#include "ole/os/OS.h"

namespace Ox::Image {

/// What all handles onto one surface share.
///
/// The planes are written before `hasPixels` becomes true and not changed after that.
class Surface::Body : public InternalRefCount {
public:
    Core::Data image;
    std::uint32_t stride = 0;
    Orientation orientation = orientationUpright;
    VideoData videoData;
    FormatUID formatUID = 0;
    SampleData sampleData;

    std::array<Plane, FormatDescription::maxPlanes> planes;
    Ptr<iObject> owner;
    std::atomic<bool> hasPixels{false};
    ThreadEventPtr finished;
};

namespace {

/// Pixels of a surface's own.
class OwnPixels : public virtual iObject {
public:
    explicit OwnPixels(std::size_t byteCount) : bytes(std::make_unique<std::uint8_t[]>(byteCount)) {}
    std::unique_ptr<std::uint8_t[]> const bytes;
};

using Planes = std::array<Plane, FormatDescription::maxPlanes>;

/// Lays the planes of an image one behind the other from `data` on; the bytes that they take.
/// Formats that nobody has described are one plane.
std::size_t layOut(Core::Data const& image, std::uint32_t stride, std::uint8_t* data, Planes& planes) {
    FormatDescription const* const format = describeFormat(image.getDataFormat());
    if (!format) {
        std::uint64_t const bits = std::uint64_t(image.getWidth()) * image.getBitsPerPixel();
        std::uint64_t const row = stride != 0 ? stride : (bits + 7) / 8;
        planes[0] = {data, static_cast<std::int64_t>(row)};
        return row * image.getHeight();
    }
    std::uint32_t const firstRow = planeRowBytes(*format, 0, image.getWidth());
    std::size_t offset = 0;
    for (unsigned plane = 0; plane < format->planeCount; ++plane) {
        std::uint64_t const row = planeRowBytes(*format, plane, image.getWidth());
        std::uint64_t const apart =
            stride > firstRow && firstRow != 0 ? (row * stride + firstRow - 1) / firstRow : row;
        planes[plane] = {data ? data + offset : nullptr, static_cast<std::int64_t>(apart)};
        offset += apart * planeRows(*format, plane, image.getHeight());
    }
    return offset;
}

}  // namespace

Surface::Surface() = default;
Surface::Surface(Surface const& other) = default;
Surface::Surface(Surface&& other) noexcept = default;
Surface& Surface::operator=(Surface const& other) = default;
Surface& Surface::operator=(Surface&& other) noexcept = default;
Surface::~Surface() = default;

Surface::Surface(std::uint32_t width, std::uint32_t height, Format format, std::uint16_t bitsPerComponent,
                 std::uint16_t bitsPerPixel, eLayout layout, eAlloc allocation, std::uint32_t stride)
    : body_(makePtr<Body>()) {
    body_->image.width = width;
    body_->image.height = height;
    body_->image.dataFormat = format;
    body_->image.bitsPerComponent = bitsPerComponent;
    body_->image.bitsPerPixel = bitsPerPixel;
    body_->image.layout = layout;
    body_->image.coreDataSet = true;
    body_->stride = stride;
    Planes planes{};
    std::size_t const byteCount = layOut(body_->image, stride, nullptr, planes);
    if (allocation == allocateOwn && byteCount != 0) {
        auto const pixels = makePtr<OwnPixels>(byteCount);
        layOut(body_->image, stride, pixels->bytes.get(), planes);
        setPlanes(planes, pixels);
    }
}

bool Surface::valid() const {
    return body_ && body_->hasPixels.load(std::memory_order_acquire);
}

void Surface::set() {
    if (body_ && body_->finished) {
        body_->finished->set();
    }
}

std::uint32_t Surface::wait(std::uint32_t waitMs) const {
    bool const isTimedOut =
        body_ && body_->finished && body_->finished->wait(waitMs) == iThreadEvent::timedOut;
    return isTimedOut ? waitTimedOut : waitFinished;
}

void Surface::addEvent() {
    if (body_ && !body_->finished) {
        body_->finished = OS()->getThreads().makeEvent(true, false, 0);
    }
}

void Surface::setDataPtr(Ptr<iObject> owner) {
    if (!body_) {
        return;
    }
    Planes planes{};
    if (auto const* memory = dynamic_cast<iMemHolder const*>(owner.get())) {
        auto* const start = static_cast<std::uint8_t*>(memory->getBuffer());
        std::size_t const byteCount = layOut(body_->image, body_->stride, start, planes);
        if (memory->getSize() < byteCount) {
            planes = {};
        }
    }
    setPlanes(planes, std::move(owner));
}

void Surface::setPlanes(Planes const& planes, Ptr<iObject> owner) {
    if (body_) {
        body_->planes = planes;
        body_->owner = std::move(owner);
        body_->hasPixels.store(planes[0].data != nullptr, std::memory_order_release);
    }
}

std::uint32_t Surface::getWidth() const {
    return body_ ? body_->image.width : 0;
}

std::uint32_t Surface::getHeight() const {
    return body_ ? body_->image.height : 0;
}

Format Surface::getDataFormat() const {
    return body_ ? body_->image.dataFormat : Format::unknown;
}

std::uint16_t Surface::getBitsPerComponent() const {
    return body_ ? body_->image.bitsPerComponent : std::uint16_t(0);
}

std::uint16_t Surface::getBitsPerPixel() const {
    return body_ ? body_->image.bitsPerPixel : std::uint16_t(0);
}

eLayout Surface::getLayout() const {
    return body_ ? body_->image.layout : layoutTopDown;
}

Plane Surface::getPlane(unsigned plane) const {
    return valid() && plane < FormatDescription::maxPlanes ? body_->planes[plane] : Plane();
}

Ptr<iObject> Surface::getOwner() const {
    return body_ ? body_->owner : Ptr<iObject>();
}

void Surface::setOrientation(Orientation orientation) {
    if (body_) {
        body_->orientation = orientation;
    }
}

Orientation Surface::getOrientation() const {
    return body_ ? body_->orientation : orientationUpright;
}

void Surface::setVideoData(VideoData const& videoData) {
    if (body_) {
        body_->videoData = videoData;
    }
}

VideoData Surface::getVideoData() const {
    return body_ ? body_->videoData : VideoData();
}

void Surface::setFormatUID(FormatUID uid) {
    if (body_) {
        body_->formatUID = uid;
    }
}

FormatUID Surface::getFormatUID() const {
    return body_ ? body_->formatUID : FormatUID();
}

void Surface::setSampleData(SampleData const& sampleData) {
    if (body_) {
        body_->sampleData = sampleData;
    }
}

SampleData Surface::getSampleData() const {
    return body_ ? body_->sampleData : SampleData();
}

bool Surface::isSameAs(Surface const& other) const {
    return body_ == other.body_;
}

}  // namespace Ox::Image
