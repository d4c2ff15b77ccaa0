#pragma once

namespace cli {

/// From now on a request to stop (Ctrl-C, a lost terminal) is only noted, so that the work can end
/// cleanly; a second one ends the process at once. Writing to a pipe that nobody reads becomes an error
/// instead of the process's end.
void handleSignals();

/// @throws Stopped  if somebody has asked the program to stop
void checkForInterrupt();

}  // namespace cli
