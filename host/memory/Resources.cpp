/// What plug-ins offer beside readers, writers and decoders.
#include <algorithm>
#include <mutex>
#include <utility>

#include "ole/os/Immortal.h"
#include "toolkit/plugins/FileXferManager.h"

namespace {

struct Resources {
    std::mutex lock;
    std::vector<std::pair<OxResourceType, OxResourceTypeBase*>> entries;
};

}  // namespace

OxDeviceDriverManager& OxDeviceDriverManager::instance() {
    return immortal<OxDeviceDriverManager>();
}

std::vector<OxResourceTypeBase*> OxDeviceDriverManager::getResources(OxResourceType type) const {
    auto& resources = immortal<Resources>();
    std::lock_guard const scope(resources.lock);
    std::vector<OxResourceTypeBase*> found;
    for (auto const& [ofType, resource] : resources.entries) {
        if (ofType == type) {
            found.push_back(resource);
        }
    }
    return found;
}

void OxDeviceDriverManager::add(OxResourceType type, OxResourceTypeBase* resource) {
    auto& resources = immortal<Resources>();
    std::lock_guard const scope(resources.lock);
    resources.entries.emplace_back(type, resource);
}

void OxDeviceDriverManager::remove(OxResourceTypeBase* resource) {
    auto& resources = immortal<Resources>();
    std::lock_guard const scope(resources.lock);
    std::erase_if(resources.entries, [resource](auto const& entry) { return entry.second == resource; });
}
