#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxString.h"
#include "toolkit/plugins/AudioDecoderInfo.h"
#include "toolkit/plugins/DecoderInfo.h"
#include "toolkit/plugins/FileReaderInfo.h"
#include "toolkit/plugins/FileWriterInfo.h"

/// Takes what a plug-in offers. What is added goes to the registries when the entry point has answered
/// success, and to none of them otherwise.
class iPluginRegistrar {
public:
    /// @param priority  lower numbers are tried first; 100 is usual, 50 for a reader that knows few
    ///                  formats well
    virtual void addFileReader(Ox::Ptr<Ox::FileReaderInfo> const& reader, int priority) = 0;
    virtual void addVideoDecoder(Ox::Ptr<iVideoDecoder> const& decoder) = 0;
    virtual void addCodecKeeper(Ox::Ptr<CodecPool::iKeeper> const& keeper) = 0;
    /// @param priority  lower numbers are tried first; 100 is usual
    virtual void addAudioDecoder(Ox::Ptr<Ox::AudioDecoderInfo> const& decoder, int priority) = 0;
    /// @param priority  lower numbers are asked first; 100 is usual
    virtual void addFileWriter(Ox::Ptr<Ox::FileWriterInfo> const& writer, int priority) = 0;

protected:
    ~iPluginRegistrar() = default;
};

/// Raised whenever a plug-in built against older headers would no longer work.
inline constexpr std::uint32_t pluginInterfaceVersion = 4;

/// The entry point that every plug-in exports under the name `playfile_registerPlugin`.
///
/// Called once, on the thread that loads, without locks. It answers 1 on success; it answers 0, and
/// must have no effect, if it can't work with the interface version that is passed to it.
using PluginEntryPoint = int (*)(std::uint32_t interfaceVersion, iPluginRegistrar& registrar);
inline constexpr char const* pluginEntryPointName = "playfile_registerPlugin";

/// What came of one plug-in file.
struct PluginOutcome {
    LightweightString<wchar_t> path;
    bool isLoaded = false;
    /// Why not, in the loader's own words; empty on success.
    LightweightString<char> message;
};

/// Loads every plug-in ("*.so") of the folders in `searchPath` (separated by ':'), in the order of the
/// folders and by name within one. A folder that can't be read is an outcome too. A file that doesn't
/// load is logged and passed over, the others go on; one that is loaded already isn't loaded again.
/// Plug-ins stay loaded for the life of the process.
std::vector<PluginOutcome> loadPlugins(LightweightString<wchar_t> const& searchPath);

/// Everything that `loadPlugins` has met in this process.
[[nodiscard]] std::vector<PluginOutcome> getPluginOutcomes();
