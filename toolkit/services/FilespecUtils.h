#pragma once

#include <cstdint>

#include "ole/Ox/OxString.h"

namespace Ox::FilespecUtils {

/// The path of a member of the numbered series that `path` begins: the last run of digits of its name, without the
/// extension, is raised by `index`. A number keeps its width as long as it fits: 009, 010; 999, 1000.
///
/// @param index  0 is `path` itself
/// @return       `path` for a name without a digit
[[nodiscard]] LightweightString<wchar_t> getSEQFileName(LightweightString<wchar_t> const& path,
                                                        std::uint32_t index);

/// A text as it can be a file's name on every system: separators, the characters that some system keeps for itself
/// (: * ? " < > |) and control characters become `replacement`; an empty text, "." and ".." become it as a whole.
[[nodiscard]] LightweightString<wchar_t> makeSafeFilename(LightweightString<wchar_t> const& name,
                                                          wchar_t replacement);

}  // namespace Ox::FilespecUtils
