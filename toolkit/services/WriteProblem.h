#pragma once

#include "ole/Ox/OxString.h"
#include "ole/os/Errors.h"

/// Why a file can't be written, and what helps, in one sentence for people.
///
/// @param code  what the OS object's errors told, or another result code
[[nodiscard]] LightweightString<char> writeProblemText(OxResult code);

/// The last error of the calling thread; the plain failure if it has none.
[[nodiscard]] OxResult lastWriteError();
