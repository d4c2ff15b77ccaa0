#pragma once

#include <string>

#include "plugins/ffmpeg/AvOptions.h"
#include "plugins/ffmpeg/VideoEncoder.h"
#include "toolkit/plugins/FileWriterInfo.h"

namespace playfile_ffmpeg {

/// What a new file of pictures is to be, as its parameters say. The formats are "mov-prores", "mov-dnxhr",
/// "mov-h264" and "mxf-dnxhr". Of the options these are understood:
///
/// - `profile`: "proxy", "lt", "standard", "hq" (usual), "4444" or "4444xq" of ProRes; "lb", "sq", "hq"
///   (usual), "hqx" or "444" of DNxHR; "high" (usual), "high10", "high422" or "lossless" of H.264;
/// - `crf`: quality of H.264, 0 to 51, lower is better (usual 16);
/// - `fragments`: "0" makes a movie with one table at its end, which some older programs want, but of which
///   nothing can be read if it isn't ended; else the table comes in parts, each second.
struct WriterFormat {
    std::string container;
    AvOptions containerOptions;
    std::string encoder;
    AvOptions encoderOptions;
    /// The pixel formats that the profile knows, the usual one first.
    std::vector<AVPixelFormat> pixelFormats;
    AVRational frameRate{0, 1};

    /// The extension of files of that format; empty if it isn't known.
    [[nodiscard]] static std::string extensionOf(std::string const& format);
    /// False with the reason in `error`.
    [[nodiscard]] bool read(Ox::FileWriterParams const& params, std::string& error);
    /// What the encoder is to make of pictures like this one.
    [[nodiscard]] EncoderSettings settingsFor(AVFrame const& picture) const;
};

}  // namespace playfile_ffmpeg
