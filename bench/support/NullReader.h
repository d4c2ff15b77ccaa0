#pragma once

#include <cstdint>

#include "files/FileReadInstance.h"
#include "toolkit/plugins/FileReaderInfo.h"

namespace bench {

/// A reader that does nothing: every frame is the same small picture, made when the file was opened.
///
/// What a read through it takes is what the library itself takes.
class NullReader : public FileReadInstance {
public:
    static constexpr std::uint32_t frameCount = 1000000;

    explicit NullReader(LightweightString<wchar_t> const& name);

    using FileReadInstance::readVideo;
    unsigned int readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>& request) override;
    [[nodiscard]] LightweightString<char> getDescription() const override;

private:
    Ox::Ptr<FrameBufferRep> picture_;
};

/// Opens every file that is there with a `NullReader`.
class NullReaderInfo : public Ox::FileReaderInfo {
public:
    NullReaderInfo() { readerName = LightweightString<char>("null"); }

    [[nodiscard]] Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename,
                                                     DecodeFormat const& format, OpenType type) override;
    [[nodiscard]] bool canOpen(LightweightString<wchar_t> const& filename, OpenType type) override;
    [[nodiscard]] std::uint32_t getReadableTypes(LightweightString<wchar_t> const& filename, OpenType type,
                                                 PlayFileMetadataRep* metadata,
                                                 Aud::Metadata const& stream) override;
};

}  // namespace bench
