#pragma once

namespace test {

/// Loads the plug-in of made files, and no other, once in a process; false if it doesn't load.
bool loadSynthPlugin();

}  // namespace test
