#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "files/FileWriteInstance.h"
#include "plugins/ffmpeg/Muxer.h"
#include "plugins/ffmpeg/PictureConverter.h"
#include "plugins/ffmpeg/VideoEncoder.h"
#include "plugins/ffmpeg/WriterFormat.h"
#include "toolkit/plugins/WriteSpool.h"

namespace playfile_ffmpeg {

/// A file of pictures that is being written.
///
/// The first picture says of what size, colour and shape all are. They are converted, coded and written on the
/// spool's thread, and no more wait than a bound of bytes.
///
/// Threads  One at a time writes.
/// Errors   After a failure, which is logged with the file's name, nothing more is taken. The frames before
///          stay readable in MXF files and in movies of fragments; a file that has none is deleted.
class FFmpegWriter : public FileWriteInstance {
public:
    /// Makes the file and the folders above it, in place of a file of that name.
    ///
    /// @return  1, and `file` set; else what went wrong, which is logged
    [[nodiscard]] static OxResult open(LightweightString<wchar_t> const& name,
                                       Ox::FileWriterParams const& params, Ox::Ptr<FileWriteInstance>& file);

    FFmpegWriter(LightweightString<wchar_t> const& name, WriterFormat format, std::unique_ptr<Muxer> muxer);
    ~FFmpegWriter() override;

    [[nodiscard]] LightweightString<char> getDescription() const override;
    /// It takes no sound.
    std::uint32_t writeAudioSamples(Ox::Ptr<iMemHolder>& data, Callback callback) override;
    void reportWriteError(std::uint32_t status) override;
    std::uint32_t writeFrameData(Ox::Image::Surface const& surface) override;
    [[nodiscard]] std::uint64_t getWriteBacklog() override { return spool_ ? spool_->backlog() : 0; }
    std::uint32_t finish() override;

private:
    [[nodiscard]] OxResult start(AVFrame const& picture);
    [[nodiscard]] OxResult append(AVFrame const& picture);
    [[nodiscard]] OxResult writePackets();
    [[nodiscard]] OxResult end();
    [[nodiscard]] OxResult fail(std::string const& reason);

    WriterFormat const format_;
    std::unique_ptr<Muxer> muxer_;
    std::unique_ptr<VideoEncoder> encoder_;  ///< From the first picture on, then the spool's thread's.
    PictureConverter converter_;             ///< Spool's thread.
    Packets packets_;                        ///< Spool's thread.
    int stream_ = 0;
    std::atomic<bool> hasFrames_{false};
    std::mutex problemLock_;
    std::string problem_;                ///< Under the lock: of the first failure.
    OxResult result_ = oxSuccess;        ///< Once the file is ended.
    std::unique_ptr<WriteSpool> spool_;  ///< Empty once the file is ended.
};

}  // namespace playfile_ffmpeg
