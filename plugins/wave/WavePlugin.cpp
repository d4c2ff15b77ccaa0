#include "plugins/wave/WaveReaderInfo.h"
#include "toolkit/plugins/Plugin.h"

namespace {

/// It knows few formats, and well.
constexpr int readerPriority = 50;

}  // namespace

extern "C" int playfile_registerPlugin(std::uint32_t interfaceVersion, iPluginRegistrar& registrar) noexcept {
    if (interfaceVersion != pluginInterfaceVersion) {
        return 0;
    }
    try {
        registrar.addFileReader(Ox::makePtr<playfile_wave::WaveReaderInfo>(), readerPriority);
        return 1;
    } catch (...) {
        return 0;
    }
}
