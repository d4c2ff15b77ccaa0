#include "plugins/ffmpeg/MetadataWriter.h"

#include <algorithm>
#include <cstdio>

#include "plugins/ffmpeg/Base64.h"
#include "plugins/ffmpeg/PictureSurface.h"
#include "plugins/ffmpeg/PixelFormats.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace playfile_ffmpeg {
namespace {

void set(configb& config, std::string const& key, std::string const& value) {
    if (!value.empty()) {
        config.set(LightweightString<char>(key), LightweightString<char>(value));
    }
}

std::string secondsText(double seconds) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.6f", seconds);
    return text;
}

char const* nameOf(Ox::Image::eFieldOrder order) {
    switch (order) {
        case Ox::Image::eFieldOrder::progressive:
            return "progressive";
        case Ox::Image::eFieldOrder::topFirst:
            return "top field first";
        case Ox::Image::eFieldOrder::bottomFirst:
            return "bottom field first";
        default:
            return "unknown";
    }
}

Ox::FrameRate rateOf(AVRational rate) {
    return {static_cast<std::uint32_t>(rate.num), static_cast<std::uint32_t>(rate.den)};
}

void describePicture(StreamFacts const& facts, PlayFileMetadataRep& metadata) {
    Ox::Image::Core::Data& image = metadata.image;
    image.width = static_cast<std::uint32_t>(facts.width);
    image.height = static_cast<std::uint32_t>(facts.height);
    image.dataFormat = formatOf(facts.pixelFormat);
    if (Ox::Image::FormatDescription const* const format = Ox::Image::describeFormat(image.dataFormat)) {
        image.bitsPerComponent = format->bitsPerComponent;
        image.bitsPerPixel = format->bitsPerPixel;
    }
    image.coreDataSet = true;
    metadata.orientation = static_cast<Ox::Image::Orientation>(facts.orientation);
    metadata.videoData = videoDataOf(facts);
    metadata.sampleData.fieldOrder = fieldOrderOf(facts);
    metadata.sampleData.timeSeconds = 0.0;
}

void describeTiming(FrameFetcher const& fetcher, PlayFileMetadataRep& metadata) {
    StreamFacts const& facts = fetcher.facts();
    metadata.videoSequence.frameRate = rateOf(facts.frameRate);
    metadata.minFrameRate = av_q2d(facts.hasConstantRate ? facts.frameRate : facts.lowestRate);
    metadata.maxFrameRate = av_q2d(facts.hasConstantRate ? facts.frameRate : facts.highestRate);
    metadata.videoSampleCount = fetcher.frameCount();
    metadata.videoInfoCount = 1;
}

Aud::Metadata audioOf(AudioStreamFacts const& facts) {
    Aud::Metadata stream;
    stream.codec = LightweightString<char>(facts.codec);
    stream.channels = static_cast<std::uint32_t>(std::max(facts.channels, 0));
    stream.sampleRate = facts.sampleRate;
    stream.bitsPerSample = static_cast<std::uint32_t>(std::max(facts.bitsPerSample, 0));
    stream.bytesPerSample = (stream.bitsPerSample + 7) / 8;
    stream.isCompressed = !facts.codec.starts_with("pcm_");
    return stream;
}

/// As the container states it.
void describeAudio(StreamFacts const& facts, PlayFileMetadataRep& metadata) {
    for (AudioStreamFacts const& stream : facts.audio) {
        metadata.audioStreams.push_back(audioOf(stream));
        metadata.audioSampleCount = std::max(
            metadata.audioSampleCount, static_cast<std::uint64_t>(std::max<int64_t>(stream.sampleCount, 0)));
    }
    metadata.audioInfoCount = static_cast<std::uint32_t>(metadata.audioStreams.size());
}

void describeLanguages(StreamFacts const& facts, configb& config) {
    int number = 0;
    for (AudioStreamFacts const& stream : facts.audio) {
        set(config, "audio." + std::to_string(++number) + ".language", stream.language);
    }
}

void describeCoverArt(StreamFacts const& facts, configb& config) {
    int number = 0;
    for (CoverArt const& art : facts.coverArt) {
        std::string const prefix = "coverArt." + std::to_string(++number);
        set(config, prefix + ".codec", art.codec);
        set(config, prefix + ".width", std::to_string(art.width));
        set(config, prefix + ".height", std::to_string(art.height));
        set(config, prefix + ".data", toBase64(art.bytes));
    }
}

void describeForPeople(FrameFetcher const& fetcher, PlayFileMetadataRep& metadata) {
    StreamFacts const& facts = fetcher.facts();
    configb& config = metadata.extraConfig;
    char const* const pixelFormat = av_get_pix_fmt_name(facts.pixelFormat);
    double const frames = fetcher.frameCount();
    double const rate = av_q2d(facts.frameRate);
    set(config, "container", facts.format);
    set(config, "codec", facts.codec);
    set(config, "profile", facts.profile);
    set(config, "pixelFormat", pixelFormat != nullptr ? pixelFormat : "");
    set(config, "fieldOrder", nameOf(metadata.sampleData.fieldOrder));
    set(config, "bitRate", facts.bitRate > 0 ? std::to_string(facts.bitRate) : "");
    set(config, "duration", rate > 0.0 ? secondsText(frames / rate) : "");
    for (auto const& [key, value] : facts.tags) {
        set(config, "tag." + key, value);
    }
}

}  // namespace

void describe(FrameFetcher const& fetcher, PlayFileMetadataRep& metadata) {
    StreamFacts const& facts = fetcher.facts();
    describePicture(facts, metadata);
    describeTiming(fetcher, metadata);
    metadata.setReadStreaming(fetcher.isLongGop());
    describeForPeople(fetcher, metadata);
    describeAudio(facts, metadata);
    describeLanguages(facts, metadata.extraConfig);
    describeCoverArt(facts, metadata.extraConfig);
    metadata.editLabel =
        EditLabel(LightweightString<char>(facts.reel), LightweightString<char>(facts.startTimecode));
}

void describeDurations(FrameFetcher const& fetcher, FrameRateMap const* map, PlayFileMetadataRep& metadata) {
    FrameIndex const& index = fetcher.index();
    if (index.frameCount() < 2 || !hasAllTimes(index)) {
        return;
    }
    StreamFacts const& facts = fetcher.facts();
    auto const durations = FrameDurations::of(index, facts.timeBase, facts.endTime);
    std::string text;
    for (DurationCount const& count : histogramOf(durations)) {
        text +=
            (text.empty() ? "" : ", ") + secondsText(count.seconds) + " x " + std::to_string(count.frames);
    }
    configb& config = metadata.extraConfig;
    set(config, "frameDurations", text);
    if (!facts.hasConstantRate) {
        double const scale = durations.timeScale;
        set(config, "duration", secondsText(static_cast<double>(durations.total()) / scale));
    }
    if (map != nullptr) {
        metadata.frameRateMap = map->handler();
        set(config, "timelineFrames", std::to_string(map->timelineCount()));
    }
}

void describe(SoundFile const& file, PlayFileMetadataRep& metadata) {
    StreamFacts const& facts = file.facts();
    configb& config = metadata.extraConfig;
    set(config, "container", facts.format);
    set(config, "codec", facts.codec);
    set(config, "bitRate", facts.bitRate > 0 ? std::to_string(facts.bitRate) : "");
    for (auto const& [key, value] : facts.tags) {
        set(config, "tag." + key, value);
    }
    describeLanguages(facts, config);
    describeCoverArt(facts, config);
    countSound(file, metadata);
    metadata.editLabel =
        EditLabel(LightweightString<char>(facts.reel), LightweightString<char>(facts.startTimecode));
}

void countSound(SoundFile const& file, PlayFileMetadataRep& metadata) {
    metadata.audioSampleCount = static_cast<std::uint64_t>(file.sampleCount());
    metadata.audioInfoCount = static_cast<std::uint32_t>(file.tracks().size());
}

double timeOfFrame(FrameFetcher const& fetcher, std::uint32_t frame) {
    FrameIndex const& index = fetcher.index();
    int64_t const first = index.ptsOf(0);
    int64_t const time = index.ptsOf(frame);
    if (first == AV_NOPTS_VALUE || time == AV_NOPTS_VALUE) {
        double const rate = av_q2d(fetcher.facts().frameRate);
        return rate > 0.0 ? frame / rate : 0.0;
    }
    return static_cast<double>(av_sat_sub64(time, first)) * av_q2d(fetcher.facts().timeBase);
}

}  // namespace playfile_ffmpeg
