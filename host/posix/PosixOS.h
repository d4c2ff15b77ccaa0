#pragma once

#include "ole/os/OS.h"

/// The operating-system object of a POSIX system: made on first use, never destroyed.
[[nodiscard]] iOS& posixOS() noexcept;
