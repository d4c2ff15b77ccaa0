/// The road of a channel's samples from the caller's call to a request; the caller queues it.
#include <algorithm>
#include <array>
#include <limits>
#include <numeric>

#include "audio/AudioReadRequest.h"
#include "files/PlayFileCache.h"
#include "toolkit/catalogue/MaterialInfo.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/ResourceText.h"

namespace {

/// Reads of this size are enlarged to a run of blocks of this size.
constexpr std::uint32_t blockSamples = 4096;
constexpr std::uint32_t mostBlocks = 64;

/// The runs of the frame sizes that are in use, in blocks.
constexpr std::array<std::array<std::uint32_t, 2>, 13> blocksOfFrameSize{{
    {0, 1},
    {64, 64},
    {240, 15},
    {384, 3},
    {512, 8},
    {576, 9},
    {960, 15},
    {1024, 4},
    {1152, 9},
    {1536, 3},
    {2048, 4},
    {4096, 4},
    {4608, 9},
}};

/// The blocks of a run that holds whole frames.
std::uint32_t blocksFor(std::uint32_t frameSize) {
    for (auto const& [size, blocks] : blocksOfFrameSize) {
        if (size == frameSize) {
            return blocks;
        }
    }
    std::uint64_t const run = std::lcm(std::uint64_t{frameSize}, std::uint64_t{blockSamples});
    return static_cast<std::uint32_t>(std::clamp<std::uint64_t>(run / blockSamples, 1, mostBlocks));
}

/// The samples to fetch, so that a compressed stream is read by whole frames.
std::uint64_t fetchSize(Aud::Metadata const& format, std::uint64_t start, std::uint32_t count) {
    if (!format.isCompressedFormat()) {
        return count;
    }
    std::uint32_t const frameSize = format.samplesPerCodecFrame;
    if (count == blockSamples) {
        return std::uint64_t{blockSamples} * blocksFor(frameSize);
    }
    std::uint64_t const excess = frameSize == 0 ? 0 : (start + count) % frameSize;
    return excess == 0 ? count : count + (frameSize - excess);
}

/// Finds the stream that holds a channel of the file.
///
/// A channel that the file doesn't have is served by its first channel.
bool findChannel(PlayFileMetadataRep const& metadata, AudioRequest& request) {
    std::vector<Aud::Metadata> const& streams = metadata.audioStreams;
    request.stream = 0;
    request.channelInStream = 0;
    if (request.channel < metadata.getTotalChannels()) {
        std::uint64_t channelsBefore = 0;
        while (request.stream < streams.size() &&
               channelsBefore + streams[request.stream].channels <= request.channel) {
            channelsBefore += streams[request.stream].channels;
            ++request.stream;
        }
        request.channelInStream = request.channel - static_cast<std::uint32_t>(channelsBefore);
    }
    return request.stream < streams.size() && request.channelInStream < streams[request.stream].channels;
}

std::uint32_t clipped(std::uint64_t count, std::uint64_t available) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::min({count, available, most}));
}

OxResult failed(OxResult code) {
    LogBoth("Audio Read request failed: %s\n", resourceStr(code).c_str());
    return code;
}

}  // namespace

OxResult PlayFileCache::audioReadRequest(Ox::Ptr<AudioReadRequest>& result, Cookie const& cookie,
                                         unsigned long start, unsigned int count, eProxyLevel proxyLevel,
                                         Ox::Ptr<ReadRequestIssuer::Proxy> issuer, bool startIsAbsolute) {
    TraceSlice slice(AudioReadRequest::traceCategory, "audioReadRequest");
    slice.with("channel", cookie.channel()).with("sample", static_cast<std::int64_t>(start));
    if (cookie.channel() == 0) {
        return failed(oxFailure);
    }
    DecodeFormat const format(proxyLevel);
    Ox::Ptr<FileReadInstance> file = open(cookie, format, 0);
    AudioRequest request;
    request.channel = cookie.channel() - 1U;
    if (!file || !findChannel(*file->metadata, request)) {
        return failed(oxAudioRequestCannotBeServed);
    }
    file = open(cookie, format, request.stream);
    if (!file) {
        return failed(oxAudioRequestCannotBeServed);
    }
    request.startSample = start;
    if (!startIsAbsolute) {
        request.startSample +=
            static_cast<std::uint64_t>(std::int64_t{MaterialInfo::get_start_offset(cookie)});
    }
    PlayFileMetadataRep const& metadata = *file->metadata;
    if (request.startSample >= metadata.audioSampleCount || request.stream >= metadata.audioStreams.size()) {
        return failed(oxAudioRequestCannotBeServed);
    }
    std::uint64_t const available = metadata.audioSampleCount - request.startSample;
    request.numSamples = clipped(count, available);
    std::uint32_t const samplesToFetch =
        clipped(fetchSize(metadata.audioStreams[request.stream], request.startSample, count), available);
    result = Ox::makePtr<AudioReadRequest>(file, request, samplesToFetch, issuer);
    slice.about(result->number).of(file->filename);
    return oxSuccess;
}
