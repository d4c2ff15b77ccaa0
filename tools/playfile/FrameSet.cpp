#include "tools/playfile/FrameSet.h"

#include <algorithm>
#include <numeric>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {

FrameSet FrameSet::parse(std::string const& text, char const* option) {
    FrameSet set;
    set.ranges_ = parseNumberRanges(text, {option, "frames", "use --order backward"});
    return set;
}

FrameSet FrameSet::of(std::vector<std::uint32_t> const& frames) {
    FrameSet set;
    for (std::uint32_t const frame : frames) {
        set.ranges_.push_back({frame, frame});
    }
    return set;
}

std::vector<std::uint32_t> FrameSet::resolve(std::uint32_t frameCount, std::string const& fileName) const {
    if (frameCount == 0) {
        throw CommandError(inQuotes(fileName) + " has no frames");
    }
    std::vector<NumberRange> const all{{0, frameCount - 1}};
    std::vector<std::uint32_t> frames;
    for (NumberRange const& range : ranges_.empty() ? all : ranges_) {
        if (frameCount > 1 && range.last >= frameCount) {
            throw CommandError(inQuotes(fileName) + " has no frame " + std::to_string(range.last) +
                               "; its frames are 0 to " + std::to_string(frameCount - 1));
        }
        std::uint64_t const length = std::uint64_t(range.last) - range.first + 1;
        if (frames.size() + length > maxFrames) {
            throw CommandError("this is more than " + std::to_string(maxFrames) +
                                   " frames; ask for fewer at a time with --frames",
                               exitUsage);
        }
        std::size_t const oldSize = frames.size();
        frames.resize(oldSize + length);
        std::iota(frames.begin() + static_cast<std::ptrdiff_t>(oldSize), frames.end(), range.first);
    }
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

}  // namespace cli
