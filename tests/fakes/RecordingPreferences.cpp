#include "tests/fakes/RecordingPreferences.h"

void RecordingPreferences::setPreference(LightweightString<char> const& key, bool value) {
    calls_->add("prefs.set " + key.str() + (value ? " true" : " false"));
    std::lock_guard const scope(lock_);
    values_[key.str()] = value;
}

void RecordingPreferences::removePreference(LightweightString<char> const& key) {
    calls_->add("prefs.remove " + key.str());
    std::lock_guard const scope(lock_);
    values_.erase(key.str());
}

bool RecordingPreferences::getPreference(LightweightString<char> const& key, bool defaultValue) {
    calls_->add("prefs.get " + key.str() + (defaultValue ? " true" : " false"));
    std::lock_guard const scope(lock_);
    auto const found = values_.find(key.str());
    return found == values_.end() ? defaultValue : found->second;
}

std::vector<LightweightString<char>> RecordingPreferences::getPreferenceKeys(
    LightweightString<char> const& prefix) {
    std::lock_guard const scope(lock_);
    std::vector<LightweightString<char>> keys;
    for (auto const& [key, value] : values_) {
        if (key.starts_with(prefix.view())) {
            keys.emplace_back(key.c_str());
        }
    }
    return keys;
}

std::map<std::string, bool> RecordingPreferences::all() const {
    std::lock_guard const scope(lock_);
    return values_;
}
