#pragma once

#include <string>

#include "toolkit/catalogue/MediaFileInfo.h"

namespace cli {

/// Whether a media file is there at this moment, and if it isn't, why.
struct MediaPresence {
    bool isThere = false;
    /// For people; empty for a file that is there.
    std::string reason;
};

/// Looks at a file. Drives are those in force; a remote store is asked for as long as a question may take.
[[nodiscard]] MediaPresence lookAt(MediaFileInfo const& file);

/// What is wrong with the drive that a file's place lies on; empty if nothing is, or it lies on none.
[[nodiscard]] std::string faultOfDrive(DriveId const& drive);

/// In what the link file at a file's place disagrees with the catalogue; empty if in nothing.
[[nodiscard]] std::string faultOfLink(MediaFileInfo const& file);

}  // namespace cli
