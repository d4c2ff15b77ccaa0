#include "bench/soak/Reads.h"

#include <algorithm>

namespace soak {
namespace {

constexpr std::uint32_t surfacePatienceMs = 120000;

/// A read may bring more, and how much more depends on which reads came before it.
std::size_t bytesAsked(AudioReadRequest const& request) {
    return std::size_t{request.numSamples} * request.getAudioMetadata()[request.stream].bytesPerSample;
}

}  // namespace

void Waiter::requestCompleted(Ox::Ptr<iObject>&, RequestStatus) {
    std::scoped_lock const scope(lock_);
    told_.notify_all();
}

void PictureReads::ask(std::uint32_t frame) {
    Ox::Ptr<VideoReadRequest> request;
    OxResult const result =
        PlayFileCache::Shared()->videoReadRequest(request, clip_.cookie(), static_cast<int>(frame), false,
                                                  resultDecompressed, DecodeFormat(), waiter_.getProxy());
    Tally::add(result == oxSuccess ? tally_.picturesAsked : tally_.refused);
    if (result == oxSuccess) {
        requests_.push_back(request);
    }
}

void PictureReads::drop() {
    Tally::add(tally_.cancelled, requests_.size());
    requests_.clear();
}

void PictureReads::finish() {
    for (Ox::Ptr<VideoReadRequest> const& request : requests_) {
        if (waiter_.waitFor(*request)) {
            compare(*request);
        } else {
            tally_.fault("frame " + std::to_string(request->frame) + " of " + clip_.path + " doesn't come");
        }
    }
    requests_.clear();
}

/// A surface of a streamed file may fill in after its read has ended.
void PictureReads::compare(VideoReadRequest const& request) {
    Ox::Image::Surface surface;
    bool const isRead =
        request.getRequestStatus() == requestComplete && request.getResultBuffer()->getSurface(0, surface);
    if (isRead && surface.wait(surfacePatienceMs) != Ox::Image::Surface::waitFinished) {
        tally_.fault("the pixels of frame " + std::to_string(request.frame) + " of " + clip_.path +
                     " don't come");
        return;
    }
    std::uint64_t const sum = isRead ? sumOf(surface) : sumOfNothing;
    Tally::add(sum == sumOfNothing ? tally_.unreadable : tally_.picturesCompared);
    if (!clip_.isAsBefore(request.frame, 1, sum)) {
        tally_.fault("frame " + std::to_string(request.frame) + " of " + clip_.path +
                     (sum == sumOfNothing ? " can't be read any more" : " isn't what it was"));
    }
}

void SoundReads::ask(std::uint32_t block) {
    for (unsigned channel = 1; channel <= clip_.channelCount(); ++channel) {
        askChannel(block, channel);
    }
}

void SoundReads::askChannel(std::uint32_t block, unsigned channel) {
    Ox::Ptr<AudioReadRequest> request;
    std::uint64_t const start = std::uint64_t{block} * SoakClip::blockSamples;
    OxResult const result = PlayFileCache::Shared()->audioReadRequest(request, clip_.cookie(channel), start,
                                                                      SoakClip::blockSamples, levelOriginal,
                                                                      waiter_.getProxy(), true);
    Tally::add(result == oxSuccess ? tally_.soundsAsked : tally_.refused);
    if (result == oxSuccess) {
        request->file->queueReadRequest(request);
        requests_.push_back({request, block, channel});
    }
}

void SoundReads::drop() {
    Tally::add(tally_.cancelled, requests_.size());
    requests_.clear();
}

void SoundReads::finish() {
    for (Asked const& asked : requests_) {
        if (waiter_.waitFor(*asked.request)) {
            compare(asked);
        } else {
            tally_.fault("sound of " + clip_.path + " doesn't come");
        }
    }
    requests_.clear();
}

void SoundReads::compare(Asked const& asked) {
    AudioReadRequest const& request = *asked.request;
    bool const isRead = request.getRequestStatus() == requestComplete;
    std::size_t const size = std::min(std::size_t{request.getUsed()}, bytesAsked(request));
    std::uint64_t const sum = !isRead           ? sumOfNothing
                              : clip_.isExact() ? sumOf(request.getBuffer(), size)
                                                : size + sumOfNothing + 1;
    Tally::add(isRead ? tally_.soundsCompared : tally_.unreadable);
    if (!clip_.isAsBefore(asked.block, asked.channel, sum)) {
        tally_.fault("block " + std::to_string(asked.block) + ", channel " + std::to_string(asked.channel) +
                     " of " + clip_.path + (isRead ? " isn't what it was" : " can't be read any more"));
    }
}

}  // namespace soak
