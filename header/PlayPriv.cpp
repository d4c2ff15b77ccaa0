#include "header/PlayPriv.h"

#include "toolkit/image/DigitalVideoFormats.h"
#include "toolkit/services/TolerantEq.h"

namespace {

constexpr int noDropFrame = 0;
constexpr double noTimecode = 0.0;
constexpr int noSound = 0;
constexpr int noPicture = 0;
constexpr int noSequence = -1;
constexpr int noOffset = 0;
constexpr int noTransferType = -1;
constexpr int oneChannel = 1;
constexpr double palRate = 25.0;

}  // namespace

void PlayPriv::make_audio_header(Ox::Ptr<PlayFile> file, SAV_HEADER* header, double sampleRate,
                                 int bytesPerSample) {
    *header = make_header("sound", "linear_uncompressed", sampleRate, sampleRate, noDropFrame, noTimecode,
                          noTimecode, noTimecode, bytesPerSample, oneChannel, "unknown", noPicture, noPicture,
                          file->filename, noSequence, noOffset, "", noTransferType);
}

void PlayPriv::make_vision_header(Ox::Ptr<PlayFile> file, ShotVideoMetadata const& metadata,
                                  SAV_HEADER* header) {
    Ox::DigitalVideoFormats::Format const format =
        Ox::DigitalVideoFormats::findByUID(metadata.getVideoFormatUID());
    double const rate = Ox::getFramesPerSecond(metadata.getFrameRate());
    *header = make_header("vision", "data", rate, rate, noDropFrame, noTimecode, noTimecode, noTimecode,
                          noSound, noSound, TolerantEq(rate, palRate) ? "PAL" : "NTSC",
                          static_cast<int>(format.width / format.divisor),
                          static_cast<int>(format.height / format.divisor), file->filename, noSequence,
                          noOffset, "both", noTransferType);
}
