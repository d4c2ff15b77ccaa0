#include "tools/playfile/FrameSet.h"

#include <algorithm>
#include <charconv>
#include <numeric>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// A number that fills the whole text; false for anything else.
bool parseNumber(std::string const& text, std::uint32_t& number) {
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

[[noreturn]] void refuse(std::string const& whole) {
    throw CommandError("--frames " + inQuotes(whole) + " names no frames; write 'all' or, say, '0,5,7-9'",
                       exitUsage);
}

}  // namespace

FrameSet FrameSet::parse(std::string const& text) {
    FrameSet set;
    if (text == "all") {
        return set;
    }
    std::size_t begin = 0;
    while (begin <= text.size()) {
        std::size_t const end = std::min(text.find(',', begin), text.size());
        set.ranges_.push_back(parseRange(text.substr(begin, end - begin), text));
        begin = end + 1;
    }
    return set;
}

FrameSet::Range FrameSet::parseRange(std::string const& text, std::string const& whole) {
    std::size_t const hyphen = text.find('-');
    std::string const last = hyphen == std::string::npos ? text : text.substr(hyphen + 1);
    Range range{};
    if (!parseNumber(text.substr(0, hyphen), range.first) || !parseNumber(last, range.last)) {
        refuse(whole);
    }
    if (range.first > range.last) {
        throw CommandError("--frames: the range " + inQuotes(text) + " runs backwards; use --order backward",
                           exitUsage);
    }
    return range;
}

std::vector<std::uint32_t> FrameSet::resolve(std::uint32_t frameCount, std::string const& fileName) const {
    if (frameCount == 0) {
        throw CommandError(inQuotes(fileName) + " has no frames");
    }
    std::vector<Range> const all{{0, frameCount - 1}};
    std::vector<std::uint32_t> frames;
    for (Range const& range : ranges_.empty() ? all : ranges_) {
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
