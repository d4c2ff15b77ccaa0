#pragma once

#include <optional>
#include <vector>

#include "tools/playfile/ChannelSet.h"
#include "tools/playfile/Clip.h"
#include "tools/playfile/SampleFetcher.h"
#include "tools/playfile/SamplePosition.h"

namespace cli {

/// Which samples of which channels a user names.
struct SampleSelection {
    ChannelSet channels = ChannelSet::parse("all");
    SamplePosition from = SamplePosition::parse("0", "--from");
    /// Not used if `toEnd` is set.
    SamplePosition count = from;
    bool toEnd = true;
};

/// The named channels, with the samples of each, as its stream counts them.
///
/// @param file  open for its sound
/// @throws CommandError  if the file lacks some of them
[[nodiscard]] std::vector<ChannelRange> selectChannels(Session& session, Clip const& clip,
                                                       FileReadInstance const& file, TimeScale const& scale,
                                                       SampleSelection const& selection);

/// What time codes of the file are measured by: the picture's rate, if it has one, and the stated start.
///
/// @param file  open for its sound
/// @param rate  frames a second, if the user has named them
[[nodiscard]] TimeScale findTimeScale(Clip const& clip, FileReadInstance const& file,
                                      std::optional<Ox::FrameRate> rate);

}  // namespace cli
