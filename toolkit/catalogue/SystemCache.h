#pragma once

#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/image/DecodeFormat.h"

/// The file catalogue: which media file a cookie means.
///
/// Threads  Any. The library calls it with locks of its own held, so an implementation takes its locks
///          innermost and calls nobody back while it holds one.
class SystemCache {
public:
    /// The catalogue in force; the host's in-memory one unless another is installed.
    [[nodiscard]] static SystemCache* instance() noexcept;
    /// Puts `catalogue` in force, null for the host's own, and gives back the one before, null for the host's
    /// own. Not owned.
    static SystemCache* install(SystemCache* catalogue) noexcept;

    virtual ~SystemCache() = default;

    /// Finds the file of a cookie at the level that `format` names; there is no fall-back from proxy
    /// to original. Channel 255 means the first channel of the cookie's type.
    ///
    /// @param filename  set to the file's name when found, else untouched. It is the very text under
    ///                  which the file lies in the cache of open files.
    /// @return false if there is none
    [[nodiscard]] virtual bool findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                                 DecodeFormat const& format) = 0;
};
