#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tools/playfile/FrameRequest.h"

namespace cli {

/// What became of one frame.
struct FrameOutcome {
    std::uint32_t frame = 0;
    bool isGood = false;
    /// What the work has made of a good frame.
    std::string text;
    /// The thread that served it, from 0.
    unsigned thread = 0;
};

/// Reads a list of frames through the cache on several threads.
///
/// Frames are asked for strictly in the list's order, some ahead of need, so that the file's queue
/// always has work and a file is read onward where the list goes onward. The threads then wait for
/// their frames and work on them side by side, and what comes of it is told in the list's order again.
/// Pictures exist only for the frames that are asked for or being worked on.
///
/// Threads  `run` blocks; the two functions are called on threads of its own, `tell` on one at a time.
/// Errors   The first exception of either function ends the work and leaves `run`.
class FrameFetcher {
public:
    /// Makes something of a picture: the text of the outcome.
    using Work = std::function<std::string(std::uint32_t frame, Ox::Image::Surface const& surface)>;
    using Tell = std::function<void(FrameOutcome const& outcome)>;

    /// @param metadata  of the file. One whose frames are stored in groups is read frame by frame, as a
    ///                  read under way would answer the requests for its whole group.
    /// @param format    the picture that is wanted of every frame
    /// @param threads   from 1
    FrameFetcher(Cookie const& cookie, PlayFileMetadataRep const& metadata, DecodeFormat const& format,
                 unsigned threads);
    ~FrameFetcher();

    /// Reads `frames`. A frame that can't be read is told like the others.
    void run(std::vector<std::uint32_t> const& frames, Work const& work, Tell const& tell);

private:
    /// A frame of the list that is asked for.
    struct Ticket {
        std::size_t position = 0;
        std::unique_ptr<FrameRequest> request;
    };
    /// What a run is about.
    struct Job {
        std::vector<std::uint32_t> const& frames;
        Work const& work;
        Tell const& tell;
    };

    void serve(Job const& job, unsigned thread) noexcept;
    [[nodiscard]] bool take(Job const& job, Ticket& ticket);
    void askAhead(Job const& job);
    void finish(Job const& job, std::size_t position, FrameOutcome outcome);
    void fail(std::exception_ptr const& error);

    Cookie const cookie_;
    DecodeFormat const format_;
    unsigned const threads_;
    /// Requests that wait while others are being worked on.
    std::size_t const ahead_;

    /// Guards what is asked for; held while a frame is asked for, so that the order is the list's.
    std::mutex askMutex_;
    std::deque<Ticket> asked_;
    std::size_t nextToAsk_ = 0;
    bool isStopped_ = false;
    std::exception_ptr error_;

    /// Guards what is told; held while `tell` runs.
    std::mutex tellMutex_;
    std::map<std::size_t, FrameOutcome> untold_;
    std::size_t nextToTell_ = 0;
};

/// What is asked for to get a file's frames as they are stored: its own size, which makes the request
/// unlike one for a smaller picture, and its own pixel format.
[[nodiscard]] DecodeFormat nativeFormat(PlayFileMetadataRep const& metadata);

/// What is asked for to get 8-bit RGB of a size, 0 for the file's own.
[[nodiscard]] DecodeFormat rgbFormat(PlayFileMetadataRep const& metadata, std::uint32_t width,
                                     std::uint32_t height);

}  // namespace cli
