#pragma once

#include <utility>

#include "toolkit/catalogue/MaterialInfo.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/Edit.h"
#include "toolkit/services/Preferences.h"

namespace test {

/// Keeps something in force for the length of a scope, and what was in force before after it.
template <class Interface, Interface* (*install)(Interface*) noexcept>
class Installed {
public:
    explicit Installed(Interface* object) : before_(install(object)) {}
    ~Installed() { install(before_); }
    Installed(Installed const&) = delete;
    Installed& operator=(Installed const&) = delete;

private:
    Interface* const before_;
};

using InstalledPreferences = Installed<EditorPreferences, &installPreferences>;
using InstalledCatalogue = Installed<SystemCache, &SystemCache::install>;
using InstalledEditStore = Installed<iEditStore, &iEditStore::install>;
using InstalledStartOffsets = Installed<MaterialInfo::iStore, &MaterialInfo::install>;

}  // namespace test
