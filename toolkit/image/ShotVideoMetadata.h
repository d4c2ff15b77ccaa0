#pragma once

#include "toolkit/image/VideoDescription.h"

/// What a shot's pictures are: their format and their rate.
class ShotVideoMetadata {
public:
    [[nodiscard]] Ox::Image::FormatUID getVideoFormatUID() const { return videoFormatUID_; }
    void setVideoFormatUID(Ox::Image::FormatUID uid) { videoFormatUID_ = uid; }
    [[nodiscard]] Ox::FrameRate getFrameRate() const { return frameRate_; }
    void setFrameRate(Ox::FrameRate rate) { frameRate_ = rate; }

private:
    Ox::Image::FormatUID videoFormatUID_ = 0;
    Ox::FrameRate frameRate_;
};
