#pragma once

#include <string>

/// Makes a folder and those above it; true also if it exists already. The reason of a failure is kept for the error
/// service.
[[nodiscard]] bool makeFolders(std::string const& path);
