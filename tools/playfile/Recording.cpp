#include "tools/playfile/Recording.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/FrameFetcher.h"
#include "tools/playfile/SoundClip.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/Timeline.h"

namespace cli {
namespace {

constexpr char const* leaveOut = "none";
/// Samples of a channel that are read at once.
constexpr std::uint32_t blockSamples = 4096;
/// Frames and samples come in order.
constexpr unsigned oneThread = 1;

/// How many of `available` things lie in the section, of which `perSecond` come in a second.
std::uint64_t countOf(std::optional<double> seconds, double perSecond, std::uint64_t available) {
    return seconds ? std::min<std::uint64_t>(available, std::llround(*seconds * perSecond)) : available;
}

}  // namespace

Recording::Recording(Session& session, Clip const& clip, RecordingPlan const& plan, Take& take)
    : clip_(clip), take_(take) {
    static_cast<void>(clip.openAny());
    if (plan.videoFormat != leaveOut) {
        picture_ = clip.tryVideo();
    }
    if (plan.soundFormat != leaveOut) {
        sound_ = clip.trySound();
    }
    if (!picture_ && !sound_) {
        throw CommandError(inQuotes(clip.input().path()) +
                           " holds nothing of what is to be recorded; see --video and --sound");
    }
    if (picture_) {
        selectPicture(plan);
    }
    if (sound_) {
        selectSound(session, plan);
    }
}

void Recording::selectPicture(RecordingPlan const& plan) {
    PlayFileMetadataRep const& metadata = *picture_->metadata;
    Ox::FrameRate const rate = metadata.videoSequence.frameRate;
    double const framesPerSecond = Ox::getFramesPerSecond(rate);
    if (framesPerSecond <= 0.0) {
        throw CommandError(
            inQuotes(clip_.input().path()) +
            " doesn't say how many frames a second it has; record its sound with --video none");
    }
    Timeline const timeline(metadata);
    firstFrame_ = timeline.frameAt(plan.fromSeconds, clip_.input().path());
    frameCount_ = countOf(plan.seconds, framesPerSecond, timeline.frameCount() - firstFrame_);
    partCount_ =
        std::max(partCount_,
                 static_cast<std::uint64_t>(std::ceil(static_cast<double>(frameCount_) / framesPerSecond)));
    take_.addPicture(plan.videoFormat, rate, plan.options);
}

void Recording::selectSound(Session& session, RecordingPlan const& plan) {
    SampleSelection selection;
    selection.channels = ChannelSet::parse(plan.channels);
    selection.from = SamplePosition::parse(fixed(plan.fromSeconds, 6) + 's', "--from");
    ranges_ = selectChannels(session, clip_, *sound_, TimeScale(), selection);
    for (ChannelRange& range : ranges_) {
        range.count = countOf(plan.seconds, range.format.sampleRate, range.count);
        partCount_ = std::max(partCount_, static_cast<std::uint64_t>(std::ceil(
                                              static_cast<double>(range.count) / range.format.sampleRate)));
        take_.addChannel(plan.soundFormat, range.format, range.channel, plan.options);
    }
}

void Recording::run(Tell const& tell) {
    for (std::uint64_t part = 0; part < partCount_; ++part) {
        recordPictures(part);
        recordSamples(part);
        tell(part + 1, partCount_);
    }
}

/// Where a part ends, of a whole that all parts share evenly.
std::uint64_t Recording::upTo(std::uint64_t part, std::uint64_t whole) const {
    return whole * (part + 1) / partCount_;
}

void Recording::recordPictures(std::uint64_t part) {
    std::uint64_t const begin = part == 0 ? 0 : upTo(part - 1, frameCount_);
    std::vector<std::uint32_t> frames(upTo(part, frameCount_) - begin);
    std::iota(frames.begin(), frames.end(), static_cast<std::uint32_t>(firstFrame_ + begin));
    if (frames.empty()) {
        return;
    }
    PlayFileMetadataRep const& metadata = *picture_->metadata;
    FrameFetcher fetcher(clip_.videoCookie(), metadata, nativeFormat(metadata), oneThread);
    fetcher.run(
        frames,
        [this](std::uint32_t, Ox::Image::Surface const& surface) {
            take_.writePicture(surface);
            return std::string();
        },
        [this](FrameOutcome const& outcome) {
            if (!outcome.isGood) {
                throw CommandError("frame " + std::to_string(outcome.frame) + " of " +
                                   inQuotes(clip_.input().path()) +
                                   " cannot be read; the file may be damaged there, record up to it with "
                                   "--seconds");
            }
        });
}

void Recording::recordSamples(std::uint64_t part) {
    std::vector<ChannelRange> ranges = ranges_;
    for (ChannelRange& range : ranges) {
        std::uint64_t const begin = part == 0 ? 0 : upTo(part - 1, range.count);
        range.count = upTo(part, range.count) - begin;
        range.start += begin;
    }
    SampleFetcher fetcher(ranges, blockSamples, oneThread);
    std::vector<std::uint32_t> blocks(fetcher.getBlockCount());
    std::iota(blocks.begin(), blocks.end(), 0U);
    fetcher.run(blocks, [&](SampleFetcher::Samples const& samples) {
        ChannelRange const& range = ranges[samples.channelIndex];
        if (!samples.isGood) {
            throw CommandError("channel " + std::to_string(range.channel) + " of " +
                               inQuotes(clip_.input().path()) + " cannot be read from sample " +
                               std::to_string(range.start + samples.offset) +
                               " on; the file may be damaged there, record up to it with --seconds");
        }
        take_.writeSamples(samples.channelIndex, samples.bytes, samples.byteCount);
    });
}

}  // namespace cli
