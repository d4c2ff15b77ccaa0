#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "tests/fakes/CallLog.h"
#include "toolkit/services/Preferences.h"

/// Preferences in memory that record every call as "prefs.set key"; in force while they live.
///
/// Threads  Any.
class RecordingPreferences : public EditorPreferences {
public:
    explicit RecordingPreferences(std::shared_ptr<CallLog> calls)
        : calls_(std::move(calls)), old_(installPreferences(this)) {}
    ~RecordingPreferences() override { installPreferences(old_); }

    void setPreference(LightweightString<char> const& key, bool value) override;
    void removePreference(LightweightString<char> const& key) override;
    [[nodiscard]] bool getPreference(LightweightString<char> const& key, bool defaultValue) override;
    [[nodiscard]] std::vector<LightweightString<char>> getPreferenceKeys(
        LightweightString<char> const& prefix) override;

    /// Every key with its value.
    [[nodiscard]] std::map<std::string, bool> all() const;

private:
    std::shared_ptr<CallLog> const calls_;
    mutable std::mutex lock_;
    std::map<std::string, bool> values_;
    EditorPreferences* const old_;
};
