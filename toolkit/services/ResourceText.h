#pragma once

#include "ole/Ox/OxString.h"
#include "ole/os/Errors.h"

/// How a numbered text is laid out.
enum ResStrFmt : int {
    resourcePlain = 0,  ///< as it stands
};

/// The text of a result code for people; a code without one gives its number in words.
///
/// Threads  Any.
[[nodiscard]] LightweightString<char> resourceStr(OxResult code, ResStrFmt format = resourcePlain);
