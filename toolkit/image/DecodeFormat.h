#pragma once

#include <cstdint>

#include "toolkit/image/ImageCore.h"

/// Which of a clip's files a format speaks of.
enum eProxyLevel : std::uint32_t { levelOriginal = 1, levelProxy = 2 };

/// The image that a caller wants of a file. A member that isn't stated (0) is the file's own.
///
/// Deliberate  The library copies the two members below and doesn't interpret them; the catalogue reads
///             the level, readers may read the options.
class DecodeFormat : public Ox::Image::Core::Data {
public:
    DecodeFormat() = default;
    /// The file's own format at a level.
    DecodeFormat(eProxyLevel proxyLevel) : level(proxyLevel) {}
    explicit DecodeFormat(int proxyLevel) : level(static_cast<std::uint32_t>(proxyLevel)) {}

    /// The file's own format of the original.
    [[nodiscard]] static DecodeFormat getDefault() { return DecodeFormat(levelOriginal); }

    /// For readers; 0 for none.
    std::uint64_t options = 0;
    /// An `eProxyLevel`.
    std::uint32_t level = levelOriginal;
};
