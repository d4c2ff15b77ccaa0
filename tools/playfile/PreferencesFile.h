#pragma once

#include <memory>
#include <string>

#include "toolkit/services/Preferences.h"

namespace cli {

/// The preferences in force for a command, in a database file.
///
/// Ownership  In force from its construction to its destruction.
class PreferencesFile {
public:
    /// @param path  of the file, made if need be; empty for the user's own. If the user's own can't be
    ///              used a warning is written, and marks are kept for this run only.
    /// @throws CommandError  if a file that was named can't be used, or is something else
    explicit PreferencesFile(std::string const& path);
    ~PreferencesFile();
    PreferencesFile(PreferencesFile const&) = delete;
    PreferencesFile& operator=(PreferencesFile const&) = delete;

private:
    std::unique_ptr<EditorPreferences> preferences_;
    EditorPreferences* former_ = nullptr;
};

}  // namespace cli
