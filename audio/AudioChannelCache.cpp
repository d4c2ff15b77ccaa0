#include "audio/AudioChannelCache.h"

#include <algorithm>
#include <limits>

namespace {

/// A buffer's bytes are a 32-bit number: no buffer holds a sample so far on.
constexpr std::uint64_t mostSkipped = std::numeric_limits<std::uint32_t>::max();

}  // namespace

bool AudioChannelCache::contains(AudioRequest& request) {
    ScopedLock const scope(lock_);
    auto const found = entries_.find(request.stream);
    if (found == entries_.end()) {
        return false;
    }
    CacheEntry const& entry = found->second;
    if (request.startSample < entry.startSample) {
        return false;
    }
    return entry.startSample + entry.numSamples - 1 >= request.startSample + request.numSamples - 1;
}

Aud::StreamBufferList& AudioChannelCache::getBuffers(AudioRequest& request) {
    ScopedLock const scope(lock_);
    CacheEntry& entry = entries_[request.stream];
    entry.startSample = request.startSample;
    entry.numSamples = request.numSamples;
    return entry.buffers;
}

void AudioChannelCache::addBuffers(unsigned int stream, unsigned long startSample,
                                   Aud::StreamBufferList list) {
    ScopedLock const scope(lock_);
    for (Aud::StreamBuffer& buffer : list) {
        buffer.setSampleCount(list.sampleCount);
    }
    CacheEntry& entry = entries_[stream];
    entry.numSamples = list.sampleCount;
    entry.startSample = startSample;
    entry.buffers = std::move(list);
}

/// A request that begins behind the used bytes, or before the entry, gets an empty view.
Aud::StreamBuffer AudioChannelCache::getResult(AudioRequest& request, unsigned int bytesPerSample) {
    ScopedLock const scope(lock_);
    CacheEntry const& entry = entries_[request.stream];
    if (request.channelInStream >= entry.buffers.size()) {
        return {};
    }
    Aud::StreamBuffer const& buffer = entry.buffers[request.channelInStream];
    if (request.startSample == entry.startSample || !buffer.getHolder()) {
        return buffer;
    }
    std::uint64_t const skip = request.startSample - entry.startSample;
    std::uint64_t const used = buffer.getUsed();
    std::uint64_t const skipBytes =
        skip > mostSkipped ? used : std::min<std::uint64_t>(used, skip * bytesPerSample);
    auto const view = Ox::makePtr<MemRef>(buffer.getHolder(), static_cast<std::uint32_t>(skipBytes),
                                          static_cast<std::uint32_t>(used - skipBytes));
    std::uint32_t const samples = buffer.getSampleCount();
    return {view, buffer.getTag(), false, skip > samples ? 0 : samples - static_cast<std::uint32_t>(skip),
            buffer.getSampleFormat()};
}
