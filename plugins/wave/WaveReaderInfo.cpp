#include "plugins/wave/WaveReaderInfo.h"

#include <array>
#include <exception>

#include "ole/os/OS.h"
#include "plugins/wave/WaveReader.h"
#include "toolkit/services/Log.h"

namespace playfile_wave {

Ox::Ptr<FileReadInstance> WaveReaderInfo::openFile(LightweightString<wchar_t> const& filename,
                                                   DecodeFormat const& format, OpenType type) noexcept {
    if (type != OpenType::audio) {
        return {};
    }
    try {
        return WaveReader::open(filename, format, type);
    } catch (std::exception const& exception) {
        LogBoth("Wave: \"%ls\" %s\n", filename.c_str(), exception.what());
        return {};
    }
}

bool WaveReaderInfo::canOpen(LightweightString<wchar_t> const& filename, OpenType type) noexcept {
    if (type != OpenType::audio) {
        return false;
    }
    Ox::Ptr<iFile> const file =
        OS()->getFileManager().openFile(filename, iFile::readAccess, iFile::existingOnly, iFile::shared);
    std::array<std::uint8_t, WaveHeaders::formBytes> start{};
    return file && file->read(start.data(), start.size()) == start.size() && WaveHeaders::isWave(start);
}

std::uint32_t WaveReaderInfo::getReadableTypes(LightweightString<wchar_t> const& filename, OpenType type,
                                               PlayFileMetadataRep*, Aud::Metadata const& stream) noexcept {
    return isReadCodec(stream.codec) && canOpen(filename, type) ? OpenType(OpenType::audio).mask() : 0U;
}

}  // namespace playfile_wave
