#pragma once

#include "toolkit/plugins/FileWriterInfo.h"

namespace playfile_wave {

/// Writes WAVE files: the format "wav", and "bwf" with a broadcast extension (`makeBroadcastChunk` tells its
/// options).
///
/// Threads  Any.
/// Errors   Nothing is thrown.
class WaveWriterInfo : public Ox::FileWriterInfo {
public:
    [[nodiscard]] std::vector<LightweightString<wchar_t>> getExtensions(
        LightweightString<char> const& format) const noexcept override;
    /// Pictures are left to others.
    [[nodiscard]] bool canWrite(Ox::FileWriterParams const& params) const noexcept override;
    [[nodiscard]] OxResult openFile(LightweightString<wchar_t> const& filename,
                                    Ox::FileWriterParams const& params,
                                    Ox::Ptr<FileWriteInstance>& file) noexcept override;
};

}  // namespace playfile_wave
