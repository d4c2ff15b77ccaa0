#include "plugins/ffmpeg/FFmpegReader.h"

#include <algorithm>
#include <array>
#include <exception>

#include "plugins/ffmpeg/MetadataWriter.h"
#include "plugins/ffmpeg/PictureSurface.h"
#include "plugins/ffmpeg/PixelFormats.h"
#include "toolkit/services/Log.h"
#include "video/VideoReadRequest.h"

namespace playfile_ffmpeg {
namespace {

constexpr char const* matrixKey = "colourMatrix";

struct NamedMatrix {
    char const* name;
    AVColorSpace matrix;
};

constexpr std::array<NamedMatrix, 4> matrices = {{{"auto", AVCOL_SPC_UNSPECIFIED},
                                                  {"bt601", AVCOL_SPC_SMPTE170M},
                                                  {"bt709", AVCOL_SPC_BT709},
                                                  {"bt2020", AVCOL_SPC_BT2020_NCL}}};

class MatrixOption : public GenericParam::iParam {
public:
    [[nodiscard]] LightweightString<char> getKey() const override { return matrixKey; }
    [[nodiscard]] LightweightString<char> getDescription() const override {
        return "The colour matrix of a file that doesn't state one.";
    }
    [[nodiscard]] LightweightString<char> getValues() const override { return "auto, bt601, bt709, bt2020"; }
};

/// One side of a picture in proportion to the other, at least a pixel.
int inProportion(std::uint32_t other, int ownSide, int ownOther) {
    std::int64_t const side = (std::int64_t(other) * ownSide + ownOther / 2) / ownOther;
    return static_cast<int>(std::clamp<std::int64_t>(side, 1, INT32_MAX));
}

PictureShape wantedShape(DecodeFormat const& wanted, AVFrame const& picture) {
    PictureShape shape = shapeOf(picture);
    std::uint32_t const width = std::min<std::uint32_t>(wanted.getWidth(), INT32_MAX);
    std::uint32_t const height = std::min<std::uint32_t>(wanted.getHeight(), INT32_MAX);
    if (width != 0 || height != 0) {
        shape.width =
            width != 0 ? static_cast<int>(width) : inProportion(height, picture.width, picture.height);
        shape.height =
            height != 0 ? static_cast<int>(height) : inProportion(width, picture.height, picture.width);
    }
    if (wanted.getDataFormat() != Ox::Image::Format::unknown) {
        shape.pixelFormat = pixelFormatOf(wanted.getDataFormat());
    }
    return shape;
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
    : FileReadInstance(name, format, type),
      fetcher_(std::move(fetcher)),
      frameRateMap_(FrameRateMap::of(fetcher_->index(), fetcher_->facts())) {
    describe(*fetcher_, *metadata);
    describeDurations(*fetcher_, frameRateMap_.get(), *metadata);
    if (sound) {
        sound_ = std::make_unique<SoundServer>(metadata->audioStreams, std::move(sound));
        countSound(sound_->file(), *metadata);
    } else if ((type.mask() & OpenType::audio) != 0) {
        metadata->audioInfoCount = 0;
    }
}

unsigned int FFmpegReader::readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>& request) {
    try {
        std::uint32_t const frame = storedFrame(request->frame);
        PicturePtr const picture = pictureFor(*request, frame);
        if (!picture) {
            return noFrame;
        }
        Ox::Image::Surface const surface =
            surfaceOf(picture, fetcher_->facts(), timeOfFrame(*fetcher_, frame));
        buffer = Ox::makePtr<FrameBufferRep>(surface, request->frame);
        return frameRead;
    } catch (std::exception const& exception) {
        Log("FFmpeg: \"%ls\", frame %u: %s\n", filename.c_str(), request->frame, exception.what());
        return noFrame;
    }
}

/// A file of one frame shows that one whatever the number.
std::uint32_t FFmpegReader::storedFrame(std::uint32_t frame) const {
    if (fetcher_->frameCount() == 1) {
        return 0;
    }
    return frameRateMap_ ? frameRateMap_->storedFrame(frame) : frame;
}

void FFmpegReader::readAudio(Ox::Ptr<AudioReadRequest>& request) {
    if (sound_) {
        sound_->readAudio(request);
    }
}

PicturePtr FFmpegReader::pictureFor(DecodeFormat const& wanted, std::uint32_t frame) {
    PicturePtr picture = fetcher_->fetch(frame);
    if (!picture) {
        return nullptr;
    }
    PictureShape const shape = wantedShape(wanted, *picture);
    return shape == shapeOf(*picture)
               ? picture
               : converter_.convert(*picture, shape, assumedMatrix_.load(std::memory_order_relaxed));
}

LightweightString<char> FFmpegReader::getDescription() const {
    StreamFacts const& facts = fetcher_->facts();
    std::string const profile = facts.profile.empty() ? std::string() : " " + facts.profile;
    return LightweightString<char>(facts.codec + profile + " in " + facts.format);
}

LightweightVector<Ox::Ptr<GenericParam::iParam>> FFmpegReader::getDecodeOptions(Ox::Ptr<FileReadInstance>) {
    LightweightVector<Ox::Ptr<GenericParam::iParam>> options;
    options.push_back(Ox::makePtr<MatrixOption>());
    return options;
}

configb FFmpegReader::getDecodeOptionValues() {
    AVColorSpace const matrix = assumedMatrix_.load(std::memory_order_relaxed);
    auto const found = std::find_if(matrices.begin(), matrices.end(),
                                    [&](NamedMatrix const& known) { return known.matrix == matrix; });
    configb values;
    values.set(matrixKey, found->name);
    return values;
}

void FFmpegReader::setDecodeOptionValues(configb const& values) {
    LightweightString<char> name;
    if (values.in(matrixKey, name) != 0) {
        return;
    }
    auto const found = std::find_if(matrices.begin(), matrices.end(),
                                    [&](NamedMatrix const& known) { return name.view() == known.name; });
    if (found == matrices.end()) {
        Log("FFmpeg: \"%ls\": \"%s\" is no value of %s, auto is taken\n", filename.c_str(), name.c_str(),
            matrixKey);
    }
    assumedMatrix_.store(found == matrices.end() ? AVCOL_SPC_UNSPECIFIED : found->matrix,
                         std::memory_order_relaxed);
}

}  // namespace playfile_ffmpeg
