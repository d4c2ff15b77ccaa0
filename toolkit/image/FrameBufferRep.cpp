#include "toolkit/image/FrameBufferRep.h"

#include <algorithm>

#include "toolkit/image/PlayFileMetadataRep.h"

namespace {

/// A frame of the file without its pixels.
Ox::Image::Surface emptySurface(PlayFileMetadataRep const& metadata) {
    Ox::Image::Core::Data const& image = metadata.image;
    Ox::Image::Surface surface(image.getWidth(), image.getHeight(), image.getDataFormat(),
                               image.getBitsPerComponent(), image.getBitsPerPixel(), image.getLayout(),
                               Ox::Image::showForeignMemory, metadata.bufferFormat.stride);
    surface.setOrientation(metadata.orientation);
    surface.setVideoData(metadata.videoData);
    surface.setFormatUID(metadata.formatUID);
    surface.setSampleData(metadata.sampleData);
    return surface;
}

}  // namespace

FrameBufferRep::FrameBufferRep(Ox::Image::Surface const& surface, std::uint32_t frame)
    : surfaces_{surface}, startFrame_(frame) {}

FrameBufferRep::FrameBufferRep(Ox::Ptr<PlayFileMetadataRep>& metadata, std::uint32_t startFrame,
                               std::uint32_t lastFrame, eSurfaceEvents events)
    : startFrame_(startFrame), info_(*metadata) {
    std::uint64_t const count = std::uint64_t{lastFrame - startFrame} + 1;
    for (std::uint64_t i = 0; i < std::min<std::uint64_t>(count, maxFrames); ++i) {
        surfaces_.push_back(emptySurface(*metadata));
        if (events == withEvents) {
            surfaces_.back().addEvent();
        }
    }
}

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
