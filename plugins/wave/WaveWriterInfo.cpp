#include "plugins/wave/WaveWriterInfo.h"

#include <exception>

#include "plugins/wave/WaveWriter.h"
#include "toolkit/services/Log.h"

namespace playfile_wave {
namespace {

bool isOurs(LightweightString<char> const& format) {
    return format.view() == "wav" || format.view() == "bwf";
}

}  // namespace

std::vector<LightweightString<wchar_t>> WaveWriterInfo::getExtensions(
    LightweightString<char> const& format) const noexcept {
    return isOurs(format) ? std::vector<LightweightString<wchar_t>>{L"wav"}
                          : std::vector<LightweightString<wchar_t>>();
}

bool WaveWriterInfo::canWrite(Ox::FileWriterParams const& params) const noexcept {
    return isOurs(params.format) && params.video.getFrameRate().numerator == 0;
}

OxResult WaveWriterInfo::openFile(LightweightString<wchar_t> const& filename,
                                  Ox::FileWriterParams const& params,
                                  Ox::Ptr<FileWriteInstance>& file) noexcept {
    try {
        return WaveWriter::open(filename, params, file);
    } catch (std::exception const& exception) {
        LogBoth("Wave: \"%ls\" can't be written: %s\n", filename.c_str(), exception.what());
        return oxFailure;
    }
}

}  // namespace playfile_wave
