#pragma once

#include <cstdint>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/MaterialFilename.h"

/// A media drive: a folder in which material lies, video and sound in folders of their own.
///
/// Threads  Any.
class MediaDrive : public virtual iObject {
public:
    /// @param root  with its closing separator
    MediaDrive(DriveId const& id, LightweightString<wchar_t> const& root) : id_(id), root_(root) {}

    [[nodiscard]] DriveId getId() const { return id_; }
    /// What may still be written on it at this moment, in bytes; 0 if it can't be reached.
    [[nodiscard]] std::uint64_t getSpaceBytes() const;
    /// Where its files of a type lie: 'V', 'S', or 0 for the root. It ends in one separator, as `getPath` of a file
    /// there does.
    [[nodiscard]] LightweightString<wchar_t> getLocation(CookieType type) const;

    /// The folder of a cookie's material, from a drive's root on, with a closing separator; empty for the root.
    [[nodiscard]] static LightweightString<wchar_t> getFolder(Cookie const& cookie);

private:
    DriveId const id_;
    LightweightString<wchar_t> const root_;
};
