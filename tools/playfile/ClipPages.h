#pragma once

#include <functional>
#include <vector>

#include "host/sqlite/SqliteProject.h"

namespace cli {

/// Goes through the clips of a project in the order of their names, so many at a time that memory stays small. Clips that
/// others add or remove meanwhile may be among them or not.
///
/// @throws CommandError  after the last page, if the project couldn't be read to its end
/// @throws Stopped       between two pages, if somebody has asked for that
void forEachPage(SqliteProject& project, std::string const& path,
                 std::function<void(std::vector<ClipSummary> const&)> const& take);

}  // namespace cli
