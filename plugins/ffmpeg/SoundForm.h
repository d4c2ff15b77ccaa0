#pragma once

#include <cstdint>
#include <string>

#include "plugins/ffmpeg/AvPointers.h"
#include "toolkit/sound/SampleFormat.h"

namespace playfile_ffmpeg {

/// What a stream of sound gives when it is read.
struct SoundForm {
    std::string codec;
    Aud::eSampleFormat form = Aud::sampleUnknown;
    int channels = 0;
    int sampleRate = 0;
    int bitsPerSample = 0;
    /// Samples that are handed over at once, if they don't lie in the file one by one.
    uint32_t frameSamples = 0;
    bool isCompressed = false;

    bool isReadable() const { return form != Aud::sampleUnknown && channels > 0; }
    uint32_t bytesPerSample() const { return Aud::bytesPerSampleOf(form); }
};

/// True for samples that are stored as they are, or each by itself.
bool isPcm(AVCodecID codec);

/// The form in which a decoder's samples are delivered; those of 24 bits that were stored as they are come
/// as 24 bits again.
Aud::eSampleFormat formOf(AVSampleFormat decoded, AVCodecID codec, int rawBits);

/// Samples of one channel.
void fillWithSilence(Aud::eSampleFormat form, uint32_t count, uint8_t* to);

}  // namespace playfile_ffmpeg
