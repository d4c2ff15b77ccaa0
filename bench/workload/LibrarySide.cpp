#include "bench/workload/LibrarySide.h"

#include <algorithm>
#include <memory>
#include <thread>

#include "bench/support/CountingIssuer.h"
#include "bench/support/Footprint.h"
#include "bench/support/LinkFolder.h"
#include "files/PlayFileCache.h"
#include "host/memory/MemoryCatalogue.h"
#include "playfile/Counters.h"
#include "playfile/playfile.h"
#include "toolkit/plugins/Plugin.h"
#include "video/FilePreOpen.h"
#include "video/VideoReadRequest.h"

namespace bench {
namespace {

using RequestPtr = Ox::Ptr<VideoReadRequest>;

/// Requests that a player has under way.
constexpr std::size_t framesAhead = 4;

/// A clip in the catalogue, and the reads of it.
class Clip {
public:
    explicit Clip(std::string const& path) : cookie_(Ox::UUID::generate(), 'V', 0) {
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

    [[nodiscard]] Ox::Ptr<Ox::PreOpenRequest> openAhead() const {
        return Ox::PreOpenRequest::create(cookie_, DecodeFormat::getDefault(), 0);
    }

    [[nodiscard]] bool isGood() const { return isGood_ && issuer_.failedCount() == 0; }

private:
    Cookie cookie_;
    CountingIssuer issuer_;
    std::uint64_t asked_ = 0;
    bool isGood_ = true;
};

/// Asks for frames of a clip, a few ahead of the one that it waits for.
class Player {
public:
    explicit Player(Clip& clip) : clip_(clip) {}

    /// Asks for a frame when the picture of the one `framesAhead` before it is there.
    void ask(std::uint32_t frame) {
        RequestPtr& oldest = underWay_[asked_++ % framesAhead];
        waitFor(oldest, framesAhead - 1);
        oldest = clip_.ask(frame);
    }
    /// Waits for all that are under way.
    void finish() {
        for (std::size_t left = framesAhead; left-- > 0;) {
            waitFor(underWay_[asked_++ % framesAhead], left);
        }
    }

private:
    /// Waits for the oldest. @param others  how many are under way behind it
    void waitFor(RequestPtr const& oldest, std::size_t others) {
        if (oldest) {
            clip_.waitForAllBut(others);
            clip_.waitForPicture(oldest);
        }
    }

    Clip& clip_;
    std::vector<RequestPtr> underWay_ = std::vector<RequestPtr>(framesAhead);
    std::size_t asked_ = 0;
};

using Clips = std::vector<std::unique_ptr<Clip>>;
using Frames = std::vector<std::uint32_t>;

bool areAllGood(Clips const& clips) {
    return std::all_of(clips.begin(), clips.end(), [](auto const& clip) { return clip->isGood(); });
}

/// Plays all clips, a frame of each in turn. @param starts  of the clips
bool playInTurn(Clips const& clips, Frames const& starts, Frames const& frames) {
    std::vector<Player> players;
    for (auto const& clip : clips) {
        players.emplace_back(*clip);
    }
    for (std::uint32_t const frame : frames) {
        for (std::size_t i = 0; i < players.size(); ++i) {
            players[i].ask(starts[i] + frame);
        }
    }
    for (Player& player : players) {
        player.finish();
    }
    return areAllGood(clips);
}

bool readOneByOne(Clip& clip, Frames const& frames) {
    for (std::uint32_t const frame : frames) {
        RequestPtr const request = clip.ask(frame);
        clip.waitFor(request);
    }
    return clip.isGood();
}

void startLibrary(std::string const& pluginFolder) {
    playfile_init();
    loadPlugins(fromUTF8(pluginFolder.c_str()));
}

/// The clips that a case reads: the file itself, or as many names of it as the case has files.
Clips clipsOf(eCase which, std::string const& path, LinkFolder& links) {
    std::size_t const count = placesOf(which);
    Clips clips;
    for (std::size_t i = 0; i < count; ++i) {
        clips.push_back(std::make_unique<Clip>(which == eCase::interleaved ? links.add(path) : path));
    }
    return clips;
}

bool readCase(eCase which, Clips const& clips, Frames const& starts, Frames const& frames) {
    bool const isPlayed = which == eCase::inOrder || clips.size() > 1;
    return isPlayed ? playInTurn(clips, starts, frames) : readOneByOne(*clips.front(), frames);
}

void lookAtEnd(Sample& sample) {
    sample.peakBytes = peakResidentBytes();
    sample.decodedFrames = playFileCounters().framesDecoded;
    lookAfterRest(sample);
}

}  // namespace

Sample runLibrary(std::string const& path, std::string const& pluginFolder, eCase which,
                  std::vector<std::uint32_t> const& frames) {
    Sample sample;
    LinkFolder links;
    startLibrary(pluginFolder);
    Clips const clips = clipsOf(which, path, links);
    Frames starts(clips.size());
    bool isOpen = true;
    for (std::size_t i = 0; i < clips.size() && which != eCase::openAndFirst; ++i) {
        isOpen = isOpen && clips[i]->open();
        starts[i] = which == eCase::twoReaders ? static_cast<std::uint32_t>(i * frames.size()) : 0;
    }
    if (!isOpen) {
        return sample;
    }
    RequestPtr held;
    if (which == eCase::heldAgain) {
        held = clips.front()->ask(frames.front());
        clips.front()->waitFor(held);
    }
    watchWork(sample, [&] { return readCase(which, clips, starts, frames); });
    sample.reads = static_cast<std::uint32_t>(frames.size() * clips.size());
    lookAtEnd(sample);
    return sample;
}

Sample runLibraryBin(std::vector<std::string> const& paths, std::string const& pluginFolder,
                     bool isOpenedAhead) {
    Sample sample;
    startLibrary(pluginFolder);
    Clips clips;
    for (std::string const& path : paths) {
        clips.push_back(std::make_unique<Clip>(path));
    }
    std::vector<RequestPtr> held;
    std::vector<Ox::Ptr<Ox::PreOpenRequest>> ahead;
    watchWork(sample, [&] {
        for (std::size_t i = 0; isOpenedAhead && i < clips.size(); ++i) {
            ahead.push_back(clips[i]->openAhead());
        }
        for (auto const& clip : clips) {
            held.push_back(clip->ask(0));
            clip->waitFor(held.back());
        }
        return areAllGood(clips);
    });
    sample.reads = static_cast<std::uint32_t>(clips.size());
    lookAtEnd(sample);
    return sample;
}

std::uint32_t countFrames(std::string const& path, std::string const& pluginFolder) {
    startLibrary(pluginFolder);
    return Clip(path).frameCount();
}

}  // namespace bench
