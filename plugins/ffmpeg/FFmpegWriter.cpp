#include "plugins/ffmpeg/FFmpegWriter.h"

#include <exception>
#include <utility>

#include "plugins/ffmpeg/SurfacePicture.h"
#include "toolkit/services/Log.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace playfile_ffmpeg {
namespace {

/// A handful of the largest pictures, a second and more of usual ones.
constexpr std::uint64_t mostBytesWaiting = 256U << 20;

void complain(LightweightString<wchar_t> const& name, std::string const& problem) {
    LogBoth("FFmpeg: \"%ls\" can't be written: %s\n", name.c_str(), problem.c_str());
}

std::uint64_t byteCountOf(AVFrame const& picture) {
    int const count = av_image_get_buffer_size(static_cast<AVPixelFormat>(picture.format), picture.width,
                                               picture.height, 1);
    return count > 0 ? static_cast<std::uint64_t>(count) : 0;
}

}  // namespace

OxResult FFmpegWriter::open(LightweightString<wchar_t> const& name, Ox::FileWriterParams const& params,
                            Ox::Ptr<FileWriteInstance>& file) {
    WriterFormat format;
    std::string error;
    std::unique_ptr<Muxer> muxer;
    if (format.read(params, error)) {
        muxer = Muxer::open(name, format.container, error);
    }
    if (!muxer) {
        complain(name, error);
        return oxFailure;
    }
    file = Ox::makePtr<FFmpegWriter>(name, std::move(format), std::move(muxer));
    file->metadata->videoInfoCount = 1;
    file->metadata->videoSequence.frameRate = params.video.getFrameRate();
    return oxSuccess;
}

FFmpegWriter::FFmpegWriter(LightweightString<wchar_t> const& name, WriterFormat format,
                           std::unique_ptr<Muxer> muxer)
    : FileWriteInstance(name),
      format_(std::move(format)),
      muxer_(std::move(muxer)),
      spool_(std::make_unique<WriteSpool>(mostBytesWaiting, 1)) {}

FFmpegWriter::~FFmpegWriter() {
    try {
        static_cast<void>(finish());
    } catch (std::exception const& exception) {
        complain(filename, exception.what());
    }
}

LightweightString<char> FFmpegWriter::getDescription() const {
    return "FFmpeg";
}

std::uint32_t FFmpegWriter::writeAudioSamples(Ox::Ptr<iMemHolder>&, Callback) {
    return oxFailure;
}

void FFmpegWriter::reportWriteError(std::uint32_t) {
    std::lock_guard const scope(problemLock_);
    complain(filename, problem_);
}

std::uint32_t FFmpegWriter::writeFrameData(Ox::Image::Surface const& surface) {
    if (!spool_) {
        return fail("the file is ended already");
    }
    PicturePtr const picture = pictureFrom(surface);
    if (!picture) {
        return fail("a frame shows no picture, or one of a format that FFmpeg doesn't know");
    }
    if (OxResult const result = encoder_ ? oxSuccess : start(*picture); result != oxSuccess) {
        return result;
    }
    return spool_->put(byteCountOf(*picture), [this, picture] { return append(*picture); }, {});
}

OxResult FFmpegWriter::start(AVFrame const& picture) {
    EncoderSettings settings = format_.settingsFor(picture);
    settings.hasSeparateHeader = muxer_->wantsSeparateHeader();
    std::string error;
    std::unique_ptr<VideoEncoder> encoder = VideoEncoder::open(settings, error);
    if (!encoder) {
        return fail(error);
    }
    stream_ = muxer_->addStream(*encoder->parameters(), encoder->timeBase(), encoder->frameRate());
    if (!muxer_->begin(format_.containerOptions, error)) {
        static_cast<void>(fail(error));
        return muxer_->result();
    }
    encoder_ = std::move(encoder);
    return oxSuccess;
}

OxResult FFmpegWriter::append(AVFrame const& picture) {
    try {
        PicturePtr const same(&picture, [](AVFrame const*) {});
        PicturePtr const converted =
            shapeOf(picture) == encoder_->shape()
                ? same
                : converter_.convert(picture, encoder_->shape(), AVCOL_SPC_UNSPECIFIED);
        std::string error = "a picture can't be converted for the encoder";
        OxResult const result =
            converted && encoder_->encode(*converted, packets_, error) ? writePackets() : fail(error);
        if (result != oxSuccess) {
            reportWriteError(result);
        }
        return result;
    } catch (std::exception const& exception) {
        complain(filename, exception.what());
        return fail(exception.what());
    }
}

OxResult FFmpegWriter::writePackets() {
    std::string error;
    for (AvPtr<AVPacket> const& packet : packets_) {
        if (!muxer_->write(*packet, stream_, encoder_->timeBase(), error)) {
            static_cast<void>(fail(error));
            return muxer_->result();
        }
        hasFrames_ = true;
    }
    packets_.clear();
    return oxSuccess;
}

std::uint32_t FFmpegWriter::finish() {
    if (spool_) {
        result_ = spool_->waitUntilWritten();
        spool_ = nullptr;
        OxResult const ended = end();
        if (result_ == oxSuccess && ended != oxSuccess) {
            result_ = ended;
            reportWriteError(result_);
        }
    }
    return result_;
}

/// What was written before a failure is kept.
OxResult FFmpegWriter::end() {
    std::string error = "no picture has come";
    OxResult result = oxFailure;
    if (encoder_ && result_ == oxSuccess) {
        result = encoder_->finish(packets_, error) ? writePackets() : fail(error);
    }
    if (!hasFrames_) {
        muxer_->abandon();
        return encoder_ ? result : fail(error);
    }
    if (!muxer_->finish(error)) {
        muxer_->keep();
        static_cast<void>(fail(error));
        return muxer_->result();
    }
    return result;
}

/// The first failure is the one that is told.
OxResult FFmpegWriter::fail(std::string const& reason) {
    std::lock_guard const scope(problemLock_);
    if (problem_.empty()) {
        problem_ = reason;
    }
    return oxFailure;
}

}  // namespace playfile_ffmpeg
