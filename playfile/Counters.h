#pragma once

#include <atomic>
#include <cstdint>

/// What the library has done since the process began, for those who look inside.
///
/// Threads  Relaxed atomics: each number is exact, but two read one after the other needn't match.
struct PlayFileCounters {
    std::atomic<std::uint64_t> cacheHits{0};
    std::atomic<std::uint64_t> filesOpened{0};
    std::atomic<std::uint64_t> opensFailed{0};
    std::atomic<std::uint64_t> filesEvicted{0};
    std::atomic<std::uint64_t> requestsQueued{0};
    std::atomic<std::uint64_t> requestsMerged{0};
    std::atomic<std::uint64_t> requestsDropped{0};
    std::atomic<std::uint64_t> framesRead{0};
    std::atomic<std::uint64_t> framesFailed{0};
    /// Runs of frames that readers of streamed files began, those that were found decoded already, and
    /// frames that were handed out of a run that was held.
    std::atomic<std::uint64_t> streamBatches{0};
    std::atomic<std::uint64_t> streamDoubleDecodes{0};
    std::atomic<std::uint64_t> streamFramesHeld{0};
    /// Pictures that came out of decoders, wanted ones and those on the way to them; the readers count them.
    std::atomic<std::uint64_t> framesDecoded{0};
    std::atomic<std::uint64_t> preOpensQueued{0};
    /// What came of those, and of those that came after the service's end.
    std::atomic<std::uint64_t> preOpensOpened{0};
    std::atomic<std::uint64_t> preOpensFailed{0};
    std::atomic<std::uint64_t> audioRequestsQueued{0};
    std::atomic<std::uint64_t> audioRequestsDropped{0};
    /// Requests that were served from the channels that an earlier read had fetched.
    std::atomic<std::uint64_t> audioChannelHits{0};
    /// Reads of a stream, for all of its channels.
    std::atomic<std::uint64_t> audioStreamReads{0};
    /// Requests that ended with their samples, and those that failed.
    std::atomic<std::uint64_t> audioRequestsRead{0};
    std::atomic<std::uint64_t> audioReadsFailed{0};

    static void add(std::atomic<std::uint64_t>& counter) { counter.fetch_add(1, std::memory_order_relaxed); }
};

/// The counters of this process.
[[nodiscard]] PlayFileCounters& playFileCounters() noexcept;
