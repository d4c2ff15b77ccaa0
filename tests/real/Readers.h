#pragma once

namespace test {

/// Loads the plug-ins that were built, at the first call in a process.
void loadReaders();

}  // namespace test
