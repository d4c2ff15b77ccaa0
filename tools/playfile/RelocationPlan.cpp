#include "tools/playfile/RelocationPlan.h"

#include <algorithm>

#include "host/sqlite/SqliteProject.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/services/Paths.h"
#include "tools/playfile/Text.h"
#include "transfer/MaterialMove.h"

namespace cli {
namespace {

constexpr std::uint32_t pageLength = 500;

DriveId driveOf(Cookie const& shot) {
    return SystemCache::instance()->getDriveForCookie(shot, shot.type() == 'V' ? videoChannel : audioChannel);
}

bool isOn(MediaFileInfo const& file, DriveId drive) {
    return file.materialFilename.getDrive() == drive;
}

}  // namespace

RelocationPlan RelocationPlan::of(CookieVec const& clips, DriveId destination) {
    RelocationPlan plan;
    for (Cookie const& shot : buildShotList(clips)) {
        plan.addShot(shot, destination);
    }
    if (Ox::Ptr<MediaDrive> const drive = DiskManager::instance().getDriveWithUniqueId(destination)) {
        plan.available = drive->getSpaceBytes();
    }
    return plan;
}

void RelocationPlan::addShot(Cookie const& shot, DriveId destination) {
    DriveId const drive = driveOf(shot);
    Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(shot);
    if (!entry) {
        files.push_back({shot.asString().str(), 0, "the catalogue doesn't know it", {}});
        return;
    }
    std::vector<MediaFileInfo> all = entry->getProxyFiles();
    all.insert(all.begin(), *entry);
    for (MediaFileInfo const& file : all) {
        LightweightString<wchar_t> const name = file.materialFilename.getOsPath();
        MaterialFilename const target(destination, file.materialFilename.getPath());
        File planned{narrowName(name), fileSize(name), {}, narrowName(target.getOsPath())};
        if (drive == destination) {
            planned.reason = "its clip is on the destination already";
        } else if (isOn(file, destination)) {
            planned.reason = "it is on the destination already";
        } else if (planned.size == 0) {
            planned.reason = "it isn't there, or empty";
        } else if (fileExists(target.getOsPath())) {
            planned.reason = "there is a file at its target already";
        } else {
            needed += planned.size;
        }
        files.push_back(planned);
    }
}

std::size_t RelocationPlan::countToCopy() const {
    return static_cast<std::size_t>(
        std::count_if(files.begin(), files.end(), [](File const& file) { return file.reason.empty(); }));
}

CookieVec clipsOnDrive(SqliteProject& project, DriveId drive) {
    CookieVec clips;
    ClipSummary last;
    std::vector<ClipSummary> page = project.listClips(last, pageLength);
    while (!page.empty()) {
        for (ClipSummary const& clip : page) {
            auto const entries = SystemCache::instance()->getClipMediaFiles(clip.cookie);
            if (std::any_of(entries.begin(), entries.end(),
                            [&](auto const& entry) { return isOn(*entry, drive); })) {
                clips.add(clip.cookie);
            }
        }
        last = page.back();
        page = project.listClips(last, pageLength);
    }
    return clips;
}

}  // namespace cli
