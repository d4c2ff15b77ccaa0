#include "tests/support/BuiltPlugin.h"

#include <filesystem>

#include "tests/support/TemporaryFolder.h"
#include "toolkit/plugins/Plugin.h"

bool test::loadBuiltPlugin(std::string const& name) {
    TemporaryFolder const folder;
    std::string const file = name + ".so";
    std::filesystem::create_symlink(std::filesystem::path(PLAYFILE_BUILD_PLUGIN_DIR) / file,
                                    folder.file(file));
    auto const outcomes = loadPlugins(fromUTF8(folder.path().c_str()));
    return outcomes.size() == 1 && outcomes.front().isLoaded;
}
