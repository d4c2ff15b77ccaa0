#include "plugins/synth/SynthReader.h"

#include <string>

#include "ole/os/OS.h"
#include "plugins/synth/SynthFile.h"
#include "toolkit/services/Log.h"

namespace {

/// More text than this belongs to no made file.
constexpr std::uint32_t longestText = 65536;

std::string readText(iFile& handle) {
    std::string text(longestText + 1, '\0');
    text.resize(handle.read(text.data(), longestText + 1));
    if (text.size() > longestText) {
        throw SynthSettings::Malformed("the text is longer than " + std::to_string(longestText) + " bytes");
    }
    return text;
}

Ox::Ptr<FileReadInstance> open(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                               OpenType type) {
    Ox::Ptr<iFile> const handle =
        OS()->getFileManager().openFile(filename, iFile::readAccess, iFile::existingOnly, iFile::shared);
    if (!handle) {
        throw SynthSettings::Malformed("the file can't be read");
    }
    SynthSettings const settings = SynthSettings::parse(toUTF8(filename).str(), readText(*handle));
    waitWhileThere(settings.holdopen);
    if (settings.failopen) {
        throw SynthSettings::Malformed("opening fails as its text says");
    }
    return Ox::makePtr<SynthFile>(filename, format, type, settings, handle);
}

}  // namespace

Ox::Ptr<FileReadInstance> SynthReader::openFile(LightweightString<wchar_t> const& filename,
                                                DecodeFormat const& format, OpenType type) noexcept {
    try {
        return open(filename, format, type);
    } catch (std::exception const& error) {
        LogBoth("synth: \"%ls\": %s\n", filename.c_str(), error.what());
        return {};
    }
}

bool SynthReader::canOpen(LightweightString<wchar_t> const& filename, OpenType) noexcept {
    return filename.view().ends_with(L".synth");
}

std::uint32_t SynthReader::getReadableTypes(LightweightString<wchar_t> const& filename, OpenType type,
                                            PlayFileMetadataRep* metadata, Aud::Metadata const&) noexcept {
    if (!canOpen(filename, type)) {
        return 0;
    }
    std::uint32_t const picture = metadata->videoInfoCount != 0 ? OpenType(OpenType::video).mask() : 0U;
    std::uint32_t const sound = metadata->audioInfoCount != 0 ? OpenType(OpenType::audio).mask() : 0U;
    return picture | sound;
}
