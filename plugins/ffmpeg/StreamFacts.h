#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"
#include "plugins/ffmpeg/FrameIndex.h"

extern "C" {
#include <libavutil/pixfmt.h>
}

namespace playfile_ffmpeg {

/// A picture that belongs to the file as a whole, still coded.
struct CoverArt {
    std::string codec;
    int width = 0;
    int height = 0;
    std::vector<uint8_t> bytes;
};

struct AudioStreamFacts {
    std::string codec;
    std::string language;
    int channels = 0;
    int sampleRate = 0;
    int bitsPerSample = 0;    ///< 0 where the coding has no such number.
    int64_t sampleCount = 0;  ///< As the container states it; 0 if it doesn't.
};

struct ColourFacts {
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
    AVChromaLocation chromaLocation = AVCHROMA_LOC_UNSPECIFIED;
};

/// What a file tells of itself and its video stream.
///
/// Units        Rates: frames per second, exact. Times of frames: the stream's time base.
struct StreamFacts {
    std::string format;
    std::string codec;
    std::string profile;
    AVPixelFormat pixelFormat = AV_PIX_FMT_NONE;
    int width = 0;
    int height = 0;
    AVRational sampleAspect{1, 1};
    AVRational timeBase{1, 1};
    AVRational frameRate{25, 1};    ///< Of a varying one that of most frames, a usual one if that is near.
    AVRational lowestRate{25, 1};   ///< Of the longest gap between two frames.
    AVRational highestRate{25, 1};  ///< Of the shortest.
    bool hasConstantRate = true;
    int64_t endTime = AV_NOPTS_VALUE;  ///< Where the last frame ends, if the container says so.
    AVFieldOrder fieldOrder = AV_FIELD_UNKNOWN;
    ColourFacts colour;
    int orientation = 1;  ///< 1 upright; 2..8 mirrored and turned as in EXIF.
    int64_t bitRate = 0;  ///< Bits per second; 0 if unknown.
    std::string startTimecode;
    std::string reel;
    std::vector<std::pair<std::string, std::string>> tags;
    std::vector<AudioStreamFacts> audio;
    std::vector<CoverArt> coverArt;
};

/// What the container states. Pixel format, colour and fields come with the first picture.
StreamFacts factsOf(AVFormatContext const& format, AVStream const& video);

/// Adds what only a decoded picture tells.
void addPictureFacts(StreamFacts& facts, AVFrame const& picture, AVCodecContext const& decoder);

/// Sets the rates from the times of all frames. `stated`: the rate that the container claims, if any.
/// `timesAreExact`: the container keeps a time of each frame; else a stated rate counts for more.
void measureRates(StreamFacts& facts, FrameIndex const& index, AVRational stated, bool timesAreExact);

/// 1..8 for a display matrix of whole quarter turns, with or without mirroring; 1 for any other.
int orientationOf(int32_t const matrix[9]);

}  // namespace playfile_ffmpeg
