#pragma once

#include <string>

namespace test {

/// Loads one of the plug-ins that were built, and no other; false if it doesn't load. Once in a process for
/// each name.
bool loadBuiltPlugin(std::string const& name);

}  // namespace test
