#include "tools/playfile/FrameOrder.h"

#include <algorithm>
#include <charconv>
#include <random>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// Frames that a scrub looks to either side of its playhead.
constexpr std::int64_t scrubReach = 12;
/// One step in so many turns the playhead round.
constexpr std::uint64_t stepsPerTurn = 40;
/// One step in so many takes the playhead somewhere else.
constexpr std::uint64_t stepsPerJump = 60;

/// Numbers below a limit. The remainder is taken by hand, as the standard's distributions differ from
/// library to library.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : engine_(seed) {}
    std::uint64_t below(std::uint64_t limit) { return engine_() % limit; }
    bool oneIn(std::uint64_t limit) { return below(limit) == 0; }

private:
    std::mt19937_64 engine_;
};

}  // namespace

FrameOrder FrameOrder::parse(std::string const& text) {
    std::size_t const colon = text.find(':');
    std::string const name = text.substr(0, colon);
    if (colon == std::string::npos && (name == "forward" || name == "backward")) {
        return {name == "forward" ? eKind::forward : eKind::backward, 0};
    }
    std::string const seedText = colon == std::string::npos ? "" : text.substr(colon + 1);
    std::uint64_t seed = 0;
    char const* const end = seedText.data() + seedText.size();
    auto const [stop, error] = std::from_chars(seedText.data(), end, seed);
    if ((name != "random" && name != "scrub") || error != std::errc() || stop != end) {
        throw CommandError("--order " + inQuotes(text) +
                               " isn't known; write forward, backward, random:SEED or scrub:SEED, the seed "
                               "a whole number",
                           exitUsage);
    }
    return {name == "random" ? eKind::random : eKind::scrub, seed};
}

std::vector<std::uint32_t> FrameOrder::apply(std::vector<std::uint32_t> const& frames,
                                             std::optional<std::uint64_t> count) const {
    std::size_t const wanted = count.value_or(frames.size());
    switch (kind_) {
        case eKind::random:
            return shuffled(frames, wanted);
        case eKind::scrub:
            return scrubbed(frames, wanted);
        default:
            break;
    }
    std::vector<std::uint32_t> result(frames);
    if (kind_ == eKind::backward) {
        std::reverse(result.begin(), result.end());
    }
    result.resize(std::min(wanted, result.size()));
    return result;
}

std::vector<std::uint32_t> FrameOrder::shuffled(std::vector<std::uint32_t> frames, std::size_t count) const {
    Dice dice(seed_);
    std::vector<std::uint32_t> result;
    result.reserve(count);
    while (result.size() < count) {
        for (std::size_t i = frames.size() - 1; i > 0; --i) {
            std::swap(frames[i], frames[dice.below(i + 1)]);
        }
        std::size_t const part = std::min(frames.size(), count - result.size());
        result.insert(result.end(), frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(part));
    }
    return result;
}

std::vector<std::uint32_t> FrameOrder::scrubbed(std::vector<std::uint32_t> const& frames,
                                                std::size_t count) const {
    Dice dice(seed_);
    auto const last = static_cast<std::int64_t>(frames.size()) - 1;
    std::int64_t playhead = 0;
    std::int64_t direction = 1;
    std::vector<std::uint32_t> result;
    result.reserve(count);
    while (result.size() < count) {
        std::int64_t const offset = static_cast<std::int64_t>(dice.below(2 * scrubReach + 1)) - scrubReach;
        std::int64_t const position = std::clamp<std::int64_t>(playhead + offset, 0, last);
        result.push_back(frames[static_cast<std::size_t>(position)]);
        if (dice.oneIn(stepsPerTurn)) {
            direction = -direction;
        }
        playhead += direction;
        if (dice.oneIn(stepsPerJump) || playhead < 0 || playhead > last) {
            playhead = static_cast<std::int64_t>(dice.below(frames.size()));
        }
    }
    return result;
}

}  // namespace cli
