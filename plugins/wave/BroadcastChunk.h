#pragma once

#include <cstdint>
#include <vector>

#include "toolkit/services/ConfigB.h"

namespace playfile_wave {

/// The "bext" chunk of a broadcast WAVE file (EBU Tech 3285, version 1), whole.
///
/// @param options  `description`, `originator`, `originatorReference`, `originationDate` (yyyy-mm-dd),
///                 `originationTime` (hh:mm:ss), `timeReference` (samples since midnight) and
///                 `codingHistory`; what isn't there is left empty, but for the date and time, which are those
///                 of this moment, and the originator, which is playfile. Texts are cut to their fields.
[[nodiscard]] std::vector<std::uint8_t> makeBroadcastChunk(configb const& options);

}  // namespace playfile_wave
