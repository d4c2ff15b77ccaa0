#include "plugins/ffmpeg/DecoderKeeper.h"

#include <algorithm>

#include "toolkit/services/Settings.h"

namespace playfile_ffmpeg {
namespace {

constexpr int defaultOpenDecoders = 8;
constexpr int mostOpenDecoders = 1000;

constexpr int defaultStoresMiB = 768;
constexpr int mostStoresMiB = 1 << 20;

using Entry = std::weak_ptr<KeptDecoder>;

/// Compares without a hold on the decoder, which mustn't go under the lock.
bool isFor(Entry const& entry, std::shared_ptr<KeptDecoder> const& decoder) {
    return !entry.owner_before(decoder) && !decoder.owner_before(entry);
}

}  // namespace

/// Never destroyed: at the end of the process a file that a static object of the program holds is still being
/// decoded when the plug-in's own static objects go.
DecoderKeeper& DecoderKeeper::shared() {
    static DecoderKeeper& keeper = *new DecoderKeeper(
        static_cast<size_t>(config_int("streamingDecoders", defaultOpenDecoders, 1, mostOpenDecoders)),
        static_cast<std::uint64_t>(config_int("streamingStoresMiB", defaultStoresMiB, 0, mostStoresMiB))
            << 20);
    return keeper;
}

void DecoderKeeper::use(std::shared_ptr<KeptDecoder> const& decoder) {
    {
        std::lock_guard const scope(lock_);
        forgetGone();
        kept_.remove_if([&](Entry const& entry) { return isFor(entry, decoder); });
        kept_.push_front(decoder);
    }
    trim();
    if (measureShare()) {
        shrinkAllBut(decoder);
    }
}

/// True if the part of each became smaller.
bool DecoderKeeper::measureShare() {
    std::uint64_t const before = share();
    std::uint64_t const now = memoryBytes_ / std::max<size_t>(openCount(), 1);
    share_.store(now, std::memory_order_relaxed);
    return now < before;
}

void DecoderKeeper::shrinkAllBut(std::shared_ptr<KeptDecoder> const& user) {
    std::vector<std::shared_ptr<KeptDecoder>> others;
    {
        std::lock_guard const scope(lock_);
        for (Entry const& entry : kept_) {
            if (std::shared_ptr<KeptDecoder> decoder = entry.lock(); decoder && decoder != user) {
                others.push_back(std::move(decoder));
            }
        }
    }
    for (std::shared_ptr<KeptDecoder> const& decoder : others) {
        decoder->tryShrink();
    }
}

/// One that is at work is put back as the one that was used the longest ago, unless it has come by itself.
void DecoderKeeper::trim() {
    for (std::shared_ptr<KeptDecoder> const& decoder : takeSurplus()) {
        if (decoder->tryClose()) {
            continue;
        }
        std::lock_guard const scope(lock_);
        auto const isOfThis = [&](Entry const& entry) { return isFor(entry, decoder); };
        if (std::none_of(kept_.begin(), kept_.end(), isOfThis)) {
            kept_.push_back(decoder);
        }
    }
}

std::vector<std::shared_ptr<KeptDecoder>> DecoderKeeper::takeSurplus() {
    std::vector<std::shared_ptr<KeptDecoder>> surplus;
    std::lock_guard const scope(lock_);
    forgetGone();
    while (kept_.size() > mostOpen_) {
        if (std::shared_ptr<KeptDecoder> decoder = kept_.back().lock()) {
            surplus.push_back(std::move(decoder));
        }
        kept_.pop_back();
    }
    return surplus;
}

void DecoderKeeper::forgetGone() {
    kept_.remove_if([](Entry const& entry) { return entry.expired(); });
}

size_t DecoderKeeper::openCount() const {
    std::lock_guard const scope(lock_);
    return kept_.size();
}

}  // namespace playfile_ffmpeg
