#include "plugins/wave/WaveReaderInfo.h"
#include "plugins/wave/WaveWriterInfo.h"
#include "toolkit/plugins/Plugin.h"

namespace {

/// It knows few formats, and well.
constexpr int readerPriority = 50;
constexpr int writerPriority = 50;

}  // namespace

extern "C" int playfile_registerPlugin(std::uint32_t interfaceVersion, iPluginRegistrar& registrar) noexcept {
    if (interfaceVersion != pluginInterfaceVersion) {
        return 0;
    }
    try {
        registrar.addFileReader(Ox::makePtr<playfile_wave::WaveReaderInfo>(), readerPriority);
        registrar.addFileWriter(Ox::makePtr<playfile_wave::WaveWriterInfo>(), writerPriority);
        return 1;
    } catch (...) {
        return 0;
    }
}
