/// Offers no reader; it makes and grows vectors that a test frees, to see whose heap they are on.
#include <cstddef>
#include <vector>

#include "toolkit/plugins/Plugin.h"

extern "C" {

int playfile_registerPlugin(std::uint32_t interfaceVersion, iPluginRegistrar&) {
    return interfaceVersion == pluginInterfaceVersion ? 1 : 0;
}

std::vector<int>* makeVector() {
    return new std::vector<int>(10);
}

void growVector(std::vector<int>& numbers, std::size_t size) {
    while (numbers.size() < size) {
        numbers.push_back(0);
    }
}
}
