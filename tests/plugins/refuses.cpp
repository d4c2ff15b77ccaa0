/// Offers a decoder and then refuses to work.
#include "tests/plugins/PluginDecoder.h"

extern "C" int playfile_registerPlugin(std::uint32_t, iPluginRegistrar& registrar) {
    registrar.addVideoDecoder(Ox::makePtr<PluginDecoder>(PluginDecoder::ofRefusing, 1));
    return 0;
}
