#pragma once

#include <atomic>

namespace test {

/// Waits until a thread of this process sleeps, or is gone.
///
/// @param thread  what `gettid` says there; 0 as long as it isn't known
void waitForSleep(std::atomic<int> const& thread);

}  // namespace test
