#include "tools/playfile/ChannelSet.h"

#include <set>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr NumberOption channelsOption{"--channels", "channels", "write the smaller number first"};

}  // namespace

ChannelSet ChannelSet::parse(std::string const& text) {
    ChannelSet set;
    set.ranges_ = parseNumberRanges(text, channelsOption);
    return set;
}

std::vector<std::uint8_t> ChannelSet::resolve(std::uint32_t channelCount, std::string const& fileName) const {
    if (channelCount > maxChannels && ranges_.empty()) {
        throw CommandError(inQuotes(fileName) + " has " + std::to_string(channelCount) +
                           " channels; name some of the first " + std::to_string(maxChannels) +
                           " with --channels");
    }
    std::set<std::uint8_t> channels;
    std::vector<NumberRange> const all{{1, channelCount}};
    for (NumberRange const& range : ranges_.empty() ? all : ranges_) {
        if (range.first == 0 || range.last > channelCount || range.last > maxChannels) {
            throw CommandError(inQuotes(fileName) + " has no channel " +
                               std::to_string(range.first == 0 ? 0 : range.last) +
                               "; its channels are 1 to " + std::to_string(channelCount));
        }
        for (std::uint32_t channel = range.first; channel <= range.last; ++channel) {
            channels.insert(static_cast<std::uint8_t>(channel));
        }
    }
    return {channels.begin(), channels.end()};
}

}  // namespace cli
