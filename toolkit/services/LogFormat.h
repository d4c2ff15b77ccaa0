#pragma once

#include <cstdarg>

#include "ole/Ox/OxString.h"

/// Formats like vprintf, with wide text (`%ls`) as UTF-8 in any locale; a null text is shown as
/// "(null)". Widths and precisions given as arguments (`*`) are understood, `%n` isn't.
[[nodiscard]] LightweightString<char> formatLogText(char const* format, va_list arguments);
