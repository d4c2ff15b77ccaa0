#pragma once

#include <string>

/// Gives a file or folder another name, on one file system, unless that name is taken; false, with the
/// reason in errno, if it can't. Nobody's file is lost, whoever makes one of that name meanwhile.
[[nodiscard]] bool renameWithoutReplacing(std::string const& from, std::string const& to);

/// The same for file systems that can't do it in one step.
[[nodiscard]] bool renameInSteps(std::string const& from, std::string const& to);
