#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "audio/AudioReadRequest.h"
#include "bench/soak/SoakClip.h"
#include "bench/soak/Tally.h"
#include "video/VideoReadRequest.h"

namespace soak {

/// Waits for the end of reads.
///
/// Who joins a read that is just ending isn't called, so it looks at the status from time to time, too.
class Waiter : public ReadRequestIssuer {
public:
    ~Waiter() override { withdraw(); }
    void requestCompleted(Ox::Ptr<iObject>& result, RequestStatus status) override;

    /// False if the read doesn't end.
    template <class Request>
    [[nodiscard]] bool waitFor(Request const& request) {
        auto const deadline = std::chrono::steady_clock::now() + patience;
        std::unique_lock<std::mutex> held(lock_);
        while (!hasEnded(request.getRequestStatus())) {
            if (std::chrono::steady_clock::now() > deadline) {
                return false;
            }
            told_.wait_for(held, interval);
        }
        return true;
    }

private:
    static constexpr std::chrono::milliseconds interval{20};
    static constexpr std::chrono::seconds patience{120};

    static bool hasEnded(RequestStatus status) {
        return status == requestComplete || status == requestFailed;
    }

    std::mutex lock_;
    std::condition_variable told_;
};

/// Reads of one clip that are under way together, and what came of them.
///
/// Threads  One at a time.
class PictureReads {
public:
    PictureReads(SoakClip& clip, Tally& tally) : clip_(clip), tally_(tally) {}

    void ask(std::uint32_t frame);
    /// Lets go of all requests, which cancels those that wait.
    void drop();
    /// Waits for all, compares each with what was seen before, and lets go of them.
    void finish();

private:
    void compare(VideoReadRequest const& request);

    SoakClip& clip_;
    Tally& tally_;
    Waiter waiter_;
    std::vector<Ox::Ptr<VideoReadRequest>> requests_;
};

class SoundReads {
public:
    SoundReads(SoakClip& clip, Tally& tally) : clip_(clip), tally_(tally) {}

    /// Asks for a block of all channels.
    void ask(std::uint32_t block);
    void drop();
    void finish();

private:
    struct Asked {
        Ox::Ptr<AudioReadRequest> request;
        std::uint32_t block;
        unsigned channel;
    };

    void askChannel(std::uint32_t block, unsigned channel);
    void compare(Asked const& asked);

    SoakClip& clip_;
    Tally& tally_;
    Waiter waiter_;
    std::vector<Asked> requests_;
};

}  // namespace soak
