#pragma once

#include "plugins/wave/Bytes.h"
#include "toolkit/services/ConfigB.h"

namespace playfile_wave {

/// The text of a field as UTF-8, up to its NUL and without blanks at its end: what isn't UTF-8 is taken for
/// Latin-1.
[[nodiscard]] LightweightString<char> textOf(Bytes field);

/// Reads the contents of a "bext" chunk: those fields that are there and aren't empty.
///
/// The keys are those under which FFmpeg knows them, `tag.time_reference` among them: samples from midnight
/// to the first one.
void takeBroadcast(Bytes chunk, configb& tags);

/// Reads the contents of a "LIST" chunk, which are texts if it is one of the type "INFO". A text that `tags`
/// has already stays.
void takeInfo(Bytes chunk, configb& tags);

/// Sets a key unless there is no text for it.
void setText(configb& tags, char const* key, LightweightString<char> const& text);

}  // namespace playfile_wave
