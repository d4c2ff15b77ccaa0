#pragma once

#include <vector>

#include "ole/os/Errors.h"
#include "toolkit/catalogue/MediaFileInfo.h"

/// Deletes what lies at the files' own places, and nothing that a link points to; what is gone already is no
/// failure. For those who keep a catalogue.
///
/// @return 1, or what kept the last one from being deleted
[[nodiscard]] OxResult deleteOwnFiles(std::vector<MediaFileInfo> const& files);
