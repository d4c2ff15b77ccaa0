#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/playfile/NumberRanges.h"

namespace cli {

/// The frames that a user names: "all", or numbers and ranges as in "0,5,7-9".
///
/// Units  Frames of the file or of its time line, from 0; the ends of a range belong to it.
class FrameSet {
public:
    /// Most frames that one run takes, so that a slip of the pen can't fill the memory.
    static constexpr std::uint64_t maxFrames = 10'000'000;

    /// @param option  as the user calls it, for messages
    /// @throws CommandError  for a text of another form
    [[nodiscard]] static FrameSet parse(std::string const& text, char const* option = "--frames");

    /// The frames of these numbers.
    [[nodiscard]] static FrameSet of(std::vector<std::uint32_t> const& frames);

    /// The frames in ascending order, each once.
    ///
    /// @param frameCount  frames of the file; a file of one frame has that frame at every number
    /// @param fileName    for the message
    /// @throws CommandError  if the file lacks one of them
    [[nodiscard]] std::vector<std::uint32_t> resolve(std::uint32_t frameCount,
                                                     std::string const& fileName) const;

private:
    /// Empty for all frames.
    std::vector<NumberRange> ranges_;
};

}  // namespace cli
