// A plug-in as a stranger writes it: with the installed headers and nothing else.

#include "toolkit/plugins/Plugin.h"

extern "C" int playfile_registerPlugin(std::uint32_t interfaceVersion, iPluginRegistrar&) {
    return interfaceVersion == pluginInterfaceVersion ? 1 : 0;
}
