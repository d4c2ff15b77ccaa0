/// Loads plug-ins from folders.
///
/// What a plug-in offers is collected first and goes to the registries only when its entry point has
/// answered success, so that one that fails half-way leaves nothing behind.
#include <dirent.h>
#include <dlfcn.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "ole/os/Immortal.h"
#include "ole/os/Locks.h"
#include "toolkit/plugins/Plugin.h"
#include "toolkit/services/Log.h"

namespace {

/// Keeps what a plug-in offers until it is known to work.
class Collector final : public iPluginRegistrar {
public:
    void addFileReader(Ox::Ptr<Ox::FileReaderInfo> const& reader, int priority) override {
        readers_.emplace_back(reader, priority);
    }
    void addVideoDecoder(Ox::Ptr<iVideoDecoder> const& decoder) override { decoders_.push_back(decoder); }
    void addCodecKeeper(Ox::Ptr<CodecPool::iKeeper> const& keeper) override { keepers_.push_back(keeper); }
    void addAudioDecoder(Ox::Ptr<Ox::AudioDecoderInfo> const& decoder, int priority) override {
        audioDecoders_.emplace_back(decoder, priority);
    }
    void addFileWriter(Ox::Ptr<Ox::FileWriterInfo> const& writer, int priority) override {
        writers_.emplace_back(writer, priority);
    }

    void commit() const {
        for (auto const& [reader, priority] : readers_) {
            if (!Ox::FileReaderInfo::add(reader, priority)) {
                LogBoth("There is no room for another file reader: %s\n",
                        reader ? reader->readerName.c_str() : "one that isn't there");
            }
        }
        for (auto const& decoder : decoders_) {
            Ox::DecoderInfo::instance().add(decoder);
        }
        for (auto const& keeper : keepers_) {
            CodecPool::addKeeper(keeper);
        }
        for (auto const& [decoder, priority] : audioDecoders_) {
            Ox::AudioDecoderInfo::add(decoder, priority);
        }
        for (auto const& [writer, priority] : writers_) {
            Ox::FileWriterInfo::add(writer, priority);
        }
    }

private:
    std::vector<std::pair<Ox::Ptr<Ox::FileReaderInfo>, int>> readers_;
    std::vector<Ox::Ptr<iVideoDecoder>> decoders_;
    std::vector<Ox::Ptr<CodecPool::iKeeper>> keepers_;
    std::vector<std::pair<Ox::Ptr<Ox::AudioDecoderInfo>, int>> audioDecoders_;
    std::vector<std::pair<Ox::Ptr<Ox::FileWriterInfo>, int>> writers_;
};

struct Loader {
    /// Held while files are loaded; only those who load take it, and an entry point may load more.
    CriticalSection loading;
    /// Files whose entry point was called, whatever it said. They stay mapped for the life of the
    /// process. Guarded by `loading`.
    std::vector<void*> called;

    CriticalSection lock{eLockRank::toolkit, "plug-in outcomes"};
    /// Guarded by `lock`.
    std::vector<PluginOutcome> outcomes;

    /// True the first time for each file.
    bool isFirstCall(void* library) {
        bool const isFirst = std::find(called.begin(), called.end(), library) == called.end();
        if (isFirst) {
            called.push_back(library);
        }
        return isFirst;
    }
};

/// What the loader complained of last.
std::string lastLoaderError() {
    char const* const words = dlerror();
    return words ? words : "the loader doesn't say why";
}

/// Calls the entry point; the words of what went wrong, empty on success.
std::string callEntryPoint(void* library) {
    auto const entry = reinterpret_cast<PluginEntryPoint>(dlsym(library, pluginEntryPointName));
    if (!entry) {
        return lastLoaderError();
    }
    try {
        Collector collector;
        if (entry(pluginInterfaceVersion, collector) != 1) {
            return "its entry point refused interface version " + std::to_string(pluginInterfaceVersion);
        }
        collector.commit();
        return {};
    } catch (std::exception const& exception) {
        return std::string("its entry point threw: ") + exception.what();
    } catch (...) {
        return "its entry point threw";
    }
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

/// The names of the plug-ins in a folder, sorted; `message` is set if it can't be read.
std::vector<std::string> pluginNames(std::string const& folder, std::string& message) {
    std::vector<std::string> names;
    std::unique_ptr<DIR, CloseFolder> const entries(opendir(folder.c_str()));
    if (!entries) {
        message = std::generic_category().message(errno);
        return names;
    }
    while (dirent const* const entry = readdir(entries.get())) {
        std::string_view const name(entry->d_name);
        if (name.size() > 3 && name.ends_with(".so")) {
            names.emplace_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

PluginOutcome outcomeOf(std::string const& path, std::string const& message) {
    if (!message.empty()) {
        LogBoth("Plug-in \"%s\" can't be used: %s\n", path.c_str(), message.c_str());
    }
    return {fromUTF8(path.c_str()), message.empty(), LightweightString<char>(message)};
}

/// Loads a file, unless that very file was loaded before, under whatever name.
void loadFile(Loader& loader, std::string const& path, std::vector<PluginOutcome>& outcomes) {
    void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        outcomes.push_back(outcomeOf(path, lastLoaderError()));
    } else if (loader.isFirstCall(library)) {
        outcomes.push_back(outcomeOf(path, callEntryPoint(library)));
    }
}

void loadFolder(Loader& loader, std::string const& folder, std::vector<PluginOutcome>& outcomes) {
    std::string message;
    for (std::string const& name : pluginNames(folder, message)) {
        loadFile(loader, folder + "/" + name, outcomes);
    }
    if (!message.empty()) {
        outcomes.push_back(outcomeOf(folder, message));
    }
}

}  // namespace

std::vector<PluginOutcome> loadPlugins(LightweightString<wchar_t> const& searchPath) {
    auto& loader = immortal<Loader>();
    ScopedLock const scope(loader.loading);
    std::vector<PluginOutcome> outcomes;
    LightweightString<char> const folders = toUTF8(searchPath);
    std::string_view left = folders.view();
    while (!left.empty()) {
        std::size_t const colon = std::min(left.find(':'), left.size());
        if (colon != 0) {
            loadFolder(loader, std::string(left.substr(0, colon)), outcomes);
        }
        left.remove_prefix(std::min(colon + 1, left.size()));
    }
    ScopedLock const guard(loader.lock);
    loader.outcomes.insert(loader.outcomes.end(), outcomes.begin(), outcomes.end());
    return outcomes;
}

std::vector<PluginOutcome> getPluginOutcomes() {
    auto& loader = immortal<Loader>();
    ScopedLock const scope(loader.lock);
    return loader.outcomes;
}
