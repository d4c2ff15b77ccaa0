/// Offers a decoder that answers how often the entry point was called.
#include "tests/plugins/PluginDecoder.h"

extern "C" int playfile_registerPlugin(std::uint32_t, iPluginRegistrar& registrar) {
    static int calls = 0;
    registrar.addVideoDecoder(Ox::makePtr<PluginDecoder>(PluginDecoder::ofGoodPlugin, ++calls));
    return 1;
}
