#pragma once

#include <cstdarg>

#include "ole/Ox/OxString.h"

/// Formats like vprintf, of any length, with wide text (`%ls`, `%lc`) as UTF-8 in any locale. A null text
/// is shown as "(null)". Width and precision of wide text count bytes, and no character is cut. `%n`
/// writes nothing. Numbered arguments ("%1$s") are left to the C library as they are.
[[nodiscard]] LightweightString<char> formatLogText(char const* format, va_list arguments);
