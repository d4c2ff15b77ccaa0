#pragma once

#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/image/Format.h"
#include "toolkit/image/VideoDescription.h"
#include "toolkit/sound/SampleFormat.h"

/// What a made file is to be like: from parts of its name, then from the lines of its text, which win.
///
/// Parts of a name are separated by '_': `100f` frames, `640x360` size, `25fps` or `30000-1001fps` rate,
/// `gray`, `rgb24` or `yuv420p` pixels; others are a title. A line of the text is `key = value`; an empty
/// line and one that begins with '#' say nothing. The keys are the members' names below.
///
/// Units   Sizes in pixels, times in milliseconds.
/// Errors  `Malformed`, whose text names the line or the setting.
struct SynthSettings {
    /// The name or the text can't be understood.
    class Malformed : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    /// @param name  with or without folders, with its extension
    /// @param text  all of the file, UTF-8
    [[nodiscard]] static SynthSettings parse(std::string_view name, std::string_view text);

    /// The channels of one audio stream.
    struct Sound {
        std::uint32_t channels = 0;
        Aud::eSampleFormat format = Aud::sampleS16;
        std::uint32_t samplesPerSecond = 0;
    };

    // Must be stated, unless the file has sound: without frames it then has no picture.
    std::uint32_t frames = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    Ox::FrameRate rate;

    Ox::Image::Format format = Ox::Image::yuv420p;
    /// Added to a position to get the file's own number of a frame.
    std::int32_t origin = 0;
    /// As the Exif tag counts, 1 to 8.
    std::uint8_t orientation = 1;
    /// Frames of a group that is read whole; 0: they aren't grouped.
    std::uint16_t group = 0;
    bool streaming = false;

    /// The audio streams: `sound = CHANNELS FORMAT RATE`, as in `sound = 2 s24 48000`, for each; the forms
    /// are s16, s24 and s32.
    std::vector<Sound> sound;
    /// Samples of each stream.
    std::uint64_t samples = 0;
    /// Samples, counted from 0, whose reads fail. The key may come more than once.
    std::set<std::uint64_t> soundfault;

    /// What each read takes at least.
    std::uint32_t delay = 0;
    /// Frames, counted from 0, whose reads fail. The key may come more than once.
    std::set<std::uint32_t> fault;
    /// The file can't be opened.
    bool failopen = false;
    /// A path: reads wait as long as there is something.
    std::string hold;
    /// The same for opening.
    std::string holdopen;

private:
    void takeName(std::string_view name);
    void takeText(std::string_view text);
    void take(std::string_view key, std::string_view value);
    void check() const;
};
