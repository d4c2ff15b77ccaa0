/// Offers a decoder and then throws an exception.
#include <stdexcept>

#include "tests/plugins/PluginDecoder.h"

extern "C" int playfile_registerPlugin(std::uint32_t, iPluginRegistrar& registrar) {
    registrar.addVideoDecoder(Ox::makePtr<PluginDecoder>(PluginDecoder::ofThrowing, 1));
    throw std::runtime_error("no device was found");
}
