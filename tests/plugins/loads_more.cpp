/// Loads plug-ins while it is loaded, and asks for what came of all.
#include "tests/plugins/PluginDecoder.h"

extern "C" int playfile_registerPlugin(std::uint32_t, iPluginRegistrar& registrar) {
    auto const more = loadPlugins(L"/a-folder-that-is-not-there");
    auto const known = static_cast<int>(getPluginOutcomes().size());
    registrar.addVideoDecoder(Ox::makePtr<PluginDecoder>(PluginDecoder::ofLoadingMore, known));
    return more.size() == 1 ? 1 : 0;
}
