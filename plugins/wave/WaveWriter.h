#pragma once

#include <memory>

#include "files/FileWriteInstance.h"
#include "ole/os/FileManager.h"
#include "toolkit/plugins/FileWriterInfo.h"
#include "toolkit/plugins/WriteSpool.h"
#include "toolkit/sound/WaveLayout.h"

namespace playfile_wave {

/// A WAVE file that is being written, RIFF up to 4 GiB and RF64 above.
///
/// No more than three quarters of a second of sound wait to be written and to be stated by the header: whatever
/// becomes of the process, all but the last second can be played.
///
/// Threads  One at a time writes; the bytes go to the file on a thread of its own.
/// Errors   After a failure, which is logged with the file's name, nothing more is taken; what was written
///          before stays a whole file.
class WaveWriter : public FileWriteInstance {
public:
    /// Makes the file and the folders above it, in place of a file of that name.
    ///
    /// @return  1, and `file` set; else what went wrong, which is logged
    [[nodiscard]] static OxResult open(LightweightString<wchar_t> const& name,
                                       Ox::FileWriterParams const& params, Ox::Ptr<FileWriteInstance>& file);

    WaveWriter(LightweightString<wchar_t> const& name, Aud::WaveLayout layout, Ox::Ptr<iFile> file);
    /// Waits until all is written, and closes the file.
    ~WaveWriter() override;

    [[nodiscard]] LightweightString<char> getDescription() const override;
    std::uint32_t writeAudioSamples(Ox::Ptr<iMemHolder>& data, Callback callback) override;
    void reportWriteError(std::uint32_t status) override;
    /// It takes no pictures.
    std::uint32_t writeFrameData(Ox::Image::Surface const& surface) override;
    [[nodiscard]] std::uint64_t getWriteBacklog() override { return spool_ ? spool_->backlog() : 0; }
    std::uint32_t finish() override;

private:
    [[nodiscard]] OxResult append(iMemHolder const& buffer);
    [[nodiscard]] OxResult settle();
    [[nodiscard]] OxResult fail();
    [[nodiscard]] bool writeAt(std::uint64_t offset, void const* bytes, std::uint64_t byteCount);
    [[nodiscard]] bool stateLength();
    [[nodiscard]] bool writeHeader();

    Aud::WaveLayout const layout_;
    Ox::Ptr<iFile> file_;  ///< Empty once the file is ended.
    std::uint64_t const dataOffset_;
    std::uint64_t const bytesBetweenHeaders_;  ///< At most.
    std::uint64_t position_ = 0;               ///< Spool's thread: of the file.
    std::uint64_t dataBytes_ = 0;              ///< Spool's thread: that lie in the file.
    std::uint64_t statedBytes_ = 0;            ///< Spool's thread: that its header states.
    bool hasFailed_ = false;                   ///< Spool's thread.
    OxResult result_ = oxSuccess;              ///< Once the file is ended.
    std::unique_ptr<WriteSpool> spool_;        ///< Empty once the file is ended.
};

}  // namespace playfile_wave
