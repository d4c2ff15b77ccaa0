#pragma once

#include <string>
#include <vector>

namespace bench {

/// Runs a program that is found on the path; true if it ended well.
[[nodiscard]] bool runProgram(std::vector<std::string> words);

/// Waits until a file is on its device; false if it isn't there or that fails.
[[nodiscard]] bool isOnItsDevice(std::string const& path);

}  // namespace bench
