#pragma once

#include "toolkit/plugins/FileWriterInfo.h"

namespace playfile_ffmpeg {

/// Writes files of pictures alone, in the formats of `WriterFormat`; sound goes into files of its own.
///
/// Threads  Any.
/// Errors   Nothing is thrown.
class FFmpegWriterInfo : public Ox::FileWriterInfo {
public:
    [[nodiscard]] std::vector<LightweightString<wchar_t>> getExtensions(
        LightweightString<char> const& format) const noexcept override;
    [[nodiscard]] bool canWrite(Ox::FileWriterParams const& params) const noexcept override;
    [[nodiscard]] OxResult openFile(LightweightString<wchar_t> const& filename,
                                    Ox::FileWriterParams const& params,
                                    Ox::Ptr<FileWriteInstance>& file) noexcept override;
};

}  // namespace playfile_ffmpeg
