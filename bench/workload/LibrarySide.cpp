#include "bench/workload/LibrarySide.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "bench/support/CountingIssuer.h"
#include "files/PlayFileCache.h"
#include "host/memory/MemoryCatalogue.h"
#include "playfile/playfile.h"
#include "toolkit/plugins/Plugin.h"
#include "video/VideoReadRequest.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using RequestPtr = Ox::Ptr<VideoReadRequest>;

/// Requests that a player has under way.
constexpr std::size_t framesAhead = 4;

/// A clip in the catalogue, and the reads of it.
class Clip {
public:
    Clip(std::string const& path, std::string const& pluginFolder) : cookie_(Ox::UUID::generate(), 'V', 0) {
        playfile_init();
        loadPlugins(fromUTF8(pluginFolder.c_str()));
        MemoryCatalogue::instance().add(cookie_, fromUTF8(path.c_str()));
    }

    [[nodiscard]] bool open() { return frameCount() != 0; }
    [[nodiscard]] std::uint32_t frameCount() {
        return static_cast<std::uint32_t>(PlayFileCache::getSampleCount(cookie_));
    }

    /// Empty if the frame was refused.
    RequestPtr ask(std::uint32_t frame) {
        RequestPtr request;
        OxResult const result = PlayFileCache::Shared()->videoReadRequest(
            request, cookie_, static_cast<int>(frame), false, resultDecompressed, DecodeFormat::getDefault(),
            issuer_.getProxy());
        isGood_ = isGood_ && result == oxSuccess;
        asked_ += result == oxSuccess ? 1 : 0;
        return request;
    }

    /// Waits until the read has ended and its status says so, which is a moment after its issuers were
    /// told: who asks for the same frame in between joins a read that tells nobody any more.
    ///
    /// A request that has joined a failed one shows that at once and tells nobody.
    void waitFor(RequestPtr const& request) {
        if (request && request->getRequestStatus() == requestFailed) {
            isGood_ = false;
            asked_ = issuer_.endedCount();
        }
        waitForAllBut(0);
        while (request && request->getRequestStatus() == requestTakenUp) {
            std::this_thread::yield();
        }
        waitForPicture(request);
    }

    /// Waits for the decoder: a read of a streamed file ends before its picture is there.
    void waitForPicture(RequestPtr const& request) {
        Ox::Ptr<FrameBufferRep> const buffer =
            request ? request->getResultBuffer() : Ox::Ptr<FrameBufferRep>();
        Ox::Image::Surface picture;
        bool const isThere = buffer && buffer->getSurface(0, picture) &&
                             picture.wait(iThreadEvent::noTimeLimit) == Ox::Image::Surface::waitFinished;
        isGood_ = isGood_ && isThere && picture.valid();
    }

    /// Waits until all but `count` of the reads that were asked for have told their issuer.
    void waitForAllBut(std::uint64_t count) { issuer_.waitFor(asked_ > count ? asked_ - count : 0); }

    [[nodiscard]] bool isGood() const { return isGood_ && issuer_.failedCount() == 0; }

private:
    Cookie cookie_;
    CountingIssuer issuer_;
    std::uint64_t asked_ = 0;
    bool isGood_ = true;
};

/// Asks for a frame when the picture of the one `framesAhead` before it is there.
void readAhead(Clip& clip, std::vector<std::uint32_t> const& frames) {
    std::vector<RequestPtr> underWay(framesAhead);
    for (std::size_t i = 0; i < frames.size() + framesAhead; ++i) {
        RequestPtr& oldest = underWay[i % framesAhead];
        if (i >= framesAhead && i - framesAhead < frames.size()) {
            clip.waitForAllBut(std::min(framesAhead, frames.size() - (i - framesAhead)) - 1);
            clip.waitForPicture(oldest);
        }
        oldest = i < frames.size() ? clip.ask(frames[i]) : RequestPtr();
    }
}

void readOneByOne(Clip& clip, std::vector<std::uint32_t> const& frames) {
    for (std::uint32_t const frame : frames) {
        RequestPtr const request = clip.ask(frame);
        clip.waitFor(request);
    }
}

}  // namespace

Sample runLibrary(std::string const& path, std::string const& pluginFolder, eCase which,
                  std::vector<std::uint32_t> const& frames) {
    Sample sample;
    Clip clip(path, pluginFolder);
    if (which != eCase::openAndFirst && !clip.open()) {
        return sample;
    }
    RequestPtr held;
    if (which == eCase::heldAgain) {
        held = clip.ask(frames.front());
        clip.waitFor(held);
    }
    auto const start = Clock::now();
    if (which == eCase::inOrder) {
        readAhead(clip, frames);
    } else {
        readOneByOne(clip, frames);
    }
    sample.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    sample.isGood = clip.isGood();
    sample.reads = static_cast<std::uint32_t>(frames.size());
    sample.peakBytes = peakResidentBytes();
    return sample;
}

std::uint32_t countFrames(std::string const& path, std::string const& pluginFolder) {
    return Clip(path, pluginFolder).frameCount();
}

}  // namespace bench
