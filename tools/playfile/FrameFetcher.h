#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tools/playfile/FrameRequest.h"
#include "tools/playfile/OrderedWork.h"

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

/// Reads a list of frames through the cache on several threads, see `OrderedWork`.
///
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

    /// Reads `frames`. A frame that can't be read is told like the others.
    void run(std::vector<std::uint32_t> const& frames, Work const& work, Tell const& tell);

private:
    using Ticket = std::unique_ptr<FrameRequest>;

    Cookie const cookie_;
    DecodeFormat const format_;
    OrderedWork<Ticket, FrameOutcome> work_;
};

/// What is asked for to get a file's frames as they are stored: its own size, which makes the request
/// unlike one for a smaller picture, and its own pixel format.
[[nodiscard]] DecodeFormat nativeFormat(PlayFileMetadataRep const& metadata);

/// What is asked for to get 8-bit RGB of a size, 0 for the file's own.
[[nodiscard]] DecodeFormat rgbFormat(PlayFileMetadataRep const& metadata, std::uint32_t width,
                                     std::uint32_t height);

}  // namespace cli
