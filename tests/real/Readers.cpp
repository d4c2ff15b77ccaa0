#include "tests/real/Readers.h"

#include "toolkit/plugins/Plugin.h"

namespace test {

void loadReaders() {
    static std::vector<PluginOutcome> const outcomes = loadPlugins(fromUTF8(PLAYFILE_BUILD_PLUGIN_DIR));
    static_cast<void>(outcomes);
}

}  // namespace test
