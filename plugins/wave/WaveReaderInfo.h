#pragma once

#include "toolkit/plugins/FileReaderInfo.h"

namespace playfile_wave {

/// Offers the sound of WAVE files to those who ask for sound and nothing else.
///
/// Threads  Any.
/// Errors   Nothing is thrown.
class WaveReaderInfo : public Ox::FileReaderInfo {
public:
    WaveReaderInfo() { readerName = "Wave"; }

    [[nodiscard]] Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename,
                                                     DecodeFormat const& format,
                                                     OpenType type) noexcept override;
    /// Looks at the first bytes of the file.
    [[nodiscard]] bool canOpen(LightweightString<wchar_t> const& filename, OpenType type) noexcept override;
    /// Nothing of a stream in another codec than its own: such a file has been left to others.
    [[nodiscard]] std::uint32_t getReadableTypes(LightweightString<wchar_t> const& filename, OpenType type,
                                                 PlayFileMetadataRep* metadata,
                                                 Aud::Metadata const& stream) noexcept override;
};

}  // namespace playfile_wave
