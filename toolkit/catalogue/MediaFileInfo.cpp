#include "toolkit/catalogue/MediaFileInfo.h"

#include "ole/os/OS.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/MaterialLink.h"

LightweightString<wchar_t> MaterialFilename::getOsPath() const {
    if (path_.empty() || drive_ == DriveId::none) {
        return path_;
    }
    LightweightString<wchar_t> const root = DiskManager::instance().getDriveRoot(drive_);
    return root.empty() ? root : root + path_;
}

LightweightString<wchar_t> MediaFileInfo::getPhysicalFilename(bool asStored) const {
    LightweightString<wchar_t> const stored =
        physicalFilename.empty() ? materialFilename.getOsPath() : physicalFilename;
    return asStored || stored.empty() ? stored : OS()->getFileManager().getMountedFilename(stored);
}

bool MediaFileInfo::createLinkFile(bool replaceExisting) const {
    LightweightString<wchar_t> const place = getLinkFileName();
    return !place.empty() && !physicalFilename.empty() &&
           MaterialLink::createLink(place, physicalFilename, replaceExisting);
}
