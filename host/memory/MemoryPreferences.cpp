#include "host/memory/MemoryPreferences.h"

#include <atomic>

#include "ole/os/Immortal.h"

namespace {

constinit std::atomic<EditorPreferences*> installedPreferences{nullptr};

}  // namespace

void MemoryPreferences::setPreference(LightweightString<char> const& key, bool value) {
    std::lock_guard const scope(lock_);
    values_[key] = value;
}

void MemoryPreferences::removePreference(LightweightString<char> const& key) {
    std::lock_guard const scope(lock_);
    values_.erase(key);
}

bool MemoryPreferences::getPreference(LightweightString<char> const& key, bool defaultValue) {
    std::lock_guard const scope(lock_);
    auto const found = values_.find(key);
    return found == values_.end() ? defaultValue : found->second;
}

std::vector<LightweightString<char>> MemoryPreferences::getPreferenceKeys(
    LightweightString<char> const& prefix) {
    std::lock_guard const scope(lock_);
    std::vector<LightweightString<char>> keys;
    for (auto entry = values_.lower_bound(prefix);
         entry != values_.end() && entry->first.view().starts_with(prefix.view()); ++entry) {
        keys.push_back(entry->first);
    }
    return keys;
}

EditorPreferences* prefs() noexcept {
    EditorPreferences* const installed = installedPreferences.load(std::memory_order_acquire);
    return installed ? installed : &immortal<MemoryPreferences>();
}

EditorPreferences* installPreferences(EditorPreferences* preferences) noexcept {
    return installedPreferences.exchange(preferences);
}
