#pragma once

#include <vector>

#include "ole/Ox/OxString.h"

/// The extensions of files that a catalogue takes as media, in lower case, without full stop.
[[nodiscard]] std::vector<LightweightString<wchar_t>> const& mediaExtensions();

/// True for a file name with such an extension, in capitals or not.
[[nodiscard]] bool hasMediaExtension(LightweightString<wchar_t> const& name);
