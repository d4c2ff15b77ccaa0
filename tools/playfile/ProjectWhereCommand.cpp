#include "tools/playfile/ProjectWhereCommand.h"

#include "material/MaterialManager.h"
#include "material/MediaLocationUtils.h"
#include "ole/os/OS.h"
#include "tools/playfile/ClipFiles.h"
#include "tools/playfile/ClipSearch.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/MediaPresence.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TextTable.h"

namespace cli {
namespace {

using Name = LightweightString<wchar_t>;

Json textOrNull(Name const& text) {
    return text.empty() ? Json() : Json(narrowName(OS()->getFileManager().getDisplayFilename(text)));
}

/// How people call the store that a file lies in.
Json storeOf(MediaFileInfo const& file) {
    Name const name = file.getPhysicalFilename();
    iFileManager& files = OS()->getFileManager();
    iRemoteStore* const store = files.isRemote(name) ? files.findRemoteStore(name) : nullptr;
    return store == nullptr ? Json() : Json(narrowName(store->getDisplayName(name)));
}

Json describe(ClipFile const& each) {
    MediaFileInfo const& file = each.file;
    DriveId const drive = file.materialFilename.getDrive();
    MediaPresence const presence = lookAt(file);
    Json json;
    json["role"] = file.isProxy() ? "proxy" : "original";
    json["channels"] = Json::array();
    for (Cookie const& cookie : each.cookies) {
        json["channels"].push_back(std::string(1, cookie.type()) + std::to_string(cookie.channel()));
    }
    json["bytes"] = file.size;
    json["drive"] = drive == DriveId::none ? Json() : Json(std::string(1, drive.letter()));
    json["place"] = textOrNull(file.getLinkFileName());
    json["link"] = textOrNull(file.physicalFilename);
    json["store"] = storeOf(file);
    json["isThere"] = presence.isThere;
    json["reason"] = presence.isThere ? Json() : Json(presence.reason);
    return json;
}

/// The answers that an editor gets.
Json describeAnswers(Cookie const& clip) {
    std::set<Cookie> files;
    for (Cookie const& cookie : MaterialManager::findClipMediaFileIDs(clip)) {
        files.insert(cookie);
    }
    Json json;
    json["isOffline"] = MediaLocationUtils::getClipLocationInfo(clip).allMediaOffline();
    json["isOriginalAvailable"] = MaterialManager::isHighResMediaAvailable(clip);
    json["isProxyAvailable"] = MaterialManager::isProxyMediaAvailable(clip);
    json["isOriginalHere"] = MaterialManager::isMediaLocal(files, mediaOriginal);
    json["isOriginalRemote"] = MaterialManager::isMediaRemote(files, mediaOriginal);
    json["isProxyRemote"] = MaterialManager::isMediaRemote(files, mediaProxy);
    json["canDownloadOriginal"] = MaterialManager::canDownload(clip, mediaOriginal);
    json["canDownloadProxy"] = MaterialManager::canDownload(clip, mediaProxy);
    return json;
}

std::string joined(Json const& texts) {
    std::string all;
    for (Json const& text : texts) {
        all += (all.empty() ? "" : " ") + text.get<std::string>();
    }
    return all;
}

std::string placeOf(Json const& file) {
    for (char const* const name : {"store", "link", "place"}) {
        if (!file[name].is_null()) {
            return file[name].get<std::string>();
        }
    }
    return {};
}

void writePlain(Json report) {
    TextTable table({"FILE", "CHANNELS", "SIZE", "STATE", "WHERE"});
    for (Json const& file : report["files"]) {
        bool const isThere = file["isThere"].get<bool>();
        table.add({file["role"].get<std::string>(), joined(file["channels"]),
                   sizeText(file["bytes"].get<std::uint64_t>()),
                   isThere ? "there" : "offline: " + file["reason"].get<std::string>(), placeOf(file)});
    }
    report.erase("files");
    writeLine(toPlainText(report));
    writeLine(table.text());
}

}  // namespace

void ProjectWhereCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("where", "Tells where the files of a clip are, and why if they aren't");
    command_->add_option("FILE", file_, "The project's file")->required();
    command_->add_option("CLIP", clip_, "The clip's name, or the first digits of its id")->required();
    command_->add_flag("--json", isJson_, "Write JSON");
    command_->footer(
        "Examples:\n  playfile project where film.project take1.mov\n"
        "  playfile project where film.project 3fa8 --json");
}

int ProjectWhereCommand::run(SessionOptions const& options) {
    OpenedProject opened(options, file_);
    Cookie const clip = findClip(opened.project(), clip_);
    auto const record = opened.project().edits().find(clip);
    Json report;
    report["id"] = clip.asString(true).str();
    report["name"] = record ? narrowName(record->name) : std::string();
    report.update(describeAnswers(clip));
    report["files"] = Json::array();
    for (ClipFile const& file : filesOfClip(clip, false)) {
        report["files"].push_back(describe(file));
    }
    if (isJson_) {
        writeLine(toJsonText(report));
    } else {
        writePlain(report);
    }
    return exitSuccess;
}

}  // namespace cli
