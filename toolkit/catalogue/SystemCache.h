#pragma once

#include <vector>

#include "ole/Ox/OxString.h"
#include "ole/os/Errors.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/FsysDirectoryEntry.h"
#include "toolkit/catalogue/OpenType.h"
#include "toolkit/edit/EditChanType.h"
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

    // What follows serves those who change the catalogue; one that nobody changes needs none of it.

    /// All that is known of a cookie's files, and the way to change it; empty if it isn't known. Channel 255 as above.
    [[nodiscard]] virtual Ox::Ptr<FsysDirectoryEntry> findEntryForCookie(Cookie const&) { return {}; }
    /// The entries of all cookies of a clip, in the order of their cookies.
    [[nodiscard]] virtual std::vector<Ox::Ptr<FsysDirectoryEntry>> getClipMediaFiles(Cookie const&) {
        return {};
    }

    /// Files a media file under a cookie: a proxy beside those that are there, an original in place of the
    /// one before. @param option  always false
    virtual void addFile(Cookie const& /*cookie*/, MediaFileInfo const& /*file*/, bool /*option*/ = false) {}
    /// Files the media file at a place on a drive. The place may be named without the extension: then it is
    /// the first of the known ones under which there is a file.
    virtual void addFile(Cookie const& cookie, MaterialFilename const& material, bool option = false);
    /// True if anything is known of the cookie.
    [[nodiscard]] virtual bool fileExists(Cookie const& cookie) {
        return static_cast<bool>(findEntryForCookie(cookie));
    }
    /// Forgets files of a cookie, and deletes what lies at their own place in the catalogue; what a link
    /// points to is never touched.
    ///
    /// @param types   originals, proxies or both
    /// @param option  always false
    /// @return 1, or what kept a file from being deleted
    virtual OxResult removeFile(Cookie const& /*cookie*/, eMediaTypes /*types*/, bool /*option*/ = false) {
        return oxFailure;
    }
    /// Forgets a proxy of a cookie. Nothing is deleted, and a file that is no proxy changes nothing.
    virtual void removeProxyFile(Cookie const& cookie, MediaFileInfo const& file);
    /// See `FsysDirectoryEntry::renameProxyFile`.
    virtual void renameProxyFile(Cookie const& cookie, LightweightString<wchar_t> const& from,
                                 LightweightString<wchar_t> const& to);
    /// See `FsysDirectoryEntry::updateStatus`; `missing` for a cookie that isn't known.
    virtual std::uint32_t updateStatus(Cookie const& cookie, eMediaTypes types);

    /// The drive on which the place of a cookie's original lies.
    ///
    /// @param type  of a clip's edit cookie: which of its media are meant. Any other cookie tells that itself
    /// @return `DriveId::none` if its place is on no drive, `DriveId::unavailable` if the cookie isn't known
    [[nodiscard]] virtual DriveId getDriveForCookie(Cookie const& cookie, EditChanType type);
    /// True for the bare name of a file that the catalogue would take as media.
    [[nodiscard]] virtual bool isEligible(LightweightString<wchar_t> const& name);
};

/// Where new material of a cookie belongs on a drive: in the folder of its medium, under its name, without an
/// extension. Of no drive it is a name in the process's current folder.
[[nodiscard]] MaterialFilename getMaterialFilenameForCookie(Cookie const& cookie, DriveId const& drive);

/// Where the picture of a channel's course is kept, which an editor draws of its sound.
[[nodiscard]] LightweightString<wchar_t> getWaveformDataFileFor(Cookie const& cookie);
