#pragma once

#include <memory>
#include <mutex>

#include "plugins/ffmpeg/DecodeOptions.h"
#include "plugins/ffmpeg/FrameRateMap.h"
#include "plugins/ffmpeg/PictureConverter.h"
#include "plugins/ffmpeg/ReadPattern.h"
#include "plugins/ffmpeg/SoundServer.h"
#include "plugins/ffmpeg/StreamDecoder.h"
#include "video/StreamingDecodeReader.h"

namespace playfile_ffmpeg {

/// The video of one file, read through the FFmpeg libraries; and its sound, if it is opened for both.
///
/// Long-GOP files are read streaming, in batches of the file's own size and format, all others straight. A
/// request for the file's own size and format gets the decoder's memory, uncopied; any other is converted.
/// A member of the request that isn't stated is the file's own; if only one of width and height is stated,
/// the other keeps the picture's proportions. The surface says what was delivered.
///
/// Frames are numbered as they are stored; in a file of varying rate, those of a time line of a constant one
/// (`FrameRateMap`).
///
/// Threads  `readVideo`, `readAudio`: the thread of their queue. Batches are decoded on the thread of
///          `StreamingDecodeReader`. The decode options: any thread, they count for the reads after.
/// Errors   A frame that can't be decoded fails if it is read straight or converted, and else leaves its
///          surface without pixels; nothing is thrown.
class FFmpegReader : public StreamingDecodeReader {
public:
    /// Empty with the reason in `error`.
    static Ox::Ptr<FFmpegReader> open(LightweightString<wchar_t> const& name, DecodeFormat const& format,
                                      OpenType type, std::string& error);

    unsigned int readVideoDirect(Ox::Ptr<FrameBufferRep>& buffer,
                                 Ox::Ptr<VideoReadRequest>& request) override;
    /// A frame behind the end is read straight.
    unsigned int readVideoStreaming(Ox::Ptr<FrameBufferRep>& buffer,
                                    Ox::Ptr<VideoReadRequest>& request) override;
    /// Frames that are likely to be asked for next, as memory allows; of those before `frame` only such as
    /// come along with it.
    void getDecodeRange(unsigned int frame, unsigned int& start, unsigned int& end) override;
    unsigned int decodeFrames(Ox::Ptr<FrameBufferRep>& batch, unsigned int startFrame) override;

    void readAudio(Ox::Ptr<AudioReadRequest>& request) override;

    [[nodiscard]] LightweightString<char> getDescription() const override;

    /// `colourMatrix`: which matrix a file that doesn't state its own is taken to have: `auto`, `bt601`,
    /// `bt709` or `bt2020`. `streamingStoreMiB`: memory for decoded pictures of a long-GOP file. Another
    /// value is logged and counts as the default.
    [[nodiscard]] LightweightVector<Ox::Ptr<GenericParam::iParam>> getDecodeOptions(
        Ox::Ptr<FileReadInstance> self) override;
    [[nodiscard]] configb getDecodeOptionValues() override;
    void setDecodeOptionValues(configb const& values) override;

    [[nodiscard]] StreamDecoder const& decoder() const { return *decoder_; }

    FFmpegReader(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type,
                 std::unique_ptr<FrameFetcher> fetcher, std::unique_ptr<SoundFile> sound);
    ~FFmpegReader() override;

private:
    /// Frames as they are counted: stored ones, or those of the time line.
    [[nodiscard]] std::uint32_t frameCount() const;
    /// The frame of the file that is shown at frame `frame`.
    [[nodiscard]] std::uint32_t storedFrame(std::uint32_t frame) const;
    unsigned int answer(Ox::Ptr<FrameBufferRep>& buffer, VideoReadRequest const& request, PicturePtr picture);
    unsigned int convert(Ox::Ptr<FrameBufferRep>& buffer, VideoReadRequest const& request);
    [[nodiscard]] ReadPattern plannedPattern();
    void letBatchEndBefore(std::uint32_t frame);
    void show(Ox::Image::Surface& surface, std::uint32_t stored, PicturePtr picture);
    [[nodiscard]] PictureShape ownShape() const;
    [[nodiscard]] AVColorSpace assumedMatrix();
    void logFailure(std::uint32_t frame, std::exception const& exception) const;

    std::mutex optionsLock_;
    DecodeOptions options_;  ///< Under the lock.
    std::shared_ptr<StreamDecoder> const decoder_;
    /// Empty where the numbers of frames are those of the stored ones.
    std::unique_ptr<FrameRateMap> const frameRateMap_;
    /// Empty in a file that is opened for its video alone.
    std::unique_ptr<SoundServer> sound_;
    ReadPattern pattern_;              ///< The queue's thread only.
    PictureConverter converter_;       ///< The queue's thread only.
    PictureConverter batchConverter_;  ///< The decoder's thread only.
    std::mutex planLock_;
    ReadPattern plannedFor_;  ///< How the frames of the batch are asked for. Under the lock.
};

}  // namespace playfile_ffmpeg
