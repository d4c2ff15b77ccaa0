#pragma once

#include "material/MediaLocationInfo.h"
#include "toolkit/edit/EditModule.h"

/// Tells a user interface where media are and whether they are there.
///
/// Threads  Any, but it may take long: files are looked for on disk and network.
/// Errors   None is reported. Of a clip that isn't known the record is empty.
class MediaLocationUtils {
public:
    /// What there is to be known of a clip's media files. A clip that is cut together of others has no
    /// record of its own: it is empty.
    [[nodiscard]] static MediaLocationInfo getClipLocationInfo(Cookie const& cookie);

    [[nodiscard]] static bool isAllMediaOffline(EditModule const& module);
    /// Deliberate  Answers as `isAllMediaOffline` does: it too asks about all the media.
    [[nodiscard]] static bool isSomeMediaOffline(EditModule const& module);
};

/// True if what a window shows has lost its media: of a clip that is cut together of others, what lies at
/// the current time in the first selected channel, unless that is an effect. Nothing to show is never offline.
[[nodiscard]] bool isMediaOffline(EditModule const& module);
