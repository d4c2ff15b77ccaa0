#include "tools/playfile/DownloadCommand.h"

#include "material/MaterialManager.h"
#include "tools/playfile/DownloadSettings.h"
#include "tools/playfile/InputFile.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TransferRun.h"

namespace cli {
namespace {

constexpr char const* byClip = "clip";
constexpr char const* byFile = "file";
constexpr wchar_t const* usualProxyExtension = L"mov";

}  // namespace

void DownloadCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand(
        "download", "Copies remote media of a project's clips to a folder; the project stays as it is");
    what_.declare(*command_);
    command_->add_option("--to", folder_, "The folder, made if it isn't there");
    command_->add_option("--naming", naming_, "Name files after the 'clip' or as the 'file' itself (clip)")
        ->check(CLI::IsMember({byClip, byFile}));
    command_->add_option("--proxy-ext", proxyExtension_, "The extension of proxies (mov)");
    command_->add_option("--settings", settingsFile_,
                         "Read these settings from a JSON file; options go before");
    command_->add_option("--save-settings", newSettingsFile_, "Write the settings to a JSON file");
    command_->add_flag("--json", isJson_, "Tell what was done as JSON");
    command_->footer(
        "Examples:\n  playfile download film.project --all --to /media/out\n"
        "  playfile download film.project \"Shot 7\" --media proxies --to out --save-settings out.json");
}

ExternalDownloadSettings DownloadCommand::settings() const {
    ExternalDownloadSettings settings;
    settings.proxyExt = usualProxyExtension;
    if (!settingsFile_.empty()) {
        settings = readDownloadSettings(settingsFile_);
    }
    if (!folder_.empty()) {
        settings.location = wideName(InputFile(folder_).path());
    }
    if (!naming_.empty()) {
        settings.naming =
            naming_ == byClip ? ExternalDownloadSettings::namedByClip : ExternalDownloadSettings::namedByFile;
    }
    if (!proxyExtension_.empty()) {
        settings.proxyExt = wideName(proxyExtension_);
    }
    return settings;
}

int DownloadCommand::run(SessionOptions const& options) {
    ExternalDownloadSettings const chosen = settings();
    requireDownloadFolder(chosen);
    if (!newSettingsFile_.empty()) {
        writeDownloadSettings(chosen, newSettingsFile_);
    }
    OpenedProject opened(options, what_.project());
    TaskQueueTap tap;
    MaterialManager::downloadRemoteMedia(what_.clips(opened.project()), what_.media(), chosen);
    return TransferRun(isJson_).watch(tap.tasks());
}

}  // namespace cli
