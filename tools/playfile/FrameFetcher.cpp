#include "tools/playfile/FrameFetcher.h"

#include <algorithm>
#include <thread>

#include "toolkit/image/Format.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Interrupt.h"

namespace cli {
namespace {

/// Bytes that the pictures of frames asked for ahead may take.
constexpr std::uint64_t aheadBytes = 64U << 20;
/// A generous guess at the bytes of a pixel, whatever the format.
constexpr std::uint64_t bytesPerPixel = 4;
constexpr std::uint64_t leastAhead = 2;
constexpr std::uint64_t mostAhead = 16;
constexpr std::uint16_t rgbBitsPerComponent = 8;
constexpr std::uint16_t rgbBitsPerPixel = 24;

std::size_t aheadFor(DecodeFormat const& format) {
    std::uint64_t const pictureBytes = std::uint64_t(format.getWidth()) * format.getHeight() * bytesPerPixel;
    return std::clamp(aheadBytes / std::max<std::uint64_t>(pictureBytes, 1), leastAhead, mostAhead);
}

}  // namespace

FrameFetcher::FrameFetcher(Cookie const& cookie, PlayFileMetadataRep const& metadata,
                           DecodeFormat const& format, unsigned threads)
    : cookie_(cookie),
      format_(format),
      threads_(metadata.frameGrouped ? 1 : threads),
      ahead_(metadata.frameGrouped ? 0 : aheadFor(format)) {}

FrameFetcher::~FrameFetcher() = default;

void FrameFetcher::run(std::vector<std::uint32_t> const& frames, Work const& work, Tell const& tell) {
    nextToAsk_ = 0;
    nextToTell_ = 0;
    Job const job{frames, work, tell};
    {
        std::vector<std::jthread> servers;
        for (unsigned thread = 0; thread < threads_; ++thread) {
            servers.emplace_back([this, &job, thread] { serve(job, thread); });
        }
    }
    asked_.clear();
    untold_.clear();
    if (std::exception_ptr const error = std::exchange(error_, nullptr)) {
        isStopped_ = false;
        std::rethrow_exception(error);
    }
}

void FrameFetcher::serve(Job const& job, unsigned thread) noexcept {
    try {
        Ticket ticket;
        while (take(job, ticket)) {
            FrameOutcome outcome;
            outcome.frame = ticket.request->frame();
            outcome.thread = thread;
            Ox::Image::Surface surface;
            outcome.isGood = finishRequest(ticket.request, surface);
            if (outcome.isGood) {
                outcome.text = job.work(outcome.frame, surface);
            }
            ticket.request.reset();
            finish(job, ticket.position, std::move(outcome));
        }
    } catch (...) {
        fail(std::current_exception());
    }
}

/// False if there is no frame left.
bool FrameFetcher::take(Job const& job, Ticket& ticket) {
    std::lock_guard const scope(askMutex_);
    checkForInterrupt();
    if (isStopped_) {
        return false;
    }
    askAhead(job);
    if (asked_.empty()) {
        return false;
    }
    ticket = std::move(asked_.front());
    asked_.pop_front();
    return true;
}

void FrameFetcher::askAhead(Job const& job) {
    while (nextToAsk_ < job.frames.size() && asked_.size() <= ahead_) {
        asked_.push_back(
            {nextToAsk_, std::make_unique<FrameRequest>(cookie_, job.frames[nextToAsk_], format_)});
        ++nextToAsk_;
    }
}

void FrameFetcher::finish(Job const& job, std::size_t position, FrameOutcome outcome) {
    std::lock_guard const scope(tellMutex_);
    untold_.emplace(position, std::move(outcome));
    while (!untold_.empty() && untold_.begin()->first == nextToTell_) {
        FrameOutcome const next = std::move(untold_.begin()->second);
        untold_.erase(untold_.begin());
        ++nextToTell_;
        job.tell(next);
    }
}

void FrameFetcher::fail(std::exception_ptr const& error) {
    std::lock_guard const scope(askMutex_);
    isStopped_ = true;
    if (!error_) {
        error_ = error;
    }
}

DecodeFormat nativeFormat(PlayFileMetadataRep const& metadata) {
    DecodeFormat format = DecodeFormat::getDefault();
    format.setWidth(metadata.image.getWidth());
    format.setHeight(metadata.image.getHeight());
    return format;
}

DecodeFormat rgbFormat(PlayFileMetadataRep const& metadata, std::uint32_t width, std::uint32_t height) {
    DecodeFormat format = nativeFormat(metadata);
    if (width != 0 && height != 0) {
        format.setWidth(width);
        format.setHeight(height);
    }
    format.setDataFormat(Ox::Image::rgb24);
    format.setBitsPerComponent(rgbBitsPerComponent);
    format.setBitsPerPixel(rgbBitsPerPixel);
    return format;
}

}  // namespace cli
