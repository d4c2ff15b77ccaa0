#include "plugins/ffmpeg/StreamFacts.h"

#include <array>
#include <cmath>

#include "plugins/ffmpeg/FrameDurations.h"

extern "C" {
#include <libavutil/display.h>
}

namespace playfile_ffmpeg {
namespace {

std::string tagOf(AVDictionary const* tags, char const* key) {
    AVDictionaryEntry const* entry = av_dict_get(tags, key, nullptr, 0);
    return entry != nullptr ? entry->value : "";
}

/// The tag of the video stream, else of the file, else of any other stream.
std::string findTag(AVFormatContext const& format, AVStream const& video, char const* key) {
    std::string value = tagOf(video.metadata, key);
    if (value.empty()) {
        value = tagOf(format.metadata, key);
    }
    for (unsigned index = 0; index < format.nb_streams && value.empty(); ++index) {
        value = tagOf(format.streams[index]->metadata, key);
    }
    return value;
}

void collectTags(AVDictionary const* dictionary, std::vector<std::pair<std::string, std::string>>& tags) {
    AVDictionaryEntry const* entry = nullptr;
    while ((entry = av_dict_get(dictionary, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        tags.emplace_back(entry->key, entry->value);
    }
}

AudioStreamFacts audioFactsOf(AVStream const& stream) {
    AVCodecParameters const& parameters = *stream.codecpar;
    AudioStreamFacts facts;
    facts.codec = avcodec_get_name(parameters.codec_id);
    facts.language = tagOf(stream.metadata, "language");
    facts.channels = parameters.ch_layout.nb_channels;
    facts.sampleRate = parameters.sample_rate;
    facts.bitsPerSample = av_get_exact_bits_per_sample(parameters.codec_id);
    if (facts.bitsPerSample == 0) {
        facts.bitsPerSample = parameters.bits_per_raw_sample;
    }
    if (stream.duration > 0 && parameters.sample_rate > 0) {
        facts.sampleCount = av_rescale_q(stream.duration, stream.time_base, {1, parameters.sample_rate});
    }
    return facts;
}

CoverArt coverArtOf(AVStream const& stream) {
    CoverArt art;
    art.codec = avcodec_get_name(stream.codecpar->codec_id);
    art.width = stream.codecpar->width;
    art.height = stream.codecpar->height;
    art.bytes.assign(stream.attached_pic.data, stream.attached_pic.data + stream.attached_pic.size);
    return art;
}

void collectStreams(AVFormatContext const& format, StreamFacts& facts) {
    for (unsigned index = 0; index < format.nb_streams; ++index) {
        AVStream const& stream = *format.streams[index];
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            facts.audio.push_back(audioFactsOf(stream));
        } else if ((stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0 && stream.attached_pic.size > 0) {
            facts.coverArt.push_back(coverArtOf(stream));
        }
    }
}

AVRational exactRate(AVRational timeBase, int64_t frames, int64_t ticks) {
    AVRational rate{};
    // frames / (ticks * num / den)
    int64_t const time = std::min(ticks, INT64_MAX / timeBase.num) * timeBase.num;
    av_reduce(&rate.num, &rate.den, frames * timeBase.den, time, INT32_MAX);
    return rate;
}

bool isUsable(AVRational rate) {
    return rate.num > 0 && rate.den > 0 && av_q2d(rate) <= 1000.0;
}

struct Gaps {
    int64_t shortest = INT64_MAX;
    int64_t longest = 0;
};

Gaps gapsOf(FrameIndex const& index) {
    Gaps gaps;
    for (uint32_t frame = 1; frame < index.frameCount(); ++frame) {
        int64_t const gap = av_sat_sub64(index.ptsOf(frame), index.ptsOf(frame - 1));
        gaps.shortest = std::min(gaps.shortest, gap);
        gaps.longest = std::max(gaps.longest, gap);
    }
    return gaps;
}

/// True if every frame lies where this rate puts it, but for the rounding of the time base.
bool fits(AVRational rate, AVRational timeBase, FrameIndex const& index) {
    double const ticksPerFrame = 1.0 / (av_q2d(rate) * av_q2d(timeBase));
    int64_t const first = index.ptsOf(0);
    for (uint32_t frame = 1; frame < index.frameCount(); ++frame) {
        double const offset =
            static_cast<double>(av_sat_sub64(index.ptsOf(frame), first)) - ticksPerFrame * frame;
        if (offset > 1.01 || offset < -1.01) {
            return false;
        }
    }
    return true;
}

constexpr std::array<AVRational, 13> usualRates = {{{24000, 1001},
                                                    {24, 1},
                                                    {25, 1},
                                                    {30000, 1001},
                                                    {30, 1},
                                                    {48, 1},
                                                    {50, 1},
                                                    {60000, 1001},
                                                    {60, 1},
                                                    {15, 1},
                                                    {15000, 1001},
                                                    {12, 1},
                                                    {10, 1}}};

AVRational constantRate(AVRational timeBase, FrameIndex const& index, AVRational stated) {
    if (isUsable(stated) && fits(stated, timeBase, index)) {
        return stated;
    }
    for (AVRational const rate : usualRates) {
        if (fits(rate, timeBase, index)) {
            return rate;
        }
    }
    return {0, 1};
}

/// The rate of a time line for frames of varying length: a usual one near that of most frames, else that.
/// Where most frames are too long or too short for a rate, as slides are, it is that of most screens.
AVRational timelineRate(AVRational timeBase, FrameIndex const& index) {
    constexpr double farthest = 0.05;
    constexpr double slowest = 9.5;
    AVRational rate = exactRate(timeBase, 1, std::max<int64_t>(usualGap(index), 1));
    double const wanted = av_q2d(rate);
    if (!isUsable(rate) || wanted < slowest) {
        return {30, 1};
    }
    double nearest = farthest;
    for (AVRational const usual : usualRates) {
        double const distance = std::abs(av_q2d(usual) / wanted - 1.0);
        if (distance < nearest) {
            nearest = distance;
            rate = usual;
        }
    }
    return rate;
}

void setConstant(StreamFacts& facts, AVRational rate) {
    facts.frameRate = rate;
    facts.lowestRate = rate;
    facts.highestRate = rate;
    facts.hasConstantRate = true;
}

}  // namespace

StreamFacts factsOf(AVFormatContext const& format, AVStream const& video) {
    AVCodecParameters const& parameters = *video.codecpar;
    StreamFacts facts;
    facts.format = format.iformat->name;
    facts.codec = avcodec_get_name(parameters.codec_id);
    facts.width = parameters.width;
    facts.height = parameters.height;
    facts.timeBase = video.time_base;
    if (video.start_time != AV_NOPTS_VALUE && video.duration > 0) {
        facts.endTime = av_sat_add64(video.start_time, video.duration);
    }
    facts.fieldOrder = parameters.field_order;
    facts.bitRate = parameters.bit_rate > 0 ? parameters.bit_rate : format.bit_rate;
    facts.colour = {parameters.color_primaries, parameters.color_trc, parameters.color_space,
                    parameters.color_range, parameters.chroma_location};
    AVRational const aspect =
        video.sample_aspect_ratio.num > 0 ? video.sample_aspect_ratio : parameters.sample_aspect_ratio;
    if (aspect.num > 0 && aspect.den > 0) {
        facts.sampleAspect = aspect;
    }
    facts.startTimecode = findTag(format, video, "timecode");
    facts.reel = findTag(format, video, "reel_name");
    collectTags(format.metadata, facts.tags);
    collectTags(video.metadata, facts.tags);
    collectStreams(format, facts);
    size_t byteCount = 0;
    uint8_t const* matrix = av_stream_get_side_data(&video, AV_PKT_DATA_DISPLAYMATRIX, &byteCount);
    if (matrix != nullptr && byteCount >= 9 * sizeof(int32_t)) {
        facts.orientation = orientationOf(reinterpret_cast<int32_t const*>(matrix));
    }
    return facts;
}

void addPictureFacts(StreamFacts& facts, AVFrame const& picture, AVCodecContext const& decoder) {
    facts.pixelFormat = static_cast<AVPixelFormat>(picture.format);
    facts.width = picture.width;
    facts.height = picture.height;
    char const* profile = avcodec_profile_name(decoder.codec_id, decoder.profile);
    facts.profile = profile != nullptr ? profile : "";
    ColourFacts& colour = facts.colour;
    colour.primaries =
        picture.color_primaries != AVCOL_PRI_UNSPECIFIED ? picture.color_primaries : colour.primaries;
    colour.transfer = picture.color_trc != AVCOL_TRC_UNSPECIFIED ? picture.color_trc : colour.transfer;
    colour.matrix = picture.colorspace != AVCOL_SPC_UNSPECIFIED ? picture.colorspace : colour.matrix;
    colour.range = picture.color_range != AVCOL_RANGE_UNSPECIFIED ? picture.color_range : colour.range;
    if (picture.chroma_location != AVCHROMA_LOC_UNSPECIFIED) {
        colour.chromaLocation = picture.chroma_location;
    }
    if (facts.fieldOrder == AV_FIELD_UNKNOWN) {
        AVFieldOrder const interlaced = picture.top_field_first != 0 ? AV_FIELD_TT : AV_FIELD_BB;
        facts.fieldOrder = picture.interlaced_frame != 0 ? interlaced : AV_FIELD_PROGRESSIVE;
    }
    bool const hasStatedAspect = facts.sampleAspect.num != facts.sampleAspect.den;
    if (!hasStatedAspect && picture.sample_aspect_ratio.num > 0 && picture.sample_aspect_ratio.den > 0) {
        facts.sampleAspect = picture.sample_aspect_ratio;
    }
    AVFrameSideData const* matrix = av_frame_get_side_data(&picture, AV_FRAME_DATA_DISPLAYMATRIX);
    if (matrix != nullptr && facts.orientation == 1 && matrix->size >= 9 * sizeof(int32_t)) {
        facts.orientation = orientationOf(reinterpret_cast<int32_t const*>(matrix->data));
    }
}

void measureRates(StreamFacts& facts, FrameIndex const& index, AVRational stated, bool timesAreExact) {
    uint32_t const count = index.frameCount();
    bool const hasTimes =
        count > 1 && index.ptsOf(0) != AV_NOPTS_VALUE && index.ptsOf(count - 1) > index.ptsOf(0);
    if (!hasTimes) {
        setConstant(facts, isUsable(stated) ? stated : AVRational{25, 1});
        return;
    }
    Gaps const gaps = gapsOf(index);
    if (gaps.shortest == gaps.longest) {
        AVRational const exact = exactRate(facts.timeBase, 1, gaps.longest);
        bool const isStatedFiner = isUsable(stated) && fits(stated, facts.timeBase, index) && count > 2;
        setConstant(facts, isStatedFiner ? stated : exact);
        return;
    }
    AVRational const constant = constantRate(facts.timeBase, index, stated);
    bool const isStatedBetter = !timesAreExact && isUsable(stated);
    if (constant.num > 0 || isStatedBetter) {
        setConstant(facts, constant.num > 0 ? constant : stated);
        return;
    }
    facts.hasConstantRate = false;
    facts.frameRate = timelineRate(facts.timeBase, index);
    facts.lowestRate = exactRate(facts.timeBase, 1, gaps.longest);
    facts.highestRate = exactRate(facts.timeBase, 1, std::max<int64_t>(gaps.shortest, 1));
}

/// The matrix maps a picture's point (x, y) to x * a + y * c, x * b + y * d, with y growing downwards.
int orientationOf(int32_t const matrix[9]) {
    auto const sign = [](int32_t value) { return (value > 0) - (value < 0); };
    std::array<int, 4> const signs = {sign(matrix[0]), sign(matrix[1]), sign(matrix[3]), sign(matrix[4])};
    struct Known {
        std::array<int, 4> signs;
        int orientation;
    };
    static constexpr std::array<Known, 8> known = {{{{1, 0, 0, 1}, 1},
                                                    {{-1, 0, 0, 1}, 2},
                                                    {{-1, 0, 0, -1}, 3},
                                                    {{1, 0, 0, -1}, 4},
                                                    {{0, 1, 1, 0}, 5},
                                                    {{0, 1, -1, 0}, 6},
                                                    {{0, -1, -1, 0}, 7},
                                                    {{0, -1, 1, 0}, 8}}};
    for (Known const& candidate : known) {
        if (candidate.signs == signs) {
            return candidate.orientation;
        }
    }
    return 1;
}

}  // namespace playfile_ffmpeg
