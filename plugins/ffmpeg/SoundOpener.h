#pragma once

#include <string>
#include <vector>

#include "plugins/ffmpeg/ByteFile.h"
#include "plugins/ffmpeg/SoundContainer.h"
#include "plugins/ffmpeg/SoundSurvey.h"

namespace playfile_ffmpeg {

/// Finds out all that reading needs to know of a file's streams of sound, in their order.
///
/// Samples that fill the rest of a file, and packets that the container lists, are taken as the container
/// tells of them; for all others the packets of sound are read once. Only the first packets are decoded,
/// and those of codecs that tell their length in no other way.
///
/// May block on the file. `container` is the file's, just opened; it is left somewhere in it, or opened
/// anew. Empty if it can't be opened twice.
std::vector<SoundPlan> planSound(SoundContainer& container, ByteFile const& file, std::string const& path);

}  // namespace playfile_ffmpeg
