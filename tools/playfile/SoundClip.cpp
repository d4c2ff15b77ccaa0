#include "tools/playfile/SoundClip.h"

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr char const* timeReferenceKey = "tag.time_reference";

/// The stream that holds a channel of the file. @param channel  from 1
std::uint32_t streamOf(PlayFileMetadataRep const& metadata, std::uint32_t channel) {
    std::uint32_t stream = 0;
    std::uint32_t channelsBefore = 0;
    while (channelsBefore + metadata.audioStreams[stream].channels < channel) {
        channelsBefore += metadata.audioStreams[stream].channels;
        ++stream;
    }
    return stream;
}

void select(ChannelRange& range, std::uint64_t fileSamples, TimeScale const& scale,
            SampleSelection const& selection, std::string const& fileName) {
    range.start = selection.from.asPlace(range.format.sampleRate, scale);
    if (range.start >= fileSamples) {
        throw CommandError(inQuotes(fileName) + " has " + std::to_string(fileSamples) +
                           " samples; --from names sample " + std::to_string(range.start) +
                           ", behind its end");
    }
    std::uint64_t const available = fileSamples - range.start;
    range.count = selection.toEnd ? available : selection.count.asLength(range.format.sampleRate, scale);
    if (range.count > available) {
        throw CommandError(inQuotes(fileName) + " has only " + std::to_string(available) +
                           " samples from there; ask for fewer, or leave --count away to read to its end");
    }
    if (range.count == 0) {
        throw CommandError("--count names no samples; ask for one at least", exitUsage);
    }
}

/// Samples from midnight to a broadcast WAVE file's first one; 0 if it doesn't say.
std::uint64_t timeReferenceOf(PlayFileMetadataRep const& metadata) {
    LightweightString<char> text;
    std::uint64_t samples = 0;
    bool const isStated = metadata.extraConfig.in(timeReferenceKey, text) == 0;
    return isStated && parseNumber(text.str(), samples) ? samples : 0;
}

}  // namespace

std::vector<ChannelRange> selectChannels(Session& session, Clip const& clip, FileReadInstance const& file,
                                         TimeScale const& scale, SampleSelection const& selection) {
    PlayFileMetadataRep const& metadata = *file.metadata;
    std::string const& path = clip.input().path();
    std::vector<ChannelRange> ranges;
    for (std::uint8_t const channel : selection.channels.resolve(metadata.getTotalChannels(), path)) {
        ChannelRange range;
        range.channel = channel;
        range.cookie = clip.addChannel(session, channel);
        range.stream = streamOf(metadata, channel);
        range.format = metadata.audioStreams[range.stream];
        select(range, metadata.audioSampleCount, scale, selection, path);
        ranges.push_back(range);
    }
    return ranges;
}

TimeScale findTimeScale(Clip const& clip, FileReadInstance const& file, std::optional<Ox::FrameRate> rate) {
    Ox::Ptr<FileReadInstance> const picture = clip.tryVideo();
    PlayFileMetadataRep const& metadata = picture ? *picture->metadata : *file.metadata;
    TimeScale scale;
    scale.frameRate = rate.value_or(metadata.videoSequence.frameRate);
    LightweightString<char> const& start = metadata.editLabel.startTimecode();
    if (!start.empty() && Ox::getFramesPerSecond(scale.frameRate) > 0.0) {
        scale.startFrame = timecodeFrames(start.str(), scale.frameRate);
    } else {
        scale.startSample = timeReferenceOf(*file.metadata);
    }
    return scale;
}

}  // namespace cli
