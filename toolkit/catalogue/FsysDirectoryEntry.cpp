/// Whatever asks the file system comes first and without a lock; the change itself only compares names, so that what
/// was learned of one file is never kept of another that has taken its place meanwhile.
#include "toolkit/catalogue/FsysDirectoryEntry.h"

#include <algorithm>

#include "ole/os/OS.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/MaterialLink.h"
#include "toolkit/image/DecodeFormat.h"
#include "toolkit/services/Paths.h"

namespace {

using Name = LightweightString<wchar_t>;

/// A file on another machine is there for whoever the file manager can ask for its size.
std::uint32_t statusOf(MediaFileInfo const& file) {
    Name const name = file.getPhysicalFilename();
    bool const isThere = !name.empty() && OS()->getFileManager().fileExists(name);
    return isThere ? MediaFileInfo::available : MediaFileInfo::missing;
}

/// The file as linked, if there is a link file at its place.
MediaFileInfo behindLinkFile(MediaFileInfo file) {
    bool const isSaidToBeHere = file.kind != MediaFileInfo::kindElsewhere && file.physicalFilename.empty();
    Name const target = isSaidToBeHere ? MaterialLink::readLink(file.getLinkFileName()) : Name();
    if (!target.empty()) {
        file.setLink(target);
        file.size = fileSize(file.getPhysicalFilename());
    }
    return file;
}

/// The place as a path on the drive if it lies there, else as a path of no drive.
MaterialFilename placeOn(DriveId const& drive, Name const& path) {
    Name const root = drive == DriveId::none ? Name() : DiskManager::instance().getDriveRoot(drive);
    if (root.empty() || !path.view().starts_with(root.view())) {
        return {DriveId::none, path};
    }
    return {drive, Name(path.view().substr(root.length()))};
}

/// Sets a value; true if that changed it.
template <class T>
bool assign(T& variable, T const& value) {
    bool const isChanged = variable != value;
    variable = value;
    return isChanged;
}

/// Gives `kept` the status of `looked` if both are the same file; true if that changed it.
bool takeStatus(MediaFileInfo& kept, MediaFileInfo const& looked) {
    return kept.isSameFile(looked) && assign(kept.status, looked.status);
}

}  // namespace

void CookieMedia::add(MediaFileInfo const& file) {
    if (file.isProxy()) {
        proxies.push_back(file);
    } else {
        original = file;
    }
}

std::vector<MediaFileInfo> CookieMedia::take(eMediaTypes types) {
    std::vector<MediaFileInfo> taken;
    if ((types & mediaOriginal) != 0 && original) {
        taken.push_back(*original);
        original.reset();
    }
    if ((types & mediaProxy) != 0) {
        taken.insert(taken.end(), proxies.begin(), proxies.end());
        proxies.clear();
    }
    return taken;
}

MediaFileInfo const* CookieMedia::ofLevel(std::uint32_t level) const {
    if (level == levelProxy) {
        return proxies.empty() ? nullptr : &proxies.front();
    }
    return original ? &*original : nullptr;
}

FsysDirectoryEntry::FsysDirectoryEntry(Cookie const& cookie, CookieMedia const& media,
                                       Ox::Ptr<iMediaKeeper> const& keeper)
    : cookie_(cookie), keeper_(keeper) {
    show(media);
}

CookieMedia FsysDirectoryEntry::media() const {
    CookieMedia media;
    if (hasOriginal_) {
        media.original = *this;
    }
    media.proxies = proxies_;
    return media;
}

void FsysDirectoryEntry::show(CookieMedia const& media) {
    hasOriginal_ = media.original.has_value();
    static_cast<MediaFileInfo&>(*this) = media.original.value_or(MediaFileInfo());
    status = hasOriginal_ ? status : missing;
    proxies_ = media.proxies;
}

void FsysDirectoryEntry::change(iMediaKeeper::Change const& change) {
    CookieMedia now = media();
    if (!keeper_) {
        change(now);
        show(now);
    } else if (keeper_->change(cookie_, change, now)) {
        show(now);
    }
}

/// A link to itself would lose the media with the next move: what lies at its own place is no link.
void FsysDirectoryEntry::setLinkedFilename(Name const& name) {
    MaterialFilename const own = materialFilename;
    bool const isOwnPlace = name == getLinkFileName();
    change([&](CookieMedia& kept) {
        if (!kept.original) {
            return false;
        }
        bool const isAtHome = isOwnPlace && kept.original->materialFilename == own;
        kept.original->setLink(isAtHome ? Name() : name);
        return true;
    });
}

void FsysDirectoryEntry::updateFileSize() {
    Name const name = getPhysicalFilename();
    MediaFileInfo const measured = *this;
    std::uint64_t const byteCount = name.empty() ? 0 : fileSize(name);
    change([&](CookieMedia& kept) {
        return kept.original && kept.original->isSameFile(measured) && assign(kept.original->size, byteCount);
    });
}

bool FsysDirectoryEntry::realiseLinks(bool replaceExisting) {
    return isLinked() && createLinkFile(replaceExisting);
}

void FsysDirectoryEntry::addFile(MediaFileInfo const& file) {
    MediaFileInfo const found = behindLinkFile(file);
    change([&](CookieMedia& kept) {
        kept.add(found);
        return true;
    });
}

void FsysDirectoryEntry::removeFile(MediaFileInfo const& file) {
    MediaFileInfo const removed = file;  // which may be one of this entry's own
    change([&](CookieMedia& kept) {
        if (removed.isProxy()) {
            return std::erase_if(kept.proxies,
                                 [&](MediaFileInfo const& proxy) { return proxy.isSameFile(removed); }) != 0;
        }
        bool const isKept = kept.original && kept.original->isSameFile(removed);
        if (isKept) {
            kept.original.reset();
        }
        return isKept;
    });
}

void FsysDirectoryEntry::renameProxyFile(Name const& from, Name const& to) {
    auto const found = std::find_if(proxies_.begin(), proxies_.end(), [&](MediaFileInfo const& proxy) {
        return !from.empty() && proxy.getLinkFileName() == from;
    });
    if (found == proxies_.end()) {
        return;
    }
    MediaFileInfo const before = *found;
    MediaFileInfo after = before;
    after.setLink(Name());
    if (from != to) {
        after.setMaterialFilename(placeOn(before.materialFilename.getDrive(), to));
    }
    after.size = fileSize(to);
    after.status = statusOf(after);
    change([&](CookieMedia& kept) {
        auto const proxy = std::find_if(kept.proxies.begin(), kept.proxies.end(),
                                        [&](MediaFileInfo const& each) { return each.isSameFile(before); });
        if (proxy == kept.proxies.end()) {
            return false;
        }
        *proxy = after;
        return true;
    });
}

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
    CookieMedia const looked = media();
    change([&](CookieMedia& kept) {
        bool isChanged = (types & mediaOriginal) != 0 && kept.original && looked.original &&
                         takeStatus(*kept.original, *looked.original);
        for (MediaFileInfo const& proxy : looked.proxies) {
            for (MediaFileInfo& each : kept.proxies) {
                isChanged = ((types & mediaProxy) != 0 && takeStatus(each, proxy)) || isChanged;
            }
        }
        return isChanged;
    });
    return result;
}
