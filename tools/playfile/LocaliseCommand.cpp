#include "tools/playfile/LocaliseCommand.h"

#include <set>

#include "material/MaterialManager.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/SystemCache.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TransferRun.h"

namespace cli {
namespace {

/// Where the files of the clips are now.
void tellPlaces(CookieVec const& clips) {
    std::set<std::string> places;
    for (Cookie const& clip : clips) {
        for (Ox::Ptr<FsysDirectoryEntry> const& entry : SystemCache::instance()->getClipMediaFiles(clip)) {
            places.insert(narrowName(entry->getPhysicalFilename()));
            for (MediaFileInfo const& proxy : entry->getProxyFiles()) {
                places.insert(narrowName(proxy.getPhysicalFilename()));
            }
        }
    }
    for (std::string const& place : places) {
        if (!place.empty()) {
            writeLine("  " + printable(place));
        }
    }
}

}  // namespace

void LocaliseCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand(
        "localise", "Copies linked and remote media of a project's clips to the project's own drives");
    what_.declare(*command_);
    command_->add_flag("--remote-only", isRemoteOnly_, "Leave media alone that are only linked");
    command_->add_flag("--json", isJson_, "Tell what was done as JSON");
    command_->footer("Example:\n  playfile localise film.project \"Shot 7\" --media originals");
}

int LocaliseCommand::run(SessionOptions const& options) {
    OpenedProject opened(options, what_.project());
    DriveId const drive = DiskManager::instance().getDriveForTask("import", true);
    if (!DiskManager::instance().isMaterialVolume(drive)) {
        throw CommandError(
            "the project has no drive to copy media to; add one with 'playfile project drives " +
            printable(what_.project()) + " --set M=FOLDER'");
    }
    CookieVec const clips = what_.clips(opened.project());
    TaskQueueTap tap;
    if (isRemoteOnly_) {
        MaterialManager::localiseRemoteMedia(clips, what_.media(), iBackgroundTask::importanceUsual);
    } else {
        MaterialManager::localiseMedia(clips, drive, (what_.media() & mediaOriginal) != 0,
                                       (what_.media() & mediaProxy) != 0, iBackgroundTask::importanceUsual,
                                       {});
    }
    int const result = TransferRun(isJson_).watch(tap.tasks());
    if (!isJson_) {
        tellPlaces(clips);
    }
    return result;
}

}  // namespace cli
