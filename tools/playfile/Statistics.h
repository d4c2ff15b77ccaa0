#pragma once

#include "tools/playfile/JsonText.h"

namespace cli {

/// What the library has done in this process: the cache, the queues, and where the time went.
[[nodiscard]] Json describeStatistics();

}  // namespace cli
