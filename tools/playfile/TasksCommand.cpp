#include "tools/playfile/TasksCommand.h"

#include <fstream>
#include <vector>

#include "material/MaterialManager.h"
#include "toolkit/catalogue/DiskManager.h"
#include "tools/playfile/ClipSearch.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/DownloadSettings.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TransferOptions.h"
#include "tools/playfile/TransferRun.h"

namespace cli {
namespace {

/// One entry of the list, looked at before anything is begun.
struct Transfer {
    bool isDownload = false;
    bool isRemoteOnly = false;
    CookieVec clips;
    eMediaTypes media = mediaAll;
    ExternalDownloadSettings settings;
};

[[noreturn]] void refuse(std::string const& list, std::string const& why) {
    throw CommandError("the list " + inQuotes(list) + " can't be used: " + why +
                       "; 'playfile tasks --help' shows its form");
}

Json readList(std::string const& path) {
    std::ifstream in(path);
    if (!in) {
        throw CommandError("cannot read the list " + inQuotes(path) + "; check its name and rights");
    }
    Json const list = Json::parse(in, nullptr, false);
    if (!list.is_object() || !list.contains("tasks") || !list["tasks"].is_array()) {
        refuse(path, "it must be a JSON object with an array \"tasks\"");
    }
    return list["tasks"];
}

std::string textIn(Json const& entry, char const* key, std::string const& usual) {
    auto const found = entry.find(key);
    return found != entry.end() && found->is_string() ? found->get<std::string>() : usual;
}

Transfer transferOf(Json const& entry, SqliteProject& project, std::string const& list) {
    std::string const kind = entry.is_object() ? textIn(entry, "task", "") : "";
    if (kind != "download" && kind != "localise") {
        refuse(list, "\"task\" must be \"download\" or \"localise\"");
    }
    Transfer transfer;
    transfer.isDownload = kind == "download";
    transfer.isRemoteOnly = entry.value("remoteOnly", Json(false)) == Json(true);
    transfer.media = TransferOptions::mediaOf(textIn(entry, "media", "all"));
    Json const clips = entry.value("clips", Json::array());
    for (Json const& clip : clips) {
        if (clip.is_string()) {
            transfer.clips.add(findClip(project, clip.get<std::string>()));
        }
    }
    if (transfer.clips.empty()) {
        refuse(list, "\"clips\" must be an array of names");
    }
    if (transfer.isDownload) {
        Json const settings = entry.value("settings", Json::object());
        if (!transfer.settings.read(JSON::Element::parse(settings.dump().c_str()))) {
            refuse(list, "\"settings\" must hold \"Location\" and \"ProxyExt\"");
        }
        requireDownloadFolder(transfer.settings);
    }
    return transfer;
}

void start(Transfer const& transfer) {
    if (transfer.isDownload) {
        MaterialManager::downloadRemoteMedia(transfer.clips, transfer.media, transfer.settings);
    } else if (transfer.isRemoteOnly) {
        MaterialManager::localiseRemoteMedia(transfer.clips, transfer.media,
                                             iBackgroundTask::importanceUsual);
    } else {
        MaterialManager::localiseMedia(
            transfer.clips, DiskManager::instance().getDriveForTask("import", true),
            (transfer.media & mediaOriginal) != 0, (transfer.media & mediaProxy) != 0,
            iBackgroundTask::importanceUsual, {});
    }
}

}  // namespace

void TasksCommand::declare(CLI::App& program) {
    command_ =
        program.add_subcommand("tasks", "Does the downloads and localisings of a list, one after the other");
    command_->add_option("PROJECT", project_, "The project's file")->required();
    command_->add_option("LIST", list_, "A JSON file")->required();
    command_->add_flag("--json", isJson_, "Tell what was done as JSON");
    command_->footer(
        "The list:\n"
        "  {\"tasks\": [\n"
        "    {\"task\": \"localise\", \"clips\": [\"Shot 7\"], \"media\": \"originals\", \"remoteOnly\": "
        "false},\n"
        "    {\"task\": \"download\", \"clips\": [\"Shot 8\"], \"media\": \"proxies\",\n"
        "     \"settings\": {\"Location\": \"/media/out\", \"ProxyExt\": \"mov\", \"Naming\": \"clip\"}}]}\n"
        "Nothing is begun if one of its entries can't be used.");
}

int TasksCommand::run(SessionOptions const& options) {
    OpenedProject opened(options, project_);
    std::vector<Transfer> transfers;
    for (Json const& entry : readList(list_)) {
        transfers.push_back(transferOf(entry, opened.project(), list_));
    }
    TaskQueueTap tap;
    for (Transfer const& transfer : transfers) {
        start(transfer);
    }
    return TransferRun(isJson_).watch(tap.tasks());
}

}  // namespace cli
