#pragma once

#include <string>

namespace cli {

/// Writes a line to standard output at once.
///
/// @throws Stopped       if nobody reads the output any more
/// @throws CommandError  if it can't be written for another reason
void writeLine(std::string const& line);

/// The same without ending the line.
void writeText(std::string const& text);

/// Writes a line about something that is wrong, with the program's name, to standard error.
void writeProblem(std::string const& message);

}  // namespace cli
