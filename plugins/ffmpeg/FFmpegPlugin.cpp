/// The reader's description and the plug-in's entry point.
#include <cstdarg>
#include <cstdio>
#include <exception>

#include "ole/os/Immortal.h"
#include "plugins/ffmpeg/FFmpegAudioDecoder.h"
#include "plugins/ffmpeg/FFmpegReader.h"
#include "plugins/ffmpeg/FFmpegSoundReader.h"
#include "plugins/ffmpeg/FFmpegWriterInfo.h"
#include "plugins/ffmpeg/SectionTransfer.h"
#include "toolkit/plugins/Plugin.h"
#include "toolkit/services/Log.h"

namespace playfile_ffmpeg {
namespace {

/// Behind the readers that know a few formats well.
constexpr int priority = 100;

bool wantsVideo(OpenType type) {
    return (type.mask() & OpenType::video) != 0;
}

class FFmpegReaderInfo : public Ox::FileReaderInfo {
public:
    FFmpegReaderInfo() { readerName = "FFmpeg"; }

    [[nodiscard]] Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename,
                                                     DecodeFormat const& format, OpenType type) override {
        std::string error;
        try {
            if (Ox::Ptr<FileReadInstance> const file = open(filename, format, type, error)) {
                return file;
            }
        } catch (std::exception const& exception) {
            error = exception.what();
        }
        LogBoth("FFmpeg: \"%ls\" %s\n", filename.c_str(), error.c_str());
        return {};
    }

    /// FFmpeg tells a file by its contents, so every file is worth a look.
    [[nodiscard]] bool canOpen(LightweightString<wchar_t> const&, OpenType type) override {
        return (type.mask() & (OpenType::video | OpenType::audio)) != 0;
    }

    [[nodiscard]] std::uint32_t getReadableTypes(LightweightString<wchar_t> const&, OpenType type,
                                                 PlayFileMetadataRep* metadata,
                                                 Aud::Metadata const&) override {
        OpenType const video = metadata->videoInfoCount != 0 ? OpenType::video : OpenType::unknown;
        OpenType const audio = metadata->audioInfoCount != 0 ? OpenType::audio : OpenType::unknown;
        return (video.mask() | audio.mask()) & type.mask();
    }

private:
    /// A file of sound alone is described also when it is asked for pictures.
    static Ox::Ptr<FileReadInstance> open(LightweightString<wchar_t> const& filename,
                                          DecodeFormat const& format, OpenType type, std::string& error) {
        if (wantsVideo(type)) {
            if (Ox::Ptr<FFmpegReader> const reader = FFmpegReader::open(filename, format, type, error)) {
                return reader;
            }
        }
        std::string soundError;
        Ox::Ptr<FFmpegSoundReader> const sound =
            FFmpegSoundReader::open(filename, format, type, wantsVideo(type) ? soundError : error);
        return sound;
    }
};

/// FFmpeg's complaints go to the log; what matters of them comes as an error anyway.
void logError(void* context, int level, char const* format, va_list arguments) {
    if (level > AV_LOG_ERROR) {
        return;
    }
    char line[1024];
    int isAtLineStart = 1;
    av_log_format_line2(context, level, format, arguments, line, sizeof(line), &isAtLineStart);
    Log("FFmpeg: %s", line);
}

}  // namespace
}  // namespace playfile_ffmpeg

extern "C" int playfile_registerPlugin(std::uint32_t interfaceVersion, iPluginRegistrar& registrar) {
    if (interfaceVersion != pluginInterfaceVersion) {
        return 0;
    }
    av_log_set_callback(&playfile_ffmpeg::logError);
    registrar.addFileReader(Ox::makePtr<playfile_ffmpeg::FFmpegReaderInfo>(), playfile_ffmpeg::priority);
    registrar.addAudioDecoder(Ox::makePtr<playfile_ffmpeg::FFmpegAudioDecoderInfo>(),
                              playfile_ffmpeg::priority);
    registrar.addFileWriter(Ox::makePtr<playfile_ffmpeg::FFmpegWriterInfo>(), playfile_ffmpeg::priority);
    OxDeviceDriverManager::instance().add(fileXferResource, &immortal<playfile_ffmpeg::SectionTransfer>());
    return 1;
}
