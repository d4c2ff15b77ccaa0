/// Repository events, drives, and disk notifications.
#include <map>
#include <mutex>
#include <string>

#include "ole/os/Immortal.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/Repository.h"
#include "toolkit/services/Listeners.h"

namespace {

struct MessageTypes {
    std::mutex lock;
    std::map<std::string, NotifyMsgType> numbers;
};

struct Drives {
    std::mutex lock;
    std::map<DriveId, LightweightString<wchar_t>> roots;
    std::map<std::string, DriveId> driveOfTask;
};

using RepositoryListeners = Listeners<iAssetRepository::Event>;
using DiskListeners = Listeners<DiskNotification>;

}  // namespace

Ox::Ptr<Ox::Guard> AssetRepositoryManager::addListener(Ox::Ptr<Listener> const& listener) {
    return immortal<RepositoryListeners>().add(listener);
}

void AssetRepositoryManager::fire(iAssetRepository::Event const& event) {
    immortal<RepositoryListeners>().callAll(event);
}

void DiskManager::setDriveRoot(DriveId const& drive, LightweightString<wchar_t> const& root) {
    auto& drives = immortal<Drives>();
    std::lock_guard const scope(drives.lock);
    LightweightString<wchar_t> const separator(L"/");
    drives.roots[drive] = !root.empty() && root.view().back() == L'/' ? root : root + separator;
}

void DiskManager::setDriveForTask(char const* task, DriveId const& drive) {
    auto& drives = immortal<Drives>();
    std::lock_guard const scope(drives.lock);
    drives.driveOfTask[task] = drive;
}

DriveId DiskManager::getDriveForTask(char const* task, bool) const {
    auto& drives = immortal<Drives>();
    std::lock_guard const scope(drives.lock);
    auto const named = drives.driveOfTask.find(task);
    if (named != drives.driveOfTask.end()) {
        return named->second;
    }
    return drives.roots.empty() ? DriveId() : drives.roots.begin()->first;
}

void DiskManager::removeDrive(DriveId const& drive) {
    auto& drives = immortal<Drives>();
    std::lock_guard const scope(drives.lock);
    drives.roots.erase(drive);
}

LightweightString<wchar_t> DiskManager::getDriveRoot(DriveId const& drive) const {
    auto& drives = immortal<Drives>();
    std::lock_guard const scope(drives.lock);
    auto const found = drives.roots.find(drive);
    return found == drives.roots.end() ? LightweightString<wchar_t>() : found->second;
}

DiskManager& DiskManager::instance() {
    return immortal<DiskManager>();
}

Ox::Ptr<Ox::Guard> DiskManager::addListener(Ox::Ptr<Listener> const& listener) {
    return immortal<DiskListeners>().add(listener);
}

void DiskManager::notify(DiskNotification const& notification) {
    immortal<DiskListeners>().callAll(notification);
}

NotifyMsgTypeDictionary& NotifyMsgTypeDictionary::instance() {
    return immortal<NotifyMsgTypeDictionary>();
}

NotifyMsgType NotifyMsgTypeDictionary::getType(char const* name) {
    auto& types = immortal<MessageTypes>();
    std::lock_guard const scope(types.lock);
    auto const next = static_cast<NotifyMsgType>(types.numbers.size() + 1);
    return types.numbers.emplace(name, next).first->second;
}
