#pragma once

#include <memory>

#include "ole/Ox/OxString.h"
#include "toolkit/services/Preferences.h"

/// Preferences in a database file: a commit for each change, so that it survives the death of the
/// process at any later instant. Several processes may have the file open and see each other's changes.
///
/// A file that isn't a sound database is set aside under another name, which the log tells, and a new
/// one is begun. A store that can't be opened or written is logged once for each change that it missed;
/// the preference is then kept in memory.
///
/// Threads  Any.
/// @param path  of the file; its folder is made if need be
[[nodiscard]] std::unique_ptr<EditorPreferences> openSqlitePreferences(
    LightweightString<wchar_t> const& path);

/// Where a user's preferences lie: `playfile/preferences.db` in the user's folder of configurations.
[[nodiscard]] LightweightString<wchar_t> defaultPreferencesPath();
