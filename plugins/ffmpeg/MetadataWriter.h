#pragma once

#include "plugins/ffmpeg/FrameFetcher.h"
#include "plugins/ffmpeg/FrameRateMap.h"
#include "plugins/ffmpeg/SoundFile.h"
#include "toolkit/image/PlayFileMetadataRep.h"

namespace playfile_ffmpeg {

/// Writes what a file tells of itself into the library's description. Its `extraConfig` gets:
/// `container`, `codec`, `profile`, `pixelFormat`, `fieldOrder`, `bitRate`, `duration` (seconds), each tag
/// as `tag.NAME`, for each audio stream N from 1 on `audio.N.language`, and for each cover picture N
/// `coverArt.N.codec`, `.width`, `.height` and `.data` (base 64).
void describe(FrameFetcher const& fetcher, PlayFileMetadataRep& metadata);

/// How long the frames of a file are shown. Its `extraConfig` gets `frameDurations`, which frames last how
/// long, as `SECONDS x FRAMES` with ", " in between; and with a map `timelineFrames`, how many frames of a
/// constant rate the file fills.
///
/// @param map  empty in a file of a constant rate, or whose stored frames are counted
void describeDurations(FrameFetcher const& fetcher, FrameRateMap const* map, PlayFileMetadataRep& metadata);

/// `describe` for a file that is opened for its sound alone: what isn't about pictures.
void describe(SoundFile const& file, PlayFileMetadataRep& metadata);

/// Counts the streams and samples of sound that can be read. The streams themselves are described by who
/// reads them.
void countSound(SoundFile const& file, PlayFileMetadataRep& metadata);

/// Seconds of a frame from the first one.
double timeOfFrame(FrameFetcher const& fetcher, std::uint32_t frame);

}  // namespace playfile_ffmpeg
