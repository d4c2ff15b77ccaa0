#pragma once

#include <vector>

#include "ole/Ox/OxString.h"

/// The user's preferences: named booleans that outlive the process.
///
/// A change is in the store before the call returns, so that it survives the death of the process at
/// any later instant. It need not survive a power cut.
///
/// Threads  Any; several processes may have the same store open. Locks are taken innermost.
/// Errors   The store is trusted: what can't be written is logged and kept in memory.
class EditorPreferences {
public:
    virtual ~EditorPreferences() = default;
    virtual void setPreference(LightweightString<char> const& key, bool value) = 0;
    virtual void removePreference(LightweightString<char> const& key) = 0;
    [[nodiscard]] virtual bool getPreference(LightweightString<char> const& key, bool defaultValue) = 0;
    /// Every key that begins with `prefix`, in byte order.
    [[nodiscard]] virtual std::vector<LightweightString<char>> getPreferenceKeys(
        LightweightString<char> const& prefix) = 0;
};

/// The preferences in force: in memory only, unless a host has installed others.
[[nodiscard]] EditorPreferences* prefs() noexcept;

/// Puts `preferences` in force, null for those in memory, and gives back the ones before,
/// null for those in memory. Not owned.
EditorPreferences* installPreferences(EditorPreferences* preferences) noexcept;
