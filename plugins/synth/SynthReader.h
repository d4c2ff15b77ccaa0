#pragma once

#include "toolkit/plugins/FileReaderInfo.h"

/// Reads files named `*.synth`, whose frames and tones are made from their names and texts.
///
/// Errors  What can't be understood is logged with its line, and the file doesn't open.
class SynthReader : public Ox::FileReaderInfo {
public:
    SynthReader() { readerName = "synth"; }

    Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                                       OpenType type) noexcept override;
    bool canOpen(LightweightString<wchar_t> const& filename, OpenType type) noexcept override;
    std::uint32_t getReadableTypes(LightweightString<wchar_t> const& filename, OpenType type,
                                   PlayFileMetadataRep* metadata,
                                   Aud::Metadata const& stream) noexcept override;
};
