/// Repository events and disk notifications.
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

using RepositoryListeners = Listeners<iAssetRepository::Event>;
using DiskListeners = Listeners<DiskNotification>;

}  // namespace

Ox::Ptr<Ox::Guard> AssetRepositoryManager::addListener(Ox::Ptr<Listener> const& listener) {
    return immortal<RepositoryListeners>().add(listener);
}

void AssetRepositoryManager::fire(iAssetRepository::Event const& event) {
    immortal<RepositoryListeners>().callAll(event);
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
