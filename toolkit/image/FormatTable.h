#pragma once

#include <vector>

#include "toolkit/image/Format.h"

namespace Ox::Image {

/// The formats that are known from the start, under the names that decoders usually give them.
[[nodiscard]] std::vector<FormatDescription> usualFormats();

}  // namespace Ox::Image
