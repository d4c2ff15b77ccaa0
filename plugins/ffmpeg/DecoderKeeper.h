#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

namespace playfile_ffmpeg {

/// What holds threads and memory for its next use, and does without at a price.
class KeptDecoder {
public:
    virtual ~KeptDecoder() = default;

    /// Gives threads and memory up; false, with nothing changed, if it is at work. Doesn't wait.
    virtual bool tryClose() = 0;

    /// Gives up the pictures that go beyond its share of the memory for all; nothing if it is at work, since
    /// it does so by itself before its next work. Doesn't wait.
    virtual void tryShrink() = 0;
};

/// Sees that only the decoders that were used last stay open, and that the pictures of all that are open share
/// a bounded memory.
///
/// Whoever takes up work says so, and when it has ended; in both cases the ones that were used the longest
/// ago are closed. One that is at work then stays until the next time. Each open decoder may use the same part of
/// the memory: when another one opens, the parts of the others become smaller.
///
/// Ownership    None: a decoder that goes is forgotten.
/// Threads      Any.
/// Lock order   `lock_` is held while nothing is closed. The caller may hold the lock of its own decoder.
class DecoderKeeper {
public:
    static constexpr std::uint64_t unlimited = UINT64_MAX;

    explicit DecoderKeeper(size_t mostOpen, std::uint64_t memoryBytes = unlimited)
        : mostOpen_(mostOpen), memoryBytes_(memoryBytes) {}

    /// That of the process, which keeps as many as the setting `streamingDecoders` says, with the memory of the
    /// setting `streamingStoresMiB`.
    static DecoderKeeper& shared();

    /// `decoder` is open and the one used last. It isn't closed or shrunk during this call.
    void use(std::shared_ptr<KeptDecoder> const& decoder);

    /// Closes what is too much.
    void trim();

    size_t openCount() const;

    /// Bytes of pictures that each open decoder may hold.
    std::uint64_t share() const { return share_.load(std::memory_order_relaxed); }

private:
    bool measureShare();
    void shrinkAllBut(std::shared_ptr<KeptDecoder> const& user);
    std::vector<std::shared_ptr<KeptDecoder>> takeSurplus();
    void forgetGone();

    size_t const mostOpen_;
    std::uint64_t const memoryBytes_;
    std::atomic<std::uint64_t> share_{memoryBytes_};
    mutable std::mutex lock_;
    std::list<std::weak_ptr<KeptDecoder>> kept_;  ///< The one used last in front.
};

}  // namespace playfile_ffmpeg
