#pragma once

#include <map>

#include "audio/AudioReadRequest.h"
#include "ole/os/Locks.h"
#include "toolkit/sound/StreamBufferList.h"

/// Remembers the most recent read of each audio stream of one file: one buffer per channel.
///
/// A stream is always read for all of its channels while a request names only one, so that the requests
/// for the other channels at that position, and those for parts of the range, are served from here.
/// There is one entry a stream; each read replaces it whole, and nothing else lets go of it.
///
/// Ownership  An entry shares the memory of its samples with those to whom results were handed: these
///            stay valid after the entry has been replaced. What was handed out is never written again.
/// Threads    Any.
/// Lock order `lock_` is also the reader's lock, held for a whole read; the issuers' lock is taken under it.
/// Units      Samples of every channel of the stream.
class AudioChannelCache {
public:
    AudioChannelCache() = default;
    AudioChannelCache(AudioChannelCache const&) = delete;
    AudioChannelCache& operator=(AudioChannelCache const&) = delete;

    /// True if the stream's entry covers the whole of the request. It creates nothing.
    ///
    /// Deliberate  The last samples are compared as unsigned numbers: an entry of 0 samples at 0 covers
    ///             every request.
    [[nodiscard]] bool contains(AudioRequest& request);

    /// Makes the stream's entry one of the request's range, and hands out its buffers to be filled in
    /// place. For readers that decode straight into the cache, which hold the lock meanwhile.
    [[nodiscard]] Aud::StreamBufferList& getBuffers(AudioRequest& request);

    /// Stores a read: each buffer's sample count becomes the list's.
    void addBuffers(unsigned int stream, unsigned long startSample, Aud::StreamBufferList list);

    /// The channel's samples from the request's position to the end of the read, which may be more than
    /// the request asked for. The memory is shared. Empty for a channel that the entry doesn't have.
    ///
    /// Deliberate  A stream without an entry gets one of 0 samples at 0.
    [[nodiscard]] Aud::StreamBuffer getResult(AudioRequest& request, unsigned int bytesPerSample);

protected:
    CriticalSection lock_{eLockRank::audioReader, "AudioChannelCache"};

private:
    /// One read of one stream.
    struct CacheEntry {
        Aud::StreamBufferList buffers;
        std::uint64_t startSample = 0;
        std::uint32_t numSamples = 0;
    };

    std::map<std::uint32_t, CacheEntry> entries_ PLAYFILE_GUARDED_BY(lock_);
};
