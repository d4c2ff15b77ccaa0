#pragma once

#include <utility>

#include "ole/Ox/OxObject.h"
#include "toolkit/image/Surface.h"

/// A picture on its way from a recorder or renderer into a file.
class CapturePacket : public virtual iObject {
public:
    explicit CapturePacket(Ox::Image::Surface surface) : surface_(std::move(surface)) {}

    [[nodiscard]] Ox::Image::Surface const& getSurface() const { return surface_; }

private:
    Ox::Image::Surface const surface_;
};
