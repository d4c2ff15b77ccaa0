#include "toolkit/catalogue/MediaFileInfo.h"

#include "ole/os/OS.h"
#include "toolkit/catalogue/DiskManager.h"

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

namespace {

/// A file on another machine is there for whoever the file manager can ask for its size.
std::uint32_t statusOf(MediaFileInfo const& file) {
    LightweightString<wchar_t> const name = file.getPhysicalFilename();
    bool const isThere = !name.empty() && OS()->getFileManager().fileExists(name);
    return isThere ? MediaFileInfo::available : MediaFileInfo::missing;
}

}  // namespace

std::uint32_t FsysDirectoryEntry::updateStatus(eMediaTypes types) {
    std::uint32_t result = missing;
    if ((types & mediaOriginal) != 0) {
        status = statusOf(*this);
        result = status;
    }
    if ((types & mediaProxy) != 0) {
        for (MediaFileInfo& proxy : proxies_) {
            proxy.status = statusOf(proxy);
            result = proxy.status == available ? available : result;
        }
    }
    return result;
}
