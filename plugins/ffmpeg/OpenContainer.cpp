#include "plugins/ffmpeg/OpenContainer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace playfile_ffmpeg {
namespace {

/// Packets of other streams between two of the video stream; more than that is damage.
constexpr int mostForeignPackets = 1 << 20;

/// Containers whose headers state codec, size and configuration of each stream.
constexpr std::array<char const*, 4> statingFormats = {"mov", "matroska", "mxf", "avi"};

constexpr std::array<char const*, 13> rawFormats = {"h264", "hevc", "mpegvideo", "m4v",       "h261",
                                                    "h263", "vc1",  "dirac",     "cavsvideo", "avs2",
                                                    "avs3", "obu",  "mjpeg"};

class Options {
public:
    Options() = default;
    ~Options() { av_dict_free(&dictionary_); }
    Options(Options const&) = delete;
    Options& operator=(Options const&) = delete;

    void set(char const* key, char const* value) { av_dict_set(&dictionary_, key, value, 0); }
    AVDictionary** address() { return &dictionary_; }

private:
    AVDictionary* dictionary_ = nullptr;
};

bool isCoverPicture(AVStream const& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

}  // namespace

AVIOInterruptCB Deadline::callback() {
    return {[](void* deadline) { return static_cast<Deadline const*>(deadline)->isOver() ? 1 : 0; }, this};
}

bool OpenContainer::open(std::string const& path, std::string& error) {
    path_ = path;
    return reopen(error);
}

bool OpenContainer::openForSound(std::string const& path, std::string& error) {
    path_ = path;
    deadline_.arm();
    if (!openInput(error) || !probeStreams(error)) {
        return false;
    }
    if (chooseVideo() || !chooseSound()) {
        error = "holds neither a readable picture nor sound alone";
        return false;
    }
    return true;
}

bool OpenContainer::reopen(std::string& error) {
    deadline_.arm();
    if (!openInput(error)) {
        return false;
    }
    bool const found = chooseVideo();
    if (!(found && statesWhatIsNeeded()) && !probeStreams(error)) {
        return false;
    }
    if (!chooseVideo()) {
        error = "holds no video stream";
        return false;
    }
    discardOthers();
    return makeUnpacker(error);
}

bool OpenContainer::openInput(std::string& error) {
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) {
        error = avErrorText(AVERROR(ENOMEM));
        return false;
    }
    context->interrupt_callback = deadline_.callback();
    Options options;
    // A file that names others must not reach the network, and a number sign is part of a name.
    options.set("protocol_whitelist", "file");
    options.set("pattern_type", "none");
    int const code = avformat_open_input(&context, ("file:" + path_).c_str(), nullptr, options.address());
    if (code < 0) {
        error = "is in no known format: " + avErrorText(code);
        return false;
    }
    format_.reset(context);
    return true;
}

/// Probing decodes frames and may read megabytes; what the header states needs no probing.
bool OpenContainer::statesWhatIsNeeded() const {
    AVCodecParameters const& parameters = *video().codecpar;
    if (parameters.codec_id == AV_CODEC_ID_NONE || avcodec_find_decoder(parameters.codec_id) == nullptr) {
        return false;
    }
    return isStill() || std::any_of(statingFormats.begin(), statingFormats.end(),
                                    [this](char const* name) { return isFormat(name); });
}

bool OpenContainer::probeStreams(std::string& error) {
    int const code = avformat_find_stream_info(format_.get(), nullptr);
    if (code < 0) {
        error = "has no readable streams: " + avErrorText(code);
        return false;
    }
    return true;
}

bool OpenContainer::chooseVideo() {
    for (unsigned index = 0; index < format_->nb_streams; ++index) {
        AVStream const& stream = *format_->streams[index];
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCoverPicture(stream)) {
            videoIndex_ = index;
            return true;
        }
    }
    return false;
}

bool OpenContainer::chooseSound() {
    for (unsigned index = 0; index < format_->nb_streams; ++index) {
        if (format_->streams[index]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            soundIndex_ = index;
            return true;
        }
    }
    return false;
}

void OpenContainer::discardOthers() {
    for (unsigned index = 0; index < format_->nb_streams; ++index) {
        if (index != videoIndex_) {
            format_->streams[index]->discard = AVDISCARD_ALL;
        }
    }
}

/// Containers of the MOV family have a place for each picture and hold no packet of two.
bool OpenContainer::makeUnpacker(std::string& error) {
    unpacker_.reset();
    AVCodecParameters const& parameters = *video().codecpar;
    if (parameters.codec_id != AV_CODEC_ID_MPEG4 || isFormat("mov")) {
        return true;
    }
    AVBSFContext* unpacker = nullptr;
    int code = av_bsf_alloc(av_bsf_get_by_name("mpeg4_unpack_bframes"), &unpacker);
    unpacker_.reset(unpacker);
    if (code >= 0) {
        code = avcodec_parameters_copy(unpacker->par_in, &parameters);
    }
    if (code >= 0) {
        code = av_bsf_init(unpacker);
    }
    error = code < 0 ? "can't be taken apart: " + avErrorText(code) : error;
    return code >= 0;
}

AVCodecParameters const& OpenContainer::videoParameters() const {
    return unpacker_ ? *unpacker_->par_out : *video().codecpar;
}

/// An empty packet stands for a picture that was left out; to the unpacker it would be the end.
int OpenContainer::readVideoPacket(AVPacket& packet) {
    if (!unpacker_) {
        return readStoredPacket(packet);
    }
    av_packet_unref(&packet);
    int code = av_bsf_receive_packet(unpacker_.get(), &packet);
    while (code == AVERROR(EAGAIN)) {
        code = readStoredPacket(packet);
        if (code >= 0 && packet.size == 0) {
            return 0;
        }
        storedByteCount_ = packet.size;
        av_bsf_send_packet(unpacker_.get(), code >= 0 ? &packet : nullptr);
        code = av_bsf_receive_packet(unpacker_.get(), &packet);
    }
    hasTakenApart_ = hasTakenApart_ || (code >= 0 && packet.size != storedByteCount_);
    return code;
}

bool OpenContainer::seek(int stream, int64_t timestamp, int flags) {
    deadline_.arm();
    if (unpacker_) {
        av_bsf_flush(unpacker_.get());
    }
    return av_seek_frame(format_.get(), stream, timestamp, flags) >= 0;
}

int OpenContainer::readStoredPacket(AVPacket& packet) {
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
        if (packet.stream_index == static_cast<int>(videoIndex_)) {
            return 0;
        }
    }
    return AVERROR_INVALIDDATA;
}

bool OpenContainer::isFormat(char const* name) const {
    std::string_view names = format_->iformat->name;
    return names == name || names.starts_with(std::string(name) + ",");
}

bool OpenContainer::isRawStream() const {
    return std::any_of(rawFormats.begin(), rawFormats.end(),
                       [this](char const* name) { return isFormat(name); });
}

bool OpenContainer::isStill() const {
    return isFormat("image2") || std::string_view(format_->iformat->name).ends_with("_pipe");
}

}  // namespace playfile_ffmpeg
