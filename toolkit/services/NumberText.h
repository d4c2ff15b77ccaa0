#pragma once

#include <cstdint>

#include "ole/Ox/OxString.h"

namespace Ox {

/// In decimal digits.
[[nodiscard]] LightweightString<wchar_t> WStringFromInteger(std::int64_t number);

}  // namespace Ox

/// A size for people: "512 bytes", "1.5 MiB".
///
/// @param withUnit  false gives the number of bytes alone
[[nodiscard]] LightweightString<wchar_t> bytesAsString(unsigned long byteCount, bool withUnit);
