#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cli {

/// The order in which frames are asked for: "forward", "backward", "random:SEED" or "scrub:SEED".
///
/// The same seed gives the same order on every machine.
class FrameOrder {
public:
    /// @throws CommandError  for a text of another form
    [[nodiscard]] static FrameOrder parse(std::string const& text);

    /// The numbers of `frames` in this order.
    ///
    /// Forward and backward take the first `count` of them. Random takes every frame once before any
    /// frame comes again. Scrub looks around a playhead that moves on, now and then turns, and jumps.
    ///
    /// @param frames  ascending, not empty
    /// @param count   how many are wanted; as many as there are frames if it isn't given
    [[nodiscard]] std::vector<std::uint32_t> apply(std::vector<std::uint32_t> const& frames,
                                                   std::optional<std::uint64_t> count) const;

private:
    enum class eKind { forward, backward, random, scrub };

    FrameOrder(eKind kind, std::uint64_t seed) : kind_(kind), seed_(seed) {}

    [[nodiscard]] std::vector<std::uint32_t> shuffled(std::vector<std::uint32_t> frames,
                                                      std::size_t count) const;
    [[nodiscard]] std::vector<std::uint32_t> scrubbed(std::vector<std::uint32_t> const& frames,
                                                      std::size_t count) const;

    eKind kind_;
    std::uint64_t seed_;
};

}  // namespace cli
