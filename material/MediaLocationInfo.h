#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/MaterialFilename.h"

/// Where the media of a clip are, and whether they are there.
///
/// Only `mediaFiles` counts the clip's files. The states have an element for each file that the catalogue
/// knows, `locations` and `filenames` for each of those that has a name, `materialFiles` for each that has a
/// place on a drive.
struct MediaLocationInfo {
    /// What `FsysDirectoryEntry::updateStatus` says of the originals, 2 if they are available.
    std::vector<std::uint32_t> videoStates;
    /// The same of the proxies.
    std::vector<std::uint32_t> audioStates;
    std::vector<MaterialFilename> materialFiles;
    /// The folder of each file, or for people the place of a remote one.
    std::vector<LightweightString<wchar_t>> locations;
    /// The name of each file without its folder; empty for a remote one.
    std::vector<LightweightString<wchar_t>> filenames;
    /// All media files of the clip in order, known or not.
    std::vector<Cookie> mediaFiles;

    /// True if the clip has media files and none of them, neither original nor proxy, is available.
    [[nodiscard]] bool allMediaOffline() const;
};
