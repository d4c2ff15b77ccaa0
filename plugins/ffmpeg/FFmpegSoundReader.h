#pragma once

#include <memory>
#include <string>

#include "files/FileReadInstance.h"
#include "plugins/ffmpeg/SoundServer.h"

namespace playfile_ffmpeg {

/// The sound of one file, read through the FFmpeg libraries. What pictures the file may have isn't looked
/// at.
///
/// Threads  `readAudio`: the queue's thread.
/// Errors   A read that can't be had fails; nothing is thrown.
class FFmpegSoundReader : public FileReadInstance {
public:
    /// Empty with the reason in `error`, also for a file without sound, and for one with pictures that is
    /// to be opened for them.
    static Ox::Ptr<FFmpegSoundReader> open(LightweightString<wchar_t> const& name, DecodeFormat const& format,
                                           OpenType type, std::string& error);

    FFmpegSoundReader(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type,
                      std::unique_ptr<SoundFile> file);

    void readAudio(Ox::Ptr<AudioReadRequest>& request) override { sound_.readAudio(request); }

    [[nodiscard]] LightweightString<char> getDescription() const override;

private:
    SoundServer sound_;
};

}  // namespace playfile_ffmpeg
