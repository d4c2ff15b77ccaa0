#pragma once

#include <map>
#include <mutex>

#include "toolkit/services/Preferences.h"

/// Preferences that end with the process.
class MemoryPreferences final : public EditorPreferences {
public:
    void setPreference(LightweightString<char> const& key, bool value) override;
    void removePreference(LightweightString<char> const& key) override;
    [[nodiscard]] bool getPreference(LightweightString<char> const& key, bool defaultValue) override;
    [[nodiscard]] std::vector<LightweightString<char>> getPreferenceKeys(
        LightweightString<char> const& prefix) override;

private:
    std::mutex lock_;
    std::map<LightweightString<char>, bool> values_;
};
