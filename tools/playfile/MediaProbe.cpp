#include "tools/playfile/MediaProbe.h"

#include <algorithm>
#include <array>

#include "files/PlayFileCache.h"
#include "toolkit/edit/Edit.h"
#include "tools/playfile/ClipMaker.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::uint32_t mostChannels = Cookie::wholeClip - 1;
constexpr unsigned firstAudioStream = 0;

Ox::Ptr<FileReadInstance> openFor(OpenType type, Cookie const& clip, std::string const& path) {
    bool const isVideo = type == OpenType::video;
    Cookie const cookie = convertCookie(clip, isVideo ? 'V' : 'S', isVideo ? 0 : 1);
    return PlayFileCache::Shared()->open(wideName(path), cookie, DecodeFormat::getDefault(), type,
                                         firstAudioStream);
}

/// What a clip hasn't much use for is not asked for first: a failure would be remembered.
Ox::Ptr<FileReadInstance> open(NewClip const& clip, std::string const& path) {
    std::array<OpenType, 2> order = {OpenType::video, OpenType::audio};
    if (clip.record.videoChannels == 0) {
        std::swap(order[0], order[1]);
    }
    for (OpenType const type : order) {
        if (Ox::Ptr<FileReadInstance> file = openFor(type, clip.cookie, path)) {
            return file;
        }
    }
    return {};
}

void describeVideo(ClipRecord& record, PlayFileMetadataRep const& metadata) {
    Ox::FrameRate const rate = metadata.videoSequence.frameRate;
    if (rate.numerator != 0 && !record.isImage) {
        record.attributes["frameRate"] =
            LightweightString<char>(std::to_string(rate.numerator) + "/" + std::to_string(rate.denominator));
        record.attributes["frames"] = LightweightString<char>(std::to_string(metadata.videoSampleCount));
    }
}

void describeSound(ClipRecord& record, PlayFileMetadataRep const& metadata) {
    record.audioStreams = metadata.audioStreams;
    if (!metadata.audioStreams.empty()) {
        record.audioInputRate = Aud::SampleRate(metadata.audioStreams.front().sampleRate);
    }
}

}  // namespace

bool probeClip(NewClip& clip, std::string const& path) {
    Ox::Ptr<FileReadInstance> const file = open(clip, path);
    if (!file) {
        return false;
    }
    PlayFileMetadataRep const& metadata = *file->metadata;
    std::uint32_t const videoChannels = std::min<std::uint32_t>(metadata.videoInfoCount, 1);
    std::uint32_t const audioChannels = std::min(metadata.getTotalChannels(), mostChannels);
    if (videoChannels + audioChannels == 0) {
        return false;
    }
    for (auto& each : clip.media) {
        each.second.original->streamCount = metadata.videoInfoCount + metadata.audioInfoCount;
    }
    ClipMaker::setChannels(clip, videoChannels, audioChannels);
    clip.record.logType = clip.record.isImage ? logImage : logShot;
    describeVideo(clip.record, metadata);
    describeSound(clip.record, metadata);
    return true;
}

}  // namespace cli
