#include "tools/playfile/DownloadSettings.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// No settings are longer.
constexpr std::size_t mostBytes = 1024 * 1024;

}  // namespace

ExternalDownloadSettings readDownloadSettings(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw CommandError("cannot read the settings " + inQuotes(path) + "; check its name and rights");
    }
    std::string text(mostBytes + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    ExternalDownloadSettings settings;
    bool const isEnough =
        text.size() <= mostBytes && settings.read(JSON::Element::parse(LightweightString<char>(text)));
    if (!isEnough) {
        throw CommandError(
            "the settings " + inQuotes(path) +
            " must be one JSON object with the texts \"Location\" and \"ProxyExt\"; write them "
            "with --save-settings");
    }
    return settings;
}

void writeDownloadSettings(ExternalDownloadSettings const& settings, std::string const& path) {
    JSON::Builder builder;
    settings.write(builder);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << builder.asString().str();
    out.close();
    if (!out) {
        throw CommandError("cannot write the settings " + inQuotes(path) +
                           "; make room on its drive or allow writing there");
    }
}

void requireDownloadFolder(ExternalDownloadSettings const& settings) {
    std::string const folder = narrowName(settings.location);
    if (folder.empty()) {
        throw CommandError("no folder is named; say with --to where the files are to go", exitUsage);
    }
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder, error)) {
        throw CommandError("cannot make the folder " + inQuotes(folder) + "; choose another one");
    }
}

}  // namespace cli
