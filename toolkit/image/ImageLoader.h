#pragma once

#include "ole/Ox/OxString.h"

namespace OxImage {

/// What reads still pictures.
class Loader {
public:
    /// True for a name whose extension, in capitals or not, is that of a still picture. The file isn't looked at.
    ///
    /// Threads  Any.
    [[nodiscard]] static bool canLoadImage(LightweightString<wchar_t> const& path);
};

}  // namespace OxImage
