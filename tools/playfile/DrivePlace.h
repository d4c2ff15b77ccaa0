#pragma once

#include <string>
#include <vector>

#include "toolkit/catalogue/DiskManager.h"

namespace cli {

/// A drive and where it lies, as the command line says it: L=ROOT.
struct DrivePlace {
    DriveId drive;
    /// Absolute.
    LightweightString<wchar_t> root;
};

/// The letter of a drive: a letter, or a digit from 1 on.
///
/// @throws CommandError  if it is none
[[nodiscard]] DriveId parseDrive(std::string const& text);

/// @throws CommandError  if the text isn't of the form L=ROOT
[[nodiscard]] DrivePlace parseDrivePlace(std::string const& text);

/// The two sides of the first '=', both with something in them.
///
/// @param form  how it is to be written, for the message
/// @throws CommandError
[[nodiscard]] std::pair<std::string, std::string> splitAtSign(std::string const& text, char const* form);

}  // namespace cli
