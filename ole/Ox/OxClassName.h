#pragma once

#include <typeinfo>

#include "ole/Ox/OxString.h"

namespace Ox {

/// The fully qualified name of a class as it is written in source, from its type information.
[[nodiscard]] LightweightString<char> classNameOf(std::type_info const& type);

}  // namespace Ox
