/// Whether media are on this machine or remote.
///
/// In a normal project the file manager knows of each file. In a remote project space every file is
/// reached by a link, so that the place to which it leads is compared with the roots of the space.
#include <algorithm>
#include <string_view>

#include "material/MaterialManager.h"
#include "ole/os/OS.h"
#include "toolkit/catalogue/ProjectSpaces.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/services/Paths.h"

namespace {

using Name = LightweightString<wchar_t>;
using Entries = std::vector<Ox::Ptr<FsysDirectoryEntry>>;

bool isRemoteName(Name const& name) {
    return OS()->getFileManager().isRemote(name);
}

bool mayLieElsewhere(MediaFileInfo const& file) {
    return file.kind == MediaFileInfo::kindElsewhere;
}

bool isRemoteFile(MediaFileInfo const& file) {
    return isRemoteName(file.getPhysicalFilename(false));
}

bool wants(eMediaTypes types, eMediaTypes one) {
    return (types & one) != 0;
}

bool isNormal(int spaceType) {
    return spaceType == ProjectSpacesManager::localSpace || spaceType == ProjectSpacesManager::sharedSpace;
}

Ox::Ptr<iRemoteProjectSpace> currentRemoteSpace() {
    return ProjectSpacesManager::instance()->getResourceForRemoteProjectSpace(Name());
}

/// Those of the cookies that the catalogue knows, in order.
Entries entriesOf(std::set<Cookie> const& cookies) {
    Entries entries;
    for (Cookie const& cookie : cookies) {
        if (Ox::Ptr<FsysDirectoryEntry> entry = SystemCache::instance()->findEntryForCookie(cookie)) {
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

/// Deliberate: each clip's answer takes the place of the one before.
bool isLastProxyRemote(Entries const& entries) {
    bool isRemote = false;
    for (Ox::Ptr<FsysDirectoryEntry> const& entry : entries) {
        std::vector<MediaFileInfo> const& proxies = entry->getProxyFiles();
        auto const found = std::find_if(proxies.begin(), proxies.end(), mayLieElsewhere);
        if (found != proxies.end()) {
            isRemote = isRemoteFile(*found);
        }
    }
    return isRemote;
}

bool isRemoteInNormalProject(Entries const& entries, eMediaTypes types) {
    if (wants(types, mediaProxy) && isLastProxyRemote(entries)) {
        return true;
    }
    return wants(types, mediaOriginal) &&
           std::any_of(entries.begin(), entries.end(), [](Ox::Ptr<FsysDirectoryEntry> const& entry) {
               return mayLieElsewhere(*entry) && isRemoteFile(*entry);
           });
}

bool liesBelow(RemoteRoot const& root, Name const& name) {
    Name const folder = joinPaths(root.path.empty() ? root.otherPath : root.path, Name());
    return !name.empty() && name.view().substr(0, folder.view().size()) == folder.view();
}

bool isOriginalInSpace(FsysDirectoryEntry const& entry, std::vector<RemoteRoot> const& roots) {
    if (!entry.isLinked() || roots.empty()) {
        return false;
    }
    Name const name = entry.getPhysicalFilename(true);
    return std::any_of(roots.begin(), roots.end(),
                       [&](RemoteRoot const& root) { return liesBelow(root, name); });
}

bool isProxyInSpace(FsysDirectoryEntry& entry) {
    static_cast<void>(entry.updateStatus(mediaProxy));
    std::vector<MediaFileInfo> const& proxies = entry.getProxyFiles();
    return std::any_of(proxies.begin(), proxies.end(), [](MediaFileInfo const& proxy) {
        return mayLieElsewhere(proxy) && proxy.status == MediaFileInfo::available;
    });
}

bool isRemoteInRemoteSpace(Entries const& entries, std::vector<RemoteRoot> const& roots, eMediaTypes types) {
    return std::any_of(entries.begin(), entries.end(), [&](Ox::Ptr<FsysDirectoryEntry> const& entry) {
        return (wants(types, mediaOriginal) && isOriginalInSpace(*entry, roots)) ||
               (wants(types, mediaProxy) && isProxyInSpace(*entry));
    });
}

bool isLocalProxy(MediaFileInfo const& proxy) {
    return !mayLieElsewhere(proxy) || !isRemoteFile(proxy);
}

bool hasLocalProxy(Ox::Ptr<FsysDirectoryEntry> const& entry) {
    std::vector<MediaFileInfo> const& proxies = entry->getProxyFiles();
    return std::any_of(proxies.begin(), proxies.end(), isLocalProxy);
}

/// All clips are asked, even when the answer is known.
bool hasAnyLocalProxy(Entries const& entries) {
    return std::count_if(entries.begin(), entries.end(), hasLocalProxy) != 0;
}

bool isOriginalHere(Ox::Ptr<FsysDirectoryEntry> const& entry) {
    Name const name = entry->getPhysicalFilename(false);
    return !name.empty() && (!mayLieElsewhere(*entry) || !isRemoteName(name));
}

bool isLocalInNormalProject(Entries const& entries, eMediaTypes types) {
    return (wants(types, mediaProxy) && hasAnyLocalProxy(entries)) ||
           (wants(types, mediaOriginal) && std::any_of(entries.begin(), entries.end(), isOriginalHere));
}

/// An empty path occurs in every name.
bool isOriginalOutsideSpace(FsysDirectoryEntry& entry, std::vector<RemoteRoot> const& roots) {
    Name const name = entry.getPhysicalFilename(false);
    if (roots.empty() || name.empty() || entry.updateStatus(mediaOriginal) != MediaFileInfo::available) {
        return false;
    }
    return std::none_of(roots.begin(), roots.end(), [&](RemoteRoot const& root) {
        return name.view().find(root.localPath.view()) != std::wstring_view::npos;
    });
}

bool hasProxyHere(FsysDirectoryEntry const& entry) {
    std::vector<MediaFileInfo> const& proxies = entry.getProxyFiles();
    return std::any_of(proxies.begin(), proxies.end(),
                       [](MediaFileInfo const& proxy) { return !isRemoteFile(proxy); });
}

bool isLocalInRemoteSpace(Entries const& entries, std::vector<RemoteRoot> const& roots, eMediaTypes types) {
    return std::any_of(entries.begin(), entries.end(), [&](Ox::Ptr<FsysDirectoryEntry> const& entry) {
        return (wants(types, mediaOriginal) && isOriginalOutsideSpace(*entry, roots)) ||
               (wants(types, mediaProxy) && hasProxyHere(*entry));
    });
}

CookieVec vectorOf(Cookie const& cookie) {
    CookieVec cookies;
    cookies.add(cookie);
    return cookies;
}

bool canDownloadFrom(iRemoteProjectSpace& space, Cookie const& cookie, eMediaTypes types) {
    CookieVec const one = vectorOf(cookie);
    if (wants(types, mediaOriginal) && !space.getOriginalFiles(cookie, 0).empty() &&
        !MaterialManager::logsReferToLocalMedia(one, mediaOriginal)) {
        return true;
    }
    return wants(types, mediaProxy) && space.hasProxy(cookie) &&
           !MaterialManager::logsReferToLocalMedia(one, mediaProxy);
}

/// Deliberate: the answer for originals isn't kept where proxies are asked for as well.
bool canDownloadLinks(CookieVec const& cookies, eMediaTypes types) {
    bool canDownload = false;
    if (wants(types, mediaOriginal)) {
        canDownload = MaterialManager::logsReferToRemoteMedia(cookies, mediaOriginal);
    }
    if (wants(types, mediaProxy)) {
        canDownload = MaterialManager::logsReferToRemoteMedia(cookies, mediaProxy);
    }
    return canDownload;
}

}  // namespace

bool MaterialManager::isMediaRemote(std::set<Cookie> const& cookies, eMediaTypes types) {
    int const spaceType = ProjectSpacesManager::instance()->getCurrentProjectSpaceType();
    if (isNormal(spaceType)) {
        return isRemoteInNormalProject(entriesOf(cookies), types);
    }
    Ox::Ptr<iRemoteProjectSpace> const space = spaceType == ProjectSpacesManager::remoteSpace
                                                   ? currentRemoteSpace()
                                                   : Ox::Ptr<iRemoteProjectSpace>();
    return space && isRemoteInRemoteSpace(entriesOf(cookies), space->getRoots(), types);
}

bool MaterialManager::isMediaRemote(Cookie const& cookie, eMediaTypes types) {
    return isMediaRemote(std::set<Cookie>{cookie}, types);
}

bool MaterialManager::isMediaLocal(std::set<Cookie> const& cookies, eMediaTypes types) {
    int const spaceType = ProjectSpacesManager::instance()->getCurrentProjectSpaceType();
    if (isNormal(spaceType)) {
        return isLocalInNormalProject(entriesOf(cookies), types);
    }
    Ox::Ptr<iRemoteProjectSpace> const space = spaceType == ProjectSpacesManager::remoteSpace
                                                   ? currentRemoteSpace()
                                                   : Ox::Ptr<iRemoteProjectSpace>();
    return space && isLocalInRemoteSpace(entriesOf(cookies), space->getRoots(), types);
}

bool MaterialManager::isMediaLocal(Cookie const& cookie, eMediaTypes types) {
    return isMediaLocal(std::set<Cookie>{cookie}, types);
}

bool MaterialManager::canDownload(CookieVec const& cookies, eMediaTypes types) {
    Ox::Ptr<iRemoteProjectSpace> const space = currentRemoteSpace();
    if (!space) {
        return canDownloadLinks(cookies, types);
    }
    return std::any_of(cookies.begin(), cookies.end(),
                       [&](Cookie const& cookie) { return canDownloadFrom(*space, cookie, types); });
}

bool MaterialManager::canDownload(Cookie const& cookie, eMediaTypes types) {
    return canDownload(vectorOf(cookie), types);
}

bool MaterialManager::logsReferToRemoteMedia(CookieVec const& cookies, eMediaTypes types) {
    std::set<Cookie> files;
    getReferencedMediaFiles(cookies, files);
    return !files.empty() && isMediaRemote(files, types);
}

bool MaterialManager::logsReferToLocalMedia(CookieVec const& cookies, eMediaTypes types) {
    std::set<Cookie> files;
    getReferencedMediaFiles(cookies, files);
    return !files.empty() && isMediaLocal(files, types);
}
