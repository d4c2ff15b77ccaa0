#include "plugins/ffmpeg/FFmpegReader.h"

#include <exception>

#include "plugins/ffmpeg/MetadataWriter.h"
#include "plugins/ffmpeg/PictureSurface.h"
#include "plugins/ffmpeg/PixelFormats.h"
#include "plugins/ffmpeg/WantedShape.h"
#include "toolkit/services/Log.h"
#include "video/VideoReadRequest.h"

namespace playfile_ffmpeg {
namespace {

std::uint64_t bytesOf(std::uint32_t mebibytes) {
    return std::uint64_t{mebibytes} << 20;
}

/// As a stream that isn't there fails.
void failAudio(Ox::Ptr<AudioReadRequest> const& request) {
    request->setRequestStatus(requestFailed);
    LogBoth("** disk read error 0x%x\n", oxFailure);
    Ox::Ptr<iObject> self(request);
    request->doCallbacks(self);
}

}  // namespace

Ox::Ptr<FFmpegReader> FFmpegReader::open(LightweightString<wchar_t> const& name, DecodeFormat const& format,
                                         OpenType type, std::string& error) {
    std::string const path = toUTF8(name).str();
    std::unique_ptr<FrameFetcher> fetcher = FrameFetcher::open(path, error);
    std::unique_ptr<SoundFile> sound;
    if (fetcher && (type.mask() & OpenType::audio) != 0) {
        sound = SoundFile::open(path, error);
    }
    return fetcher ? Ox::makePtr<FFmpegReader>(name, format, type, std::move(fetcher), std::move(sound))
                   : Ox::Ptr<FFmpegReader>();
}

/// A file that is opened for both, but has no sound that can be read, says so by having no streams of it.
FFmpegReader::FFmpegReader(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type,
                           std::unique_ptr<FrameFetcher> fetcher, std::unique_ptr<SoundFile> sound)
    : StreamingDecodeReader(name, format, type),
      decoder_(StreamDecoder::make(std::move(fetcher), DecoderKeeper::shared(), bytesOf(options_.storeMiB))),
      frameRateMap_(FrameRateMap::of(decoder_->file().index(), decoder_->file().facts())) {
    describe(decoder_->file(), *metadata);
    describeDurations(decoder_->file(), frameRateMap_.get(), *metadata);
    if (sound) {
        sound_ = std::make_unique<SoundServer>(metadata->audioStreams, std::move(sound));
        countSound(sound_->file(), *metadata);
    } else if ((type.mask() & OpenType::audio) != 0) {
        metadata->audioInfoCount = 0;
    }
}

FFmpegReader::~FFmpegReader() {
    endStreamDecode();
}

std::uint32_t FFmpegReader::frameCount() const {
    return frameRateMap_ ? frameRateMap_->timelineCount() : decoder_->file().frameCount();
}

/// A file of one frame shows that one whatever the number.
std::uint32_t FFmpegReader::storedFrame(std::uint32_t frame) const {
    if (decoder_->file().frameCount() == 1) {
        return 0;
    }
    return frameRateMap_ ? frameRateMap_->storedFrame(frame) : frame;
}

unsigned int FFmpegReader::readVideoDirect(Ox::Ptr<FrameBufferRep>& buffer,
                                           Ox::Ptr<VideoReadRequest>& request) {
    try {
        std::uint32_t const frame = storedFrame(request->frame);
        PicturePtr const picture = decoder_->fetch(frame);
        return picture ? answer(buffer, *request, picture) : noFrame;
    } catch (std::exception const& exception) {
        logFailure(request->frame, exception);
        return noFrame;
    }
}

/// Hands out a picture as the request wants it.
unsigned int FFmpegReader::answer(Ox::Ptr<FrameBufferRep>& buffer, VideoReadRequest const& request,
                                  PicturePtr picture) {
    PictureShape const shape = wantedShape(request, shapeOf(*picture));
    if (!(shape == shapeOf(*picture))) {
        picture = converter_.convert(*picture, shape, assumedMatrix());
    }
    if (!picture) {
        return noFrame;
    }
    FrameFetcher const& file = decoder_->file();
    Ox::Image::Surface const surface =
        surfaceOf(picture, file.facts(), timeOfFrame(file, storedFrame(request.frame)));
    buffer = Ox::makePtr<FrameBufferRep>(surface, request.frame);
    return frameRead;
}

void FFmpegReader::logFailure(std::uint32_t frame, std::exception const& exception) const {
    Log("FFmpeg: \"%ls\", frame %u: %s\n", filename.c_str(), frame, exception.what());
}

void FFmpegReader::readAudio(Ox::Ptr<AudioReadRequest>& request) {
    if (sound_) {
        sound_->readAudio(request);
    } else {
        failAudio(request);
    }
}

LightweightString<char> FFmpegReader::getDescription() const {
    StreamFacts const& facts = decoder_->file().facts();
    std::string const profile = facts.profile.empty() ? std::string() : " " + facts.profile;
    return LightweightString<char>(facts.codec + profile + " in " + facts.format);
}

LightweightVector<Ox::Ptr<GenericParam::iParam>> FFmpegReader::getDecodeOptions(Ox::Ptr<FileReadInstance>) {
    return DecodeOptions::descriptions();
}

configb FFmpegReader::getDecodeOptionValues() {
    std::lock_guard const scope(optionsLock_);
    return options_.values();
}

void FFmpegReader::setDecodeOptionValues(configb const& values) {
    std::lock_guard const scope(optionsLock_);
    options_.take(values, filename);
    decoder_->setMemory(bytesOf(options_.storeMiB));
}

AVColorSpace FFmpegReader::assumedMatrix() {
    std::lock_guard const scope(optionsLock_);
    return options_.matrix;
}

}  // namespace playfile_ffmpeg
