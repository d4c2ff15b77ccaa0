#include "plugins/ffmpeg/StreamDecoder.h"

#include <algorithm>
#include <utility>

namespace playfile_ffmpeg {

/// A stretch of work: nobody closes the decoder meanwhile, and others are closed before and after.
class StreamDecoder::Work {
public:
    explicit Work(StreamDecoder& decoder) : keeper_(decoder.keeper_), scope_(decoder.lock_) {
        keeper_.use(decoder.shared_from_this());
        decoder.limitStore();
    }
    ~Work() {
        scope_.unlock();
        keeper_.trim();
    }
    Work(Work const&) = delete;
    Work& operator=(Work const&) = delete;

private:
    DecoderKeeper& keeper_;
    std::unique_lock<std::mutex> scope_;
};

/// A file that is open has a decoder, which has shown its first frame.
std::shared_ptr<StreamDecoder> StreamDecoder::make(std::unique_ptr<FrameFetcher> fetcher,
                                                   DecoderKeeper& keeper, std::uint64_t memoryBytes) {
    std::shared_ptr<StreamDecoder> decoder(new StreamDecoder(std::move(fetcher), keeper, memoryBytes));
    if (decoder->file().isLongGop()) {
        Work const work(*decoder);
    }
    return decoder;
}

StreamDecoder::StreamDecoder(std::unique_ptr<FrameFetcher> fetcher, DecoderKeeper& keeper,
                             std::uint64_t memoryBytes)
    : fetcher_(std::move(fetcher)), keeper_(keeper), memoryBytes_(memoryBytes) {}

void StreamDecoder::setMemory(std::uint64_t bytes) {
    memoryBytes_.store(bytes, std::memory_order_relaxed);
}

PictureRoom StreamDecoder::room() const {
    std::lock_guard const scope(lock_);
    return measureRoom();
}

PictureRoom StreamDecoder::measureRoom() const {
    std::uint64_t const bytes = std::min(memoryBytes_.load(std::memory_order_relaxed), keeper_.share());
    return PictureRoom::of(bytes, fetcher_->store().largestPicture());
}

void StreamDecoder::limitStore() {
    std::size_t const pictures = measureRoom().store;
    fetcher_->setStoreLimits({0, pictures, pictures});
}

void StreamDecoder::decode(std::vector<std::uint32_t> const& frames, ReadPattern const& pattern,
                           Deliver const& deliver) {
    Work const work(*this);
    for (std::size_t position = 0; position < frames.size(); ++position) {
        std::uint32_t const frame = frames[position];
        deliver(position, fetchWith(frame, pattern.keep(frame, measureRoom())));
    }
}

/// Nobody knows how far a decoder came that was left by an exception.
PicturePtr StreamDecoder::fetchWith(std::uint32_t frame, Keep const& keep) {
    try {
        return fetcher_->fetch(frame, keep);
    } catch (...) {
        fetcher_->closeDecoders();
        throw;
    }
}

PicturePtr StreamDecoder::fetch(std::uint32_t frame) {
    if (!file().isLongGop()) {
        std::lock_guard const scope(lock_);
        return fetcher_->fetch(frame);
    }
    Work const work(*this);
    return fetchWith(frame, {frame, frame, UINT32_MAX});
}

bool StreamDecoder::comesWith(std::uint32_t frame, std::uint32_t wanted) const {
    std::lock_guard const scope(lock_);
    if (fetcher_->store().find(wanted)) {
        return fetcher_->store().find(frame) != nullptr;
    }
    FrameIndex const& index = fetcher_->index();
    if (std::max(frame, wanted) >= index.frameCount()) {
        return false;
    }
    return index.startPacketFor(frame) == index.startPacketFor(wanted);
}

bool StreamDecoder::tryClose() {
    std::unique_lock const scope(lock_, std::try_to_lock);
    if (scope.owns_lock()) {
        fetcher_->closeDecoders();
    }
    return scope.owns_lock();
}

void StreamDecoder::tryShrink() {
    std::unique_lock const scope(lock_, std::try_to_lock);
    if (scope.owns_lock()) {
        limitStore();
        fetcher_->shrinkStore();
    }
}

FrameFetcher::Counters StreamDecoder::counters() const {
    std::lock_guard const scope(lock_);
    return fetcher_->counters();
}

std::size_t StreamDecoder::storedCount() const {
    std::lock_guard const scope(lock_);
    return fetcher_->store().count();
}

}  // namespace playfile_ffmpeg
