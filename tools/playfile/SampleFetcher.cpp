#include "tools/playfile/SampleFetcher.h"

#include <algorithm>

namespace cli {
namespace {

/// Blocks that are asked for while one is waited for.
constexpr std::size_t blocksAhead = 3;

}  // namespace

SampleFetcher::SampleFetcher(std::vector<ChannelRange> const& ranges, std::uint32_t blockSamples,
                             unsigned threads)
    : ranges_(ranges), blockSamples_(blockSamples), work_(threads, blocksAhead) {}

std::uint64_t SampleFetcher::getBlockCount() const {
    std::uint64_t most = 0;
    for (ChannelRange const& range : ranges_) {
        most = std::max(most, range.count);
    }
    return (most + blockSamples_ - 1) / blockSamples_;
}

void SampleFetcher::run(std::vector<std::uint32_t> const& blocks, Take const& take) {
    work_.run(blocks.size(), {[&](std::size_t position) { return ask(blocks[position]); },
                              [](Ticket block, unsigned) { return finish(std::move(block)); },
                              [&](Ticket const& block) { tell(*block, take); }});
}

SampleFetcher::Ticket SampleFetcher::ask(std::uint32_t block) const {
    auto ticket = std::make_unique<Block>();
    ticket->offset = std::uint64_t{block} * blockSamples_;
    for (ChannelRange const& range : ranges_) {
        std::unique_ptr<SampleRequest>& request = ticket->requests.emplace_back();
        if (ticket->offset < range.count) {
            auto const count = static_cast<std::uint32_t>(
                std::min<std::uint64_t>(blockSamples_, range.count - ticket->offset));
            request = std::make_unique<SampleRequest>(range.cookie, range.start + ticket->offset, count);
        }
    }
    return ticket;
}

SampleFetcher::Ticket SampleFetcher::finish(Ticket block) {
    for (std::unique_ptr<SampleRequest> const& request : block->requests) {
        block->isGood.push_back(request && request->wait());
    }
    return block;
}

void SampleFetcher::tell(Block const& block, Take const& take) {
    for (std::size_t index = 0; index < block.requests.size(); ++index) {
        if (SampleRequest const* const request = block.requests[index].get()) {
            bool const isGood = block.isGood[index];
            take({index, block.offset, isGood, isGood ? request->bytes() : nullptr,
                  isGood ? request->byteCount() : 0});
        }
    }
}

}  // namespace cli
