#pragma once

#include "files/FileReadInstance.h"
#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/OpenType.h"
#include "toolkit/image/DecodeFormat.h"

/// Opens media without the cache.
///
/// Threads  Any; it has no lock and may run for seconds. Two threads on one file are kept apart only
///          by `PlayFileCache`.
class PlayUtil {
public:
    /// Asks the registered readers in two passes: the first finds out what the file is, the second
    /// chooses who reads it, and a reader that knows nothing of the file borrows what the first found.
    ///
    /// @param streamIndex  the audio stream that is wanted; past the end a default description is used
    /// @return empty on failure, which is logged
    /// Errors  An exception from `canOpen`, `getReadableTypes` or a second `openFile` passes through.
    [[nodiscard]] static Ox::Ptr<FileReadInstance> openRead(LightweightString<wchar_t> const& filename,
                                                            DecodeFormat const& format, OpenType type,
                                                            unsigned int streamIndex);

    /// Opens the file that the catalogue has for a cookie; empty and silent if there is none.
    ///
    /// Deliberate  It opens for audio whatever the cookie is.
    [[nodiscard]] static Ox::Ptr<FileReadInstance> openRead(Cookie const& cookie, DecodeFormat const& format,
                                                            unsigned int streamIndex);

    /// 2 for a cookie of type 'S', 1 for 'V', 0 for any other.
    [[nodiscard]] static OpenType getType(Cookie const& cookie);
};
