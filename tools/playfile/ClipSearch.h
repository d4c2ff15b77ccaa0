#pragma once

#include <string>
#include <vector>

#include "host/sqlite/SqliteProject.h"

namespace cli {

/// The one clip of a project that bears a name, or whose identity begins with these digits.
///
/// @throws CommandError  if there is none; or more than one, after they have been listed
[[nodiscard]] Cookie findClip(SqliteProject& project, std::string const& wanted);

}  // namespace cli
