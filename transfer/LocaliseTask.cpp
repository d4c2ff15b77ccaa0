#include "transfer/LocaliseTask.h"

#include "files/PlayFileCache.h"
#include "material/MaterialManager.h"
#include "ole/os/OS.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/MaterialLink.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/EditModifier.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/NumberText.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/ResourceText.h"

int LocaliseTask::run() {
    int const result = download(selectedMedia());
    if (result != resultNoSpace) {
        tellClips();
    }
    return result;
}

std::set<Cookie> LocaliseTask::selectedMedia() const {
    std::set<Cookie> media;
    for (Cookie const& clip : clips) {
        EditPtr edit;
        edit.i_open(clip, 0);
        if (!edit || !edit->isValid() || !isSelected(clip)) {
            continue;
        }
        for (Ox::Ptr<FsysDirectoryEntry> const& entry : SystemCache::instance()->getClipMediaFiles(clip)) {
            media.insert(entry->getCookie());
        }
    }
    return media;
}

bool LocaliseTask::isSelected(Cookie const& clip) const {
    bool const isDownloadable = MaterialManager::canDownload(clip, mediaTypes);
    return (clipSelection & (isDownloadable ? selectDownloadable : selectLinked)) != 0;
}

void LocaliseTask::tellClips() const {
    for (Cookie const& clip : clips) {
        EditPtr edit;
        edit.i_open(clip, 0);
        EditModifier modifier(edit, {});
        edit.i_close();
        if (modifier) {
            modifier->addModification(EditModifications(EditModification(mediaMoved, 1)));
        }
    }
}

iFileManager::eCopyRC LocaliseTask::save(CopyJob const& job) {
    eCopyRC const code = save(job, job.info.materialFilename.getOsPath());
    updateStatus(job, code);
    return code;
}

iFileManager::eCopyRC LocaliseTask::savefile(Name const& source, Name const& destination) {
    eCopyRC const code = DownloadTask::savefile(source, destination);
    if (code == iFileManager::copied) {
        PlayFileCache::Shared()->remove(source);
    }
    return code;
}

bool LocaliseTask::sufficientDiskSpace(Jobs const& jobs, Ox::Ptr<iTaskLog> const& log) const {
    std::set<DriveId> drives;
    for (CopyJob const& job : jobs) {
        drives.insert(job.info.materialFilename.getDrive());
    }
    std::uint64_t const needed = totalBytes;
    for (DriveId const& id : drives) {
        Ox::Ptr<MediaDrive> const drive = DiskManager::instance().getDriveWithUniqueId(id);
        if (!drive) {
            continue;
        }
        std::uint64_t const space = drive->getSpaceBytes();
        if (space < needed) {
            log->write(resourceStrW(ResIds::tooLittleSpace)
                           .substitute(L"$NUM1$", bytesAsString(space, true))
                           .substitute(L"$NUM2$", bytesAsString(needed, true)),
                       LoggerBase::errorLine);
            return false;
        }
    }
    return true;
}

void LocaliseTask::updateStatus(CopyJob const& job, eCopyRC code) {
    if (code != iFileManager::copied) {
        cancel(job);
    } else if (job.info.isProxy()) {
        renameProxies(job);
    } else {
        updateOriginal(job);
    }
}

void LocaliseTask::cancel(CopyJob const& job) const {
    LogBoth("cancel download for %ls\n", job.filename.c_str());
    SystemCache::instance()->removeProxyFile(job.cookie, job.info);
    SystemCache::instance()->updateStatus(job.cookie, mediaAll);
}

/// Old and new name are the same text: the catalogue looks anew at what lies there.
void LocaliseTask::renameProxies(CopyJob const& job) const {
    LogBoth("rename proxy for %ls\n", job.filename.c_str());
    Name const path = job.info.materialFilename.getOsPath();
    SystemCache::instance()->renameProxyFile(job.cookie, path, path);
    for (std::uint32_t stream = 1; stream <= job.info.streamCount; ++stream) {
        Cookie const sound = convertCookie(job.cookie, 'S', static_cast<unsigned char>(stream));
        SystemCache::instance()->renameProxyFile(sound, path, path);
    }
}

void LocaliseTask::updateOriginal(CopyJob const& job) {
    Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(job.cookie);
    if (!entry) {
        return;
    }
    MaterialFilename const material = entry->materialFilename;
    if (material.getDrive() == DriveId::none || material.getPath().empty()) {
        bringFromSpace(job, *entry);
    } else if (job.cookie.type() == 'S') {
        updateSound(*entry);
    } else {
        updatePictures(job, *entry);
    }
}

/// The file came from the remote project space. One that an earlier job brought, for another clip, is linked.
void LocaliseTask::bringFromSpace(CopyJob const& job, FsysDirectoryEntry& entry) {
    entry.addFile(job.info);
    if (job.size == 0) {
        entry.setLinkedFilename(destinations[job.filename]);
        entry.realiseLinks(false);
    }
}

void LocaliseTask::updateSound(FsysDirectoryEntry& entry) {
    Name const linked = entry.getLinkedFilename();
    auto const found = destinations.find(linked);
    if (found != destinations.end() && found->second != linked) {
        entry.setLinkedFilename(found->second);
        entry.updateFileSize();
        if (entry.isLinked()) {
            entry.realiseLinks(true);
        }
    } else {
        entry.setLinkedFilename({});
        entry.updateFileSize();
    }
}

/// Frames of a sequence and chunks lie in a folder now, and a link file under the material's name leads to the first
/// of them; any other copy lies under that name itself.
void LocaliseTask::updatePictures(CopyJob const& job, FsysDirectoryEntry& entry) {
    EditPtr edit;
    edit.i_open(convertCookie(job.cookie, 'E', Cookie::wholeClip), 0);
    if (!isImageSequence(edit, job.filename) && !isChunkedFile(job.filename)) {
        entry.setLinkedFilename({});
        entry.updateFileSize();
        return;
    }
    Name const material = job.info.materialFilename.getOsPath();
    Name const separator(std::wstring(1, OS()->getFileManager().getPathSeparator()));
    entry.setLinkedFilename(stripExtension(material) + separator + stripPath(job.filename));
    MaterialLink::createLink(material, entry.getLinkedFilename(), true);
}
