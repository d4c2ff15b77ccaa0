// Starts an installed playfile, loads its plug-ins and ends it.

#include <cstdio>
#include <cstring>

#include "playfile/playfile.h"
#include "toolkit/plugins/Plugin.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: consumer VERSION PLUGIN_DIR\n");
        return 2;
    }
    if (std::strcmp(playfileDllVersionStr(), argv[1]) != 0) {
        std::fprintf(stderr, "the library says it is %s, the package says %s\n", playfileDllVersionStr(),
                     argv[1]);
        return 1;
    }
    playfile_init();
    int loaded = 0;
    for (PluginOutcome const& outcome : loadPlugins(fromUTF8(argv[2]))) {
        std::printf("%s\n", outcome.isLoaded ? "plug-in loaded" : outcome.message.c_str());
        loaded += outcome.isLoaded;
    }
    playfile_exit();
    return loaded > 0 ? 0 : 1;
}
