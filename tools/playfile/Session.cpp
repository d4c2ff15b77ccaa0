#include "tools/playfile/Session.h"

#include <filesystem>

#include "host/memory/MemoryCatalogue.h"
#include "playfile/playfile.h"
#include "toolkit/plugins/Plugin.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

char const* const pluginsFromProgram = "../lib/playfile/plugins";

/// Beside the program, wherever the tree with both was put.
std::string usualPluginPath() {
    std::error_code error;
    std::filesystem::path const program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / pluginsFromProgram).lexically_normal().string();
}

}  // namespace

Session::Session(SessionOptions const& options)
    : log_(options.isVerbose),
      preferences_(options.preferences),
      pluginPath_(options.pluginPath.empty() ? usualPluginPath() : options.pluginPath) {
    MaterialInfo::install(&headers_);
    playfile_init();
}

Session::~Session() {
    playfile_exit();
    MaterialInfo::install(nullptr);
}

void Session::loadReaders() {
    for (PluginOutcome const& outcome : loadPlugins(wideName(pluginPath_))) {
        if (!outcome.isLoaded) {
            writeProblem("warning: the plug-in " + inQuotes(narrowName(outcome.path)) +
                         " doesn't load: " + printable(outcome.message) +
                         "; repair or remove it, or choose others with --plugin-path");
        }
    }
}

void Session::addToCatalogue(Cookie const& cookie, LightweightString<wchar_t> const& filename) {
    MemoryCatalogue::instance().add(cookie, filename);
}

}  // namespace cli
