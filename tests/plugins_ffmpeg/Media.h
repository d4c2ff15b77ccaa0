#pragma once

#include <string>

#include "plugins/ffmpeg/AvPointers.h"

namespace test {

/// The name of a clip that the script made.
[[nodiscard]] std::string medium(std::string const& name);

/// A clip's name made fit for the name of a test.
[[nodiscard]] std::string testNameOf(std::string const& name);

/// The number that a picture of such a clip bears in its top rows; -1 for no picture.
[[nodiscard]] int numberOn(AVFrame const* picture);

}  // namespace test
