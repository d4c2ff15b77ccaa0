#pragma once

#include <cstdint>
#include <string>

#include "toolkit/image/PlayFileMetadataRep.h"

namespace cli {

/// The frames of a file as an editor counts them: the stored ones, or with a frame rate map those of a
/// constant rate, of which each shows one of the stored.
class Timeline {
public:
    explicit Timeline(PlayFileMetadataRep const& metadata) : metadata_(metadata) {}

    [[nodiscard]] std::uint32_t frameCount() const;

    /// The frame on show at a time.
    ///
    /// @param seconds   from the beginning
    /// @param fileName  for the message
    /// @throws CommandError  if the file ends before it or has no rate
    [[nodiscard]] std::uint32_t frameAt(double seconds, std::string const& fileName) const;

    /// The stored frame that a frame shows.
    [[nodiscard]] std::uint32_t storedFrame(std::uint32_t frame) const;

private:
    PlayFileMetadataRep const& metadata_;
};

}  // namespace cli
