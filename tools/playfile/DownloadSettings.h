#pragma once

#include <string>

#include "transfer/ExternalDownloadSettings.h"

namespace cli {

/// The settings of downloads in a file of JSON.
///
/// @throws CommandError  if the file can't be read or holds something else
[[nodiscard]] ExternalDownloadSettings readDownloadSettings(std::string const& path);
/// @throws CommandError  if it can't be written
void writeDownloadSettings(ExternalDownloadSettings const& settings, std::string const& path);

/// Makes sure that there is a folder to download to, and makes it if need be.
///
/// @throws CommandError  if that can't be, or no folder is named
void requireDownloadFolder(ExternalDownloadSettings const& settings);

}  // namespace cli
