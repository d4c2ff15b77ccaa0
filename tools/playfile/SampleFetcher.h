#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "toolkit/catalogue/Cookie.h"
#include "toolkit/sound/AudioMetadata.h"
#include "tools/playfile/OrderedWork.h"
#include "tools/playfile/SampleRequest.h"

namespace cli {

/// A channel that is to be read, and which of its samples.
struct ChannelRange {
    /// Number in the file, from 1.
    std::uint8_t channel = 0;
    Cookie cookie;
    /// Index of the stream that holds it.
    std::uint32_t stream = 0;
    Aud::Metadata format;
    std::uint64_t start = 0;
    std::uint64_t count = 0;
};

/// Reads channels of a file through the cache in blocks, on several threads, see `OrderedWork`.
///
/// All channels of a block are asked for together, as a player does, so that the file is read once for all.
///
/// Threads  `run` blocks; `take` is called on threads of its own, one at a time, block by block and channel
///          by channel.
/// Errors   The first exception ends the work and leaves `run`.
class SampleFetcher {
public:
    /// One block of one channel.
    struct Samples {
        std::size_t channelIndex = 0;
        /// From the range's start.
        std::uint64_t offset = 0;
        bool isGood = false;
        /// Fewer than the block has where the channel ends before the file.
        void const* bytes = nullptr;
        std::size_t byteCount = 0;
    };
    using Take = std::function<void(Samples const& samples)>;

    /// @param blockSamples  samples of a channel that are asked for at once
    /// @param threads       from 1
    SampleFetcher(std::vector<ChannelRange> const& ranges, std::uint32_t blockSamples, unsigned threads);

    /// How many blocks the longest of the ranges has.
    [[nodiscard]] std::uint64_t getBlockCount() const;

    /// Reads the blocks of that list; a failed one is told like the others.
    void run(std::vector<std::uint32_t> const& blocks, Take const& take);

private:
    /// A request for each channel; empty where a channel has no samples in the block.
    using Requests = std::vector<std::unique_ptr<SampleRequest>>;
    struct Block {
        std::uint64_t offset = 0;
        Requests requests;
        std::vector<bool> isGood;
    };
    using Ticket = std::unique_ptr<Block>;

    [[nodiscard]] Ticket ask(std::uint32_t block) const;
    static Ticket finish(Ticket block);
    static void tell(Block const& block, Take const& take);

    std::vector<ChannelRange> const& ranges_;
    std::uint32_t const blockSamples_;
    OrderedWork<Ticket, Ticket> work_;
};

}  // namespace cli
