#include "tests/support/SynthPlugin.h"

#include <filesystem>

#include "tests/support/TemporaryFolder.h"
#include "toolkit/plugins/Plugin.h"

bool test::loadSynthPlugin() {
    static bool const isLoaded = [] {
        TemporaryFolder const folder;
        std::filesystem::create_symlink(std::filesystem::path(PLAYFILE_BUILD_PLUGIN_DIR) / "synth.so",
                                        folder.file("synth.so"));
        auto const outcomes = loadPlugins(fromUTF8(folder.path().c_str()));
        return outcomes.size() == 1 && outcomes.front().isLoaded;
    }();
    return isLoaded;
}
