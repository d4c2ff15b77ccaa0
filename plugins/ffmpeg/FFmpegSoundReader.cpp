#include "plugins/ffmpeg/FFmpegSoundReader.h"

#include <utility>

#include "ole/Ox/OxString.h"
#include "plugins/ffmpeg/MetadataWriter.h"

namespace playfile_ffmpeg {

Ox::Ptr<FFmpegSoundReader> FFmpegSoundReader::open(LightweightString<wchar_t> const& name,
                                                   DecodeFormat const& format, OpenType type,
                                                   std::string& error) {
    std::unique_ptr<SoundFile> file = SoundFile::open(toUTF8(name).str(), error);
    if (!file) {
        return {};
    }
    if (file->hasPicture() && (type.mask() & OpenType::audio) == 0) {
        error = "holds a picture that can't be read";
        return {};
    }
    return Ox::makePtr<FFmpegSoundReader>(name, format, type, std::move(file));
}

FFmpegSoundReader::FFmpegSoundReader(LightweightString<wchar_t> const& name, DecodeFormat const& format,
                                     OpenType type, std::unique_ptr<SoundFile> file)
    : FileReadInstance(name, format, type), sound_(metadata->audioStreams, std::move(file)) {
    describe(sound_.file(), *metadata);
}

LightweightString<char> FFmpegSoundReader::getDescription() const {
    StreamFacts const& facts = sound_.file().facts();
    return LightweightString<char>(facts.codec + " in " + facts.format);
}

}  // namespace playfile_ffmpeg
