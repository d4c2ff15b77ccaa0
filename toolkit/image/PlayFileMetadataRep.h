#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"
#include "toolkit/edit/EditLabel.h"
#include "toolkit/image/ImageCore.h"
#include "toolkit/image/Surface.h"
#include "toolkit/image/VideoDecompressionInfo.h"
#include "toolkit/image/VideoDescription.h"
#include "toolkit/services/ConfigB.h"
#include "toolkit/sound/AudioMetadata.h"

/// The description of an open file, filled by its reader while it opens.
///
/// Threads  Written while the file is opened and by `FileReadInstance::updateMetadataFrom`, before
///          others see the file; read by any thread after that.
/// Units    Frames in stored order, audio samples per channel, rates in frames a second.
class PlayFileMetadataRep : public virtual iObject, public VideoDecompressionInfo {
public:
    explicit PlayFileMetadataRep(LightweightString<wchar_t> const& name) : filename(name) {}

    /// True if the file has a frame rate map, or its slowest and fastest rates are known to differ.
    [[nodiscard]] bool isVariableFrameRate() const;
    /// True if the rate is known and none of film and television.
    [[nodiscard]] bool isNonStandardFrameRate() const;
    /// Channels of all audio streams together.
    [[nodiscard]] std::uint32_t getTotalChannels() const;

    LightweightString<wchar_t> filename;
    std::vector<Aud::Metadata> audioStreams;
    std::uint32_t videoSampleCount = 0;
    std::uint64_t audioSampleCount = 0;
    /// How many video and audio streams the reader has described; 0 for none.
    std::uint32_t videoInfoCount = 0;
    std::uint32_t audioInfoCount = 0;

    EditLabel editLabel;
    /// A number of the device that made the file; 0 for not set.
    std::int64_t originCode = 0;
    Ox::Image::Orientation orientation = Ox::Image::orientationUpright;
    /// Served as frame 0 where it is valid. A reader that has a video stream leaves it invalid.
    Ox::Image::Surface posterSurface;
    /// Whatever else the reader knows: codec, container, tags.
    configb extraConfig;

    double minFrameRate = 0.0;
    double maxFrameRate = 0.0;
    /// Maps frames of the time line to stored samples; empty for a constant rate.
    Ox::Ptr<iObject> frameRateMap;
    /// The sequence of frames.
    struct {
        Ox::FrameRate frameRate;
    } videoSequence;

    /// The stored picture.
    Ox::Image::Core::Data image;
    /// The memory of a stored picture.
    struct {
        /// Bytes from row to row, 0 for the smallest.
        std::uint32_t stride = 0;
    } bufferFormat;
    Ox::Image::VideoData videoData;
    Ox::Image::FormatUID formatUID = 0;
    Ox::Image::SampleData sampleData;
};
