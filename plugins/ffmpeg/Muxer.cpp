#include "plugins/ffmpeg/Muxer.h"

#include <new>
#include <utility>

namespace playfile_ffmpeg {

std::unique_ptr<Muxer> Muxer::open(LightweightString<wchar_t> const& name, std::string const& format,
                                   std::string& error) {
    AVOutputFormat const* const container = av_guess_format(format.c_str(), nullptr, nullptr);
    if (container == nullptr) {
        error = "this FFmpeg writes no files of the format \"" + format + "\"";
        return nullptr;
    }
    AVFormatContext* made = nullptr;
    if (avformat_alloc_output_context2(&made, container, nullptr, nullptr) < 0) {
        throw std::bad_alloc();
    }
    ContextPtr context(made);
    std::unique_ptr<OutputFile> file = OutputFile::open(name, error);
    return file ? std::unique_ptr<Muxer>(new Muxer(std::move(context), std::move(file))) : nullptr;
}

Muxer::Muxer(ContextPtr context, std::unique_ptr<OutputFile> file)
    : file_(std::move(file)), context_(std::move(context)) {
    context_->pb = file_->io();
    context_->flags |= AVFMT_FLAG_CUSTOM_IO;
}

Muxer::~Muxer() {
    abandon();
}

bool Muxer::wantsSeparateHeader() const {
    return (context_->oformat->flags & AVFMT_GLOBALHEADER) != 0;
}

int Muxer::addStream(AVCodecParameters const& parameters, AVRational timeBase, AVRational frameRate) {
    AVStream* const stream = avformat_new_stream(context_.get(), nullptr);
    if (stream == nullptr || avcodec_parameters_copy(stream->codecpar, &parameters) < 0) {
        throw std::bad_alloc();
    }
    unsigned const tag = parameters.codec_tag;
    bool const isKnown = context_->oformat->codec_tag == nullptr ||
                         av_codec_get_id(context_->oformat->codec_tag, tag) == parameters.codec_id;
    // A tag of another container would be refused; without one the container's own is taken.
    stream->codecpar->codec_tag = isKnown ? tag : 0;
    stream->time_base = timeBase;
    stream->avg_frame_rate = frameRate;
    stream->r_frame_rate = frameRate;
    stream->sample_aspect_ratio = parameters.sample_aspect_ratio;
    return stream->index;
}

bool Muxer::begin(AvOptions const& options, std::string& error) {
    AvDictionary entries(options);
    int const result = avformat_write_header(context_.get(), entries.address());
    hasBegun_ = result >= 0;
    if (hasBegun_ && !entries.firstKey().empty()) {
        error = std::string("the format \"") + context_->oformat->name + "\" has no option \"" +
                entries.firstKey() + "\"";
        return false;
    }
    return succeeded(result, "doesn't take these streams", error);
}

bool Muxer::write(AVPacket& packet, int stream, AVRational timeBase, std::string& error) {
    packet.stream_index = stream;
    av_packet_rescale_ts(&packet, timeBase, context_->streams[stream]->time_base);
    packet.pos = -1;
    return succeeded(av_interleaved_write_frame(context_.get(), &packet), "doesn't take a packet", error);
}

bool Muxer::finish(std::string& error) {
    int const result = hasBegun_ ? av_write_trailer(context_.get()) : AVERROR(EINVAL);
    static_cast<void>(file_->flush());
    if (!succeeded(result, "can't be ended", error)) {
        return false;
    }
    close();
    return true;
}

void Muxer::abandon() {
    if (file_) {
        file_->remove();
        close();
    }
}

void Muxer::keep() {
    if (file_) {
        if (hasBegun_ && result_ == oxSuccess) {
            static_cast<void>(av_interleaved_write_frame(context_.get(), nullptr));
        }
        static_cast<void>(file_->flush());
        close();
    }
}

void Muxer::close() {
    context_->pb = nullptr;
    file_ = nullptr;
}

bool Muxer::succeeded(int code, char const* what, std::string& error) {
    if (file_->result() != oxSuccess) {
        result_ = file_->result();
        error = file_->problem();
        return false;
    }
    if (code < 0) {
        result_ = oxFailure;
        error =
            std::string("the format \"") + context_->oformat->name + "\" " + what + ": " + avErrorText(code);
        return false;
    }
    return true;
}

}  // namespace playfile_ffmpeg
