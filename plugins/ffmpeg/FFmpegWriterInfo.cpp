#include "plugins/ffmpeg/FFmpegWriterInfo.h"

#include <exception>

#include "plugins/ffmpeg/FFmpegWriter.h"
#include "plugins/ffmpeg/WriterFormat.h"
#include "toolkit/services/Log.h"

namespace playfile_ffmpeg {

std::vector<LightweightString<wchar_t>> FFmpegWriterInfo::getExtensions(
    LightweightString<char> const& format) const noexcept {
    std::string const extension = WriterFormat::extensionOf(format.c_str());
    if (extension.empty()) {
        return {};
    }
    return {fromUTF8(extension.c_str())};
}

bool FFmpegWriterInfo::canWrite(Ox::FileWriterParams const& params) const noexcept {
    Ox::FrameRate const rate = params.video.getFrameRate();
    bool const hasRate = rate.numerator != 0 && rate.denominator != 0;
    return hasRate && params.audioMetadata.empty() &&
           !WriterFormat::extensionOf(params.format.c_str()).empty();
}

OxResult FFmpegWriterInfo::openFile(LightweightString<wchar_t> const& filename,
                                    Ox::FileWriterParams const& params,
                                    Ox::Ptr<FileWriteInstance>& file) noexcept {
    try {
        return FFmpegWriter::open(filename, params, file);
    } catch (std::exception const& exception) {
        LogBoth("FFmpeg: \"%ls\" can't be written: %s\n", filename.c_str(), exception.what());
        return oxFailure;
    }
}

}  // namespace playfile_ffmpeg
