#include "toolkit/catalogue/SystemCache.h"

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

LightweightString<wchar_t> folderFor(CookieType type) {
    switch (static_cast<char>(type)) {
        case 'V':
            return L"Video/";
        case 'S':
            return L"Sound/";
        default:
            return {};
    }
}

}  // namespace

void SystemCache::addFile(Cookie const& cookie, MaterialFilename const& material, bool option) {
    MaterialFilename const found = withExtension(material);
    addFile(cookie, MediaFileInfo(found, fileSize(found.getOsPath())), option);
}

MaterialFilename getMaterialFilenameForCookie(Cookie const& cookie, DriveId const& drive) {
    bool const isOnADrive = drive != DriveId();
    return {drive,
            (isOnADrive ? folderFor(cookie.type()) : LightweightString<wchar_t>()) + cookie.asWString()};
}
