#include "plugins/synth/SynthReader.h"
#include "toolkit/plugins/Plugin.h"

namespace {

/// It knows one kind of file, and well.
constexpr int readerPriority = 50;

}  // namespace

extern "C" int playfile_registerPlugin(std::uint32_t interfaceVersion, iPluginRegistrar& registrar) noexcept {
    if (interfaceVersion != pluginInterfaceVersion) {
        return 0;
    }
    try {
        registrar.addFileReader(Ox::makePtr<SynthReader>(), readerPriority);
        return 1;
    } catch (...) {
        return 0;
    }
}
