#pragma once

#include <string>

#include "files/FileReadInstance.h"
#include "plugins/ffmpeg/StreamFacts.h"

namespace playfile_ffmpeg {

/// A file that holds sound and no picture: it is described, and nothing of it is read.
class FFmpegSoundFile : public FileReadInstance {
public:
    /// Empty with the reason in `error`, also for a file without sound.
    static Ox::Ptr<FFmpegSoundFile> open(LightweightString<wchar_t> const& name, DecodeFormat const& format,
                                         OpenType type, std::string& error);

    FFmpegSoundFile(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type,
                    StreamFacts const& facts);

    [[nodiscard]] LightweightString<char> getDescription() const override { return description_; }

private:
    LightweightString<char> const description_;
};

}  // namespace playfile_ffmpeg
