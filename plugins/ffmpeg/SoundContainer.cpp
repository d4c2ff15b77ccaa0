#include "plugins/ffmpeg/SoundContainer.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace playfile_ffmpeg {
namespace {

/// Packets of streams that turned up late, between two that are wanted; more than that is damage.
constexpr int mostForeignPackets = 1 << 20;

/// Containers whose headers state each stream's codec with all that its decoder needs.
constexpr std::array<char const*, 9> statingFormats = {"mov",  "matroska", "mxf", "avi", "wav",
                                                       "aiff", "caf",      "w64", "au"};

bool isSound(AVStream const& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
}

}  // namespace

bool SoundContainer::open(std::string const& path, std::string& error) {
    deadline_.arm();
    if (!openInput(path, error)) {
        return false;
    }
    collectStreams();
    if (!statesWhatIsNeeded()) {
        discardPictures();
        int const code = avformat_find_stream_info(format_.get(), nullptr);
        if (code < 0) {
            error = "has no readable streams: " + avErrorText(code);
            return false;
        }
        collectStreams();
    }
    discardOthers();
    if (streams_.empty()) {
        error = "holds no sound";
        return false;
    }
    return true;
}

bool SoundContainer::openInput(std::string const& path, std::string& error) {
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) {
        error = avErrorText(AVERROR(ENOMEM));
        return false;
    }
    context->interrupt_callback = deadline_.callback();
    AVDictionary* options = nullptr;
    // A file that names others must not reach the network, and a number sign is part of a name.
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "pattern_type", "none", 0);
    int const code = avformat_open_input(&context, ("file:" + path).c_str(), nullptr, &options);
    av_dict_free(&options);
    if (code < 0) {
        error = "is in no known format: " + avErrorText(code);
        return false;
    }
    format_.reset(context);
    return true;
}

void SoundContainer::collectStreams() {
    streams_.clear();
    for (unsigned index = 0; index < format_->nb_streams; ++index) {
        AVStream& stream = *format_->streams[index];
        if (isSound(stream)) {
            streams_.push_back(&stream);
        }
    }
}

/// Of the others some may turn out to be sound when they have been probed.
void SoundContainer::discardPictures() {
    for (unsigned index = 0; index < format_->nb_streams; ++index) {
        if (format_->streams[index]->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
            format_->streams[index]->discard = AVDISCARD_ALL;
        }
    }
}

void SoundContainer::discardOthers() {
    for (unsigned index = 0; index < format_->nb_streams; ++index) {
        if (!isSound(*format_->streams[index])) {
            format_->streams[index]->discard = AVDISCARD_ALL;
        }
    }
}

/// Probing may read megabytes and decode; what the header states needs no probing.
bool SoundContainer::statesWhatIsNeeded() const {
    bool const isStating = std::any_of(statingFormats.begin(), statingFormats.end(),
                                       [this](char const* name) { return isFormat(name); });
    bool const mayHaveMore = (format_->ctx_flags & AVFMTCTX_NOHEADER) != 0;
    return isStating && !mayHaveMore &&
           std::all_of(streams_.begin(), streams_.end(), [](AVStream const* stream) {
               AVCodecParameters const& parameters = *stream->codecpar;
               return parameters.codec_id != AV_CODEC_ID_NONE && parameters.sample_rate > 0 &&
                      parameters.ch_layout.nb_channels > 0;
           });
}

bool SoundContainer::isFormat(char const* name) const {
    std::string_view const names = format_->iformat->name;
    return names == name || names.starts_with(std::string(name) + ",");
}

bool SoundContainer::hasPicture() const {
    AVStream* const* const streams = format_->streams;
    return std::any_of(streams, streams + format_->nb_streams, [](AVStream const* stream) {
        return stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
               (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
    });
}

void SoundContainer::keepOnly(AVStream const& stream) {
    for (AVStream* each : streams_) {
        each->discard = each == &stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
}

int SoundContainer::readPacket(AVPacket& packet) {
    deadline_.arm();
    for (int foreign = 0; foreign < mostForeignPackets; ++foreign) {
        av_packet_unref(&packet);
        int const code = av_read_frame(format_.get(), &packet);
        if (code == AVERROR(EAGAIN)) {
            continue;
        }
        if (code < 0) {
            return code;
        }
        AVStream const& stream = *format_->streams[packet.stream_index];
        if (isSound(stream) && stream.discard != AVDISCARD_ALL) {
            return 0;
        }
    }
    return AVERROR_INVALIDDATA;
}

bool SoundContainer::goToPlace(int64_t position) {
    deadline_.arm();
    return av_seek_frame(format_.get(), -1, position, AVSEEK_FLAG_BYTE) >= 0;
}

bool SoundContainer::goToTime(AVStream const& stream, int64_t time) {
    deadline_.arm();
    return av_seek_frame(format_.get(), stream.index, time, AVSEEK_FLAG_BACKWARD) >= 0;
}

bool SoundContainer::seeksByPlace() const {
    return (format_->iformat->flags & AVFMT_TS_DISCONT) != 0;
}

}  // namespace playfile_ffmpeg
