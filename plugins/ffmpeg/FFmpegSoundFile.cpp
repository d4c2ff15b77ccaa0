#include "plugins/ffmpeg/FFmpegSoundFile.h"

#include "ole/Ox/OxString.h"
#include "plugins/ffmpeg/MetadataWriter.h"
#include "plugins/ffmpeg/OpenContainer.h"

namespace playfile_ffmpeg {

Ox::Ptr<FFmpegSoundFile> FFmpegSoundFile::open(LightweightString<wchar_t> const& name,
                                               DecodeFormat const& format, OpenType type,
                                               std::string& error) {
    OpenContainer container;
    if (!container.openForSound(toUTF8(name).str(), error)) {
        return {};
    }
    StreamFacts const facts = factsOf(container.format(), container.sound());
    return Ox::makePtr<FFmpegSoundFile>(name, format, type, facts);
}

FFmpegSoundFile::FFmpegSoundFile(LightweightString<wchar_t> const& name, DecodeFormat const& format,
                                 OpenType type, StreamFacts const& facts)
    : FileReadInstance(name, format, type),
      description_(LightweightString<char>(facts.codec + " in " + facts.format)) {
    describeSound(facts, *metadata);
}

}  // namespace playfile_ffmpeg
