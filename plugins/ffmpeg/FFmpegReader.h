#pragma once

#include <atomic>
#include <memory>

#include "files/FileReadInstance.h"
#include "plugins/ffmpeg/FrameFetcher.h"
#include "plugins/ffmpeg/FrameRateMap.h"
#include "plugins/ffmpeg/PictureConverter.h"
#include "plugins/ffmpeg/SoundServer.h"

namespace playfile_ffmpeg {

/// The video of one file, read through the FFmpeg libraries; and its sound, if it is opened for both.
///
/// A request for the file's own size and format gets the decoder's memory, uncopied; any other is
/// converted. A member of the request that isn't stated is the file's own; if only one of width and
/// height is stated, the other keeps the picture's proportions. The surface says what was delivered.
///
/// Frames are numbered as they are stored; in a file of varying rate, those of a time line of a constant one
/// (`FrameRateMap`).
///
/// Threads  `readVideo`, `readAudio`: the thread of their queue. The decode options: any thread, they
///          count for the reads after.
/// Errors   A frame that can't be decoded, or not be converted as wanted, fails; nothing is thrown.
class FFmpegReader : public FileReadInstance {
public:
    /// Empty with the reason in `error`.
    static Ox::Ptr<FFmpegReader> open(LightweightString<wchar_t> const& name, DecodeFormat const& format,
                                      OpenType type, std::string& error);

    using FileReadInstance::readVideo;
    unsigned int readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>& request) override;

    void readAudio(Ox::Ptr<AudioReadRequest>& request) override;

    [[nodiscard]] LightweightString<char> getDescription() const override;

    /// One option: `colourMatrix`, which a file that doesn't state its matrix is taken to have: `auto`,
    /// `bt601`, `bt709` or `bt2020`. Another value is logged and counts as `auto`.
    [[nodiscard]] LightweightVector<Ox::Ptr<GenericParam::iParam>> getDecodeOptions(
        Ox::Ptr<FileReadInstance> self) override;
    [[nodiscard]] configb getDecodeOptionValues() override;
    void setDecodeOptionValues(configb const& values) override;

    FFmpegReader(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type,
                 std::unique_ptr<FrameFetcher> fetcher, std::unique_ptr<SoundFile> sound);

private:
    [[nodiscard]] PicturePtr pictureFor(DecodeFormat const& wanted, std::uint32_t frame);

    /// The number in the file of the frame that is meant.
    [[nodiscard]] std::uint32_t storedFrame(std::uint32_t frame) const;

    std::unique_ptr<FrameFetcher> const fetcher_;
    /// Empty where the numbers of frames are those of the stored ones.
    std::unique_ptr<FrameRateMap> const frameRateMap_;
    /// Empty in a file that is opened for its video alone.
    std::unique_ptr<SoundServer> sound_;
    /// The queue's thread only.
    PictureConverter converter_;
    std::atomic<AVColorSpace> assumedMatrix_{AVCOL_SPC_UNSPECIFIED};
};

}  // namespace playfile_ffmpeg
