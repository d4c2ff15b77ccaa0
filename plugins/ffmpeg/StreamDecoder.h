#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "plugins/ffmpeg/DecoderKeeper.h"
#include "plugins/ffmpeg/FrameFetcher.h"
#include "plugins/ffmpeg/ReadPattern.h"

namespace playfile_ffmpeg {

/// Decodes the frames of one file on whichever thread, within a bound of memory, and gives its decoder up
/// when others are used.
///
/// Threads      Any; one decodes at a time.
/// Lock order   Its own lock, that of the `DecoderKeeper`. Of another decoder the lock is only tried.
/// Errors       A frame that can't be decoded is empty. What is thrown, for want of memory above all, says
///              nothing about the frame and leaves the decoder closed.
class StreamDecoder : public KeptDecoder, public std::enable_shared_from_this<StreamDecoder> {
public:
    /// Takes each frame's picture in turn, empty if there is none.
    using Deliver = std::function<void(std::size_t position, PicturePtr const& picture)>;

    /// @param memoryBytes  that the pictures of its store and of two batches may take together, if its share of
    ///                     the keeper's memory is no less
    static std::shared_ptr<StreamDecoder> make(std::unique_ptr<FrameFetcher> fetcher, DecoderKeeper& keeper,
                                               std::uint64_t memoryBytes);

    /// What is constant once the file is open: its facts, frames and times.
    FrameFetcher const& file() const { return *fetcher_; }

    void setMemory(std::uint64_t bytes);
    /// As the memory and the pictures that have been seen allow.
    PictureRoom room() const;

    /// Decodes frames in this order, which are asked for in this way.
    void decode(std::vector<std::uint32_t> const& frames, ReadPattern const& pattern, Deliver const& deliver);
    /// One frame for who reads without batches.
    PicturePtr fetch(std::uint32_t frame);

    /// True if `frame` is had without further effort once frame `wanted` is.
    bool comesWith(std::uint32_t frame, std::uint32_t wanted) const;

    bool tryClose() override;
    void tryShrink() override;

    FrameFetcher::Counters counters() const;
    /// Pictures that are stored.
    std::size_t storedCount() const;

private:
    class Work;

    StreamDecoder(std::unique_ptr<FrameFetcher> fetcher, DecoderKeeper& keeper, std::uint64_t memoryBytes);

    PicturePtr fetchWith(std::uint32_t frame, Keep const& keep);
    PictureRoom measureRoom() const;
    void limitStore();

    std::unique_ptr<FrameFetcher> const fetcher_;
    DecoderKeeper& keeper_;
    std::atomic<std::uint64_t> memoryBytes_;
    mutable std::mutex lock_;  ///< Of the fetcher. Held while decoding.
};

}  // namespace playfile_ffmpeg
