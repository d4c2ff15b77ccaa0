#pragma once

#include <cstdint>

#include "ole/Ox/OxString.h"

/// Link files: a link file lies at a material's place and says where the media really are.
///
/// Its first line marks it as a link file, and all that follows, to the end of the file, is the name of the target
/// in UTF-8.
///
/// Threads  Any. Each operation takes as long as the file system does with one small file.
class MaterialLink {
public:
    /// The longest name of a target, in bytes. A longer text is no link's.
    static constexpr std::uint32_t longestTarget = 32 * 1024;

    /// Writes a link file, and makes the folders in which it comes to lie: whole, or not at all.
    ///
    /// A symbolic link that lies at its place is never followed.
    ///
    /// @param replaceExisting  true takes the place of a link file or symbolic link that is there, but never that of
    ///                         another file; false of nothing
    /// @return false if it wasn't written, which is logged
    static bool createLink(LightweightString<wchar_t> const& link, LightweightString<wchar_t> const& target,
                           bool replaceExisting);

    /// Where a link file points to; empty for every other file, and for a symbolic link.
    [[nodiscard]] static LightweightString<wchar_t> readLink(LightweightString<wchar_t> const& link);
};
