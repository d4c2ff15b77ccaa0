#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/playfile/NumberRanges.h"

namespace cli {

/// The channels that a user names: "all", or numbers and ranges from 1 as in "1,3,5-8".
class ChannelSet {
public:
    /// Most channels of a file that can be told apart.
    static constexpr std::uint32_t maxChannels = 254;

    /// @throws CommandError  for a text of another form
    [[nodiscard]] static ChannelSet parse(std::string const& text);

    /// The channels in ascending order, each once.
    ///
    /// @param channelCount  channels of the file
    /// @param fileName      for the message
    /// @throws CommandError  if the file lacks one of them
    [[nodiscard]] std::vector<std::uint8_t> resolve(std::uint32_t channelCount,
                                                    std::string const& fileName) const;

private:
    /// Empty for all channels.
    std::vector<NumberRange> ranges_;
};

}  // namespace cli
