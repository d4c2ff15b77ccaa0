#pragma once

#include <cstdint>
#include <string>

#include "toolkit/image/VideoDescription.h"

namespace cli {

/// What a file's time is measured by.
struct TimeScale {
    /// Frames a second of time codes; 0/0 if neither the file nor the user says.
    Ox::FrameRate frameRate;
    /// The file's first frame, as frames from midnight; of a file that states its start so.
    std::uint64_t startFrame = 0;
    /// Its first sample, as samples from midnight; of a file that states its start so.
    std::uint64_t startSample = 0;
};

/// A place in a file, or a length, as a user writes it: samples ("48000"), seconds ("1.5s") or a time code
/// ("01:00:00:12"; with ";" before the frames for drop frame).
class SamplePosition {
public:
    /// @param option  the option's name, for the message
    /// @throws CommandError  for a text of another form
    [[nodiscard]] static SamplePosition parse(std::string const& text, std::string const& option);

    /// As a place in a stream: a time code counts from the file's own start.
    ///
    /// @param sampleRate  samples a second
    /// @throws CommandError  for a time code without a frame rate, or before the file's start
    [[nodiscard]] std::uint64_t asPlace(double sampleRate, TimeScale const& scale) const;
    /// As a length: a time code counts from 0.
    [[nodiscard]] std::uint64_t asLength(double sampleRate, TimeScale const& scale) const;

private:
    enum class eKind { samples, seconds, timecode };

    SamplePosition(eKind kind, std::string text) : kind_(kind), text_(std::move(text)) {}
    [[nodiscard]] std::uint64_t convert(double sampleRate, TimeScale const& scale) const;

    eKind kind_;
    std::string text_;
    std::uint64_t samples_ = 0;
    double seconds_ = 0.0;
};

/// The frames from midnight to a time code.
///
/// @throws CommandError  if the text is no time code of that rate
[[nodiscard]] std::uint64_t timecodeFrames(std::string const& text, Ox::FrameRate rate);

/// A frame rate as a user writes it: "25" or "30000/1001".
///
/// @throws CommandError  for a text of another form
[[nodiscard]] Ox::FrameRate parseFrameRate(std::string const& text);

}  // namespace cli
