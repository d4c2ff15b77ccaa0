// The list of jobs and the flow; how a file is copied is in DownloadTaskSave.cpp.

#include "transfer/DownloadTask.h"

#include "ole/os/OS.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/services/Paths.h"

namespace {

/// What every job of one list of remote files needs.
MaterialFilename placeOfImport(Cookie const& cookie, LightweightString<wchar_t> const& source) {
    LightweightString<wchar_t> const path = joinPaths(MediaDrive::getFolder(cookie), cookie.asWString()) +
                                            LightweightString<wchar_t>(L".") + getExtension(source, false);
    return {DiskManager::instance().getDriveForTask("import", true), path};
}

bool isPlacedOnDrive(MaterialFilename const& material) {
    return material.getDrive() != DriveId::none && !material.getPath().empty();
}

bool isDownloadable(MediaFileInfo const& proxy) {
    return proxy.kind == MediaFileInfo::kindElsewhere && proxy.status == MediaFileInfo::available;
}

}  // namespace

DownloadTask::DownloadTask(Args const& args)
    : clips(args.clips),
      mediaTypes(args.mediaTypes),
      importance(args.importance),
      description(args.description) {}

int DownloadTask::download(std::set<Cookie> const& cookies) {
    Ox::Ptr<iRemoteProjectSpace> const space =
        ProjectSpacesManager::instance()->getResourceForRemoteProjectSpace({});
    Jobs jobs;
    for (Cookie const& cookie : cookies) {
        addJobs(cookie, space.get(), jobs);
    }
    if (!sufficientDiskSpace(jobs, getLog())) {
        return resultNoSpace;
    }
    for (CopyJob const& job : jobs) {
        eCopyRC const code = save(job);
        if (code != iFileManager::copied) {
            return code == iFileManager::copyStopped ? resultStopped : resultFailed;
        }
        completedBytes += job.size;
    }
    return resultComplete;
}

void DownloadTask::addJobs(Cookie const& cookie, iRemoteProjectSpace* space, Jobs& jobs) {
    Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(cookie);
    if (!entry) {
        return;
    }
    if ((mediaTypes & mediaOriginal) != 0) {
        CopyJob job;
        job.cookie = cookie;
        if (entry->isLinked()) {
            addLinked(job, *entry, jobs);
        } else if (!isPlacedOnDrive(entry->materialFilename) && space != nullptr) {
            addRemote(job, *space, jobs);
        }
    }
    if ((mediaTypes & mediaProxy) != 0) {
        addProxies(cookie, *entry, jobs);
    }
}

/// False if the source is the business of an earlier job; else its size is known and counted.
bool DownloadTask::take(CopyJob& job) {
    if (!pendingFiles.insert(job.filename).second) {
        return false;
    }
    job.size = OS()->getFileManager().getFileSize(job.filename);
    totalBytes += job.size;
    return true;
}

void DownloadTask::addLinked(CopyJob job, FsysDirectoryEntry const& entry, Jobs& jobs) {
    job.filename = entry.getPhysicalFilename(false);
    if (take(job)) {
        destinations[job.filename] = entry.materialFilename.getOsPath();
    }
    job.info = entry;
    jobs.push_back(job);
}

void DownloadTask::addRemote(CopyJob job, iRemoteProjectSpace& space, Jobs& jobs) {
    std::vector<Name> const files =
        space.getOriginalFiles(convertCookie(job.cookie, 'E', Cookie::wholeClip), 0);
    if (files.empty()) {
        return;
    }
    job.filename = files.front();
    if (take(job)) {
        MaterialFilename const place = placeOfImport(job.cookie, job.filename);
        job.info = MediaFileInfo(place, job.size);
        destinations[job.filename] = place.getOsPath();
    }
    jobs.push_back(job);
}

void DownloadTask::addProxies(Cookie const& cookie, FsysDirectoryEntry const& entry, Jobs& jobs) {
    for (MediaFileInfo const& proxy : entry.getProxyFiles()) {
        CopyJob job;
        job.cookie = cookie;
        job.filename = proxy.getPhysicalFilename(false);
        job.info = proxy;
        if (isDownloadable(proxy) && take(job)) {
            jobs.push_back(job);
        }
    }
}

bool DownloadTask::sufficientDiskSpace(Jobs const&, Ox::Ptr<iTaskLog> const&) const {
    return true;
}

float DownloadTask::getProgress() const {
    std::uint64_t const total = totalBytes;
    return total == 0 ? 0.0F
                      : static_cast<float>(currentFileBytes + completedBytes) / static_cast<float>(total);
}

void DownloadTask::updateProgress() {
    if (Ox::Ptr<iTaskLog> const log = getLog()) {
        log->reportProgress({}, static_cast<double>(getProgress()));
    }
}

int DownloadTask::copyProgress(void* task, unsigned long copied, unsigned long) {
    auto* const self = static_cast<DownloadTask*>(task);
    self->currentFileBytes = copied;
    self->updateProgress();
    return self->getStatus() != stopAsked ? 1 : 0;
}
