/// The media drives of the process, which a keeper may have beyond it.
#include <atomic>
#include <mutex>
#include <utility>

#include "ole/os/Immortal.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/services/Paths.h"

namespace {

constexpr double bytesPerMiB = 1048576.0;

struct Drives {
    std::mutex lock;
    DriveTable table;
};

constinit std::atomic<iDriveKeeper*> installedKeeper{nullptr};

void tellDrive(DriveId const& drive) {
    if (iDriveKeeper* const keeper = installedKeeper.load(std::memory_order_acquire)) {
        keeper->driveChanged(drive);
    }
}

}  // namespace

iDriveKeeper* DiskManager::install(iDriveKeeper* keeper) noexcept {
    return installedKeeper.exchange(keeper);
}

void DiskManager::setDriveRoot(DriveId const& drive, LightweightString<wchar_t> const& root) {
    LightweightString<wchar_t> const folder =
        root.empty() ? LightweightString<wchar_t>(L"/") : joinPaths(root, LightweightString<wchar_t>());
    {
        auto& drives = immortal<Drives>();
        std::lock_guard const scope(drives.lock);
        drives.table.roots[drive] = folder;
    }
    tellDrive(drive);
}

void DiskManager::removeDrive(DriveId const& drive) {
    {
        auto& drives = immortal<Drives>();
        std::lock_guard const scope(drives.lock);
        drives.table.roots.erase(drive);
    }
    tellDrive(drive);
}

LightweightString<wchar_t> DiskManager::getDriveRoot(DriveId const& drive) const {
    auto& drives = immortal<Drives>();
    std::lock_guard const scope(drives.lock);
    auto const found = drives.table.roots.find(drive);
    return found == drives.table.roots.end() ? LightweightString<wchar_t>() : found->second;
}

void DiskManager::setDriveForTask(char const* task, DriveId const& drive) {
    {
        auto& drives = immortal<Drives>();
        std::lock_guard const scope(drives.lock);
        drives.table.driveOfTask[task] = drive;
    }
    if (iDriveKeeper* const keeper = installedKeeper.load(std::memory_order_acquire)) {
        keeper->taskChanged(task);
    }
}

DriveId DiskManager::getDriveForTask(char const* task, bool) const {
    auto& drives = immortal<Drives>();
    std::lock_guard const scope(drives.lock);
    auto const named = drives.table.driveOfTask.find(task);
    if (named != drives.table.driveOfTask.end()) {
        return named->second;
    }
    auto const& roots = drives.table.roots;
    return roots.empty() ? DriveId() : roots.begin()->first;
}

std::vector<Ox::Ptr<MediaDrive>> DiskManager::getDrives() const {
    std::vector<Ox::Ptr<MediaDrive>> found;
    for (auto const& [drive, root] : getTable().roots) {
        found.push_back(Ox::makePtr<MediaDrive>(drive, root));
    }
    return found;
}

Ox::Ptr<MediaDrive> DiskManager::getDriveWithUniqueId(DriveId const& drive) const {
    LightweightString<wchar_t> const root = getDriveRoot(drive);
    return root.empty() ? Ox::Ptr<MediaDrive>() : Ox::makePtr<MediaDrive>(drive, root);
}

double DiskManager::getSpaceForRecording(DriveId const& drive) const {
    Ox::Ptr<MediaDrive> const found = getDriveWithUniqueId(drive);
    return found ? static_cast<double>(found->getSpaceBytes()) / bytesPerMiB : 0.0;
}

bool DiskManager::isMaterialVolume(DriveId const& drive) const {
    return !getDriveRoot(drive).empty();
}

LightweightString<wchar_t> DiskManager::getMaterialVolumeName(DriveId const& drive, bool) const {
    return getDriveRoot(drive);
}

DriveTable DiskManager::getTable() const {
    auto& drives = immortal<Drives>();
    std::lock_guard const scope(drives.lock);
    return drives.table;
}

DriveTable DiskManager::exchangeTable(DriveTable const& table) {
    auto& drives = immortal<Drives>();
    std::lock_guard const scope(drives.lock);
    return std::exchange(drives.table, table);
}
