#pragma once

#include <string>

#include "host/sqlite/SqliteProject.h"

namespace cli {

/// Opens the file of a clip and fills in what its reader says: channels, streams, rates, and what kind of clip it is.
/// A still, and a series of them, stay images.
///
/// @param path  of the clip's first file
/// @return      false, the clip untouched, if no reader opens it
[[nodiscard]] bool probeClip(NewClip& clip, std::string const& path);

}  // namespace cli
