#include "toolkit/image/FrameBufferRep.h"

FrameBufferRep::FrameBufferRep(Ox::Image::Surface const& surface, std::uint32_t frame)
    : surfaces_{surface}, startFrame_(frame) {}

bool FrameBufferRep::getSurface(std::uint16_t index, Ox::Image::Surface& surface) const {
    if (index >= surfaces_.size()) {
        return false;
    }
    surface = surfaces_[index];
    return true;
}

std::uint32_t FrameBufferRep::getNumFrames() const {
    return static_cast<std::uint32_t>(surfaces_.size());
}
