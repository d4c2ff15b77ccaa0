#pragma once

#include "files/PlayFile.h"
#include "header/SavHeader.h"
#include "toolkit/image/ShotVideoMetadata.h"

/// Headers of material that is about to be written.
namespace PlayPriv {

/// Of a sound file, which holds one channel.
///
/// @param sampleRate      samples a second
/// @param bytesPerSample  of the channel
void make_audio_header(Ox::Ptr<PlayFile> file, SAV_HEADER* header, double sampleRate, int bytesPerSample);

/// Of a file of pictures.
///
/// Deliberate  Every rate but 25 counts as "NTSC".
void make_vision_header(Ox::Ptr<PlayFile> file, ShotVideoMetadata const& metadata, SAV_HEADER* header);

}  // namespace PlayPriv
