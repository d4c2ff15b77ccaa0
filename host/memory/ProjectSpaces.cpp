#include "toolkit/catalogue/ProjectSpaces.h"

#include <atomic>

#include "ole/os/Immortal.h"

namespace {

constinit std::atomic<ProjectSpacesManager*> installedManager{nullptr};

}  // namespace

ProjectSpacesManager* ProjectSpacesManager::instance() noexcept {
    ProjectSpacesManager* const installed = installedManager.load(std::memory_order_acquire);
    return installed != nullptr ? installed : &immortal<ProjectSpacesManager>();
}

ProjectSpacesManager* ProjectSpacesManager::install(ProjectSpacesManager* manager) noexcept {
    return installedManager.exchange(manager);
}
