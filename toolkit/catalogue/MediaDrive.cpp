#include "toolkit/catalogue/MediaDrive.h"

#include "ole/os/OS.h"

namespace {

LightweightString<wchar_t> folderFor(CookieType type) {
    switch (type) {
        case 'V':
            return L"Video/";
        case 'S':
            return L"Sound/";
        default:
            return {};
    }
}

}  // namespace

std::uint64_t MediaDrive::getSpaceBytes() const {
    Ox::Ptr<iVolume> const volume = OS()->getFileManager().getVolume(root_);
    return volume ? volume->getFreeBytes() : 0;
}

LightweightString<wchar_t> MediaDrive::getLocation(CookieType type) const {
    return root_ + folderFor(type);
}

LightweightString<wchar_t> MediaDrive::getFolder(Cookie const& cookie) {
    return folderFor(cookie.type());
}
