#pragma once

#include <optional>
#include <vector>

#include "tools/playfile/Clip.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/Levels.h"
#include "tools/playfile/OutputFolder.h"

namespace cli {

/// What reading all of a file's sound has brought.
struct SoundReport {
    std::vector<ChannelRange> ranges;
    std::vector<ChannelLevels> levels;
    /// Blocks that couldn't be read.
    std::uint64_t failed = 0;
    /// Reads of the file, and blocks of channels that they served.
    std::uint64_t fileReads = 0;
    std::uint64_t channelsServed = 0;
    double seconds = 0.0;
};

/// Reads every channel of a file from its start to its end; nothing for a file without sound.
[[nodiscard]] std::optional<SoundReport> readSound(Session& session, Clip const& clip);

/// Writes a picture of each channel's course; their paths.
[[nodiscard]] std::vector<std::string> writeWaveforms(SoundReport const& report, OutputFolder const& folder);

/// The report as data, and as a table.
[[nodiscard]] Json describeSound(SoundReport const& report);
[[nodiscard]] std::string soundTable(SoundReport const& report);

}  // namespace cli
