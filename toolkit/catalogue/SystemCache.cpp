#include "toolkit/catalogue/SystemCache.h"

#include "toolkit/catalogue/MediaDrive.h"
#include "toolkit/catalogue/MediaExtensions.h"
#include "toolkit/services/Paths.h"

namespace {

/// The place with the extension of the file that is there.
MaterialFilename withExtension(MaterialFilename const& material) {
    if (fileExists(material.getOsPath())) {
        return material;
    }
    LightweightString<wchar_t> const stem =
        stripExtension(material.getPath()) + LightweightString<wchar_t>(L".");
    for (LightweightString<wchar_t> const& extension : mediaExtensions()) {
        MaterialFilename const candidate(material.getDrive(), stem + extension);
        if (fileExists(candidate.getOsPath())) {
            return candidate;
        }
    }
    return material;
}

}  // namespace

void SystemCache::addFile(Cookie const& cookie, MaterialFilename const& material, bool option) {
    MaterialFilename const found = withExtension(material);
    addFile(cookie, MediaFileInfo(found, fileSize(found.getOsPath())), option);
}

void SystemCache::removeProxyFile(Cookie const& cookie, MediaFileInfo const& file) {
    Ox::Ptr<FsysDirectoryEntry> const entry =
        file.isProxy() ? findEntryForCookie(cookie) : Ox::Ptr<FsysDirectoryEntry>();
    if (entry) {
        entry->removeFile(file);
    }
}

void SystemCache::renameProxyFile(Cookie const& cookie, LightweightString<wchar_t> const& from,
                                  LightweightString<wchar_t> const& to) {
    if (Ox::Ptr<FsysDirectoryEntry> const entry = findEntryForCookie(cookie)) {
        entry->renameProxyFile(from, to);
    }
}

std::uint32_t SystemCache::updateStatus(Cookie const& cookie, eMediaTypes types) {
    Ox::Ptr<FsysDirectoryEntry> const entry = findEntryForCookie(cookie);
    return entry ? entry->updateStatus(types) : MediaFileInfo::missing;
}

DriveId SystemCache::getDriveForCookie(Cookie const& cookie, EditChanType type) {
    bool const isClip = cookie.type() == 'E';
    Cookie const asked =
        isClip ? convertCookie(cookie, type == videoChannel ? 'V' : 'S', Cookie::wholeClip) : cookie;
    Ox::Ptr<FsysDirectoryEntry> const entry = findEntryForCookie(asked);
    return entry ? entry->materialFilename.getDrive() : DriveId(DriveId::unavailable);
}

bool SystemCache::isEligible(LightweightString<wchar_t> const& name) {
    return hasMediaExtension(name);
}

MaterialFilename getMaterialFilenameForCookie(Cookie const& cookie, DriveId const& drive) {
    bool const isOnADrive = drive != DriveId();
    return {drive,
            (isOnADrive ? MediaDrive::getFolder(cookie) : LightweightString<wchar_t>()) + cookie.asWString()};
}
