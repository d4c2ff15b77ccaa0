#include "transfer/ExternalDownloadTask.h"

#include "material/MaterialManager.h"
#include "ole/os/OS.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/services/FilespecUtils.h"
#include "toolkit/services/NumberText.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/ResourceText.h"

namespace {

/// Takes the place of what a file's name can't hold.
constexpr wchar_t safeCharacter = L'_';

}  // namespace

int ExternalDownloadTask::run() {
    std::set<Cookie> remote;
    for (Cookie const& clip : clips) {
        for (Ox::Ptr<FsysDirectoryEntry> const& entry : SystemCache::instance()->getClipMediaFiles(clip)) {
            if (MaterialManager::isMediaRemote(entry->getCookie(), mediaTypes)) {
                remote.insert(entry->getCookie());
            }
        }
    }
    int const result = download(remote);
    if (result == resultComplete) {
        getLog()->write(savedFiles.empty() ? settings.location
                                           : LoggerBase::HyperLink(settings.location, savedFiles).asString(),
                        LoggerBase::closingLine);
    }
    return result;
}

iFileManager::eCopyRC ExternalDownloadTask::save(CopyJob const& job) {
    EditPtr edit;
    edit.i_open(convertCookie(job.cookie, 'E', Cookie::wholeClip), 0);
    return save(job, joinPaths(settings.location, fileNameFor(job, edit)));
}

LightweightString<wchar_t> ExternalDownloadTask::fileNameFor(CopyJob const& job, EditPtr const& edit) const {
    Name const source = fixForeignOSFileName(OS()->getFileManager().getDisplayFilename(job.filename));
    bool const isProxy = job.info.isProxy();
    if (!edit || settings.naming != Settings::namedByClip) {
        return isProxy ? stripPathAndExt(source) + Name(L".") + settings.proxyExt : stripPath(source);
    }
    return Ox::FilespecUtils::makeSafeFilename(edit->getName(), safeCharacter) +
           (isProxy ? Name(L".proxy.") + settings.proxyExt : Name(L".") + getExtension(source, false));
}

bool ExternalDownloadTask::sufficientDiskSpace(Jobs const&, Ox::Ptr<iTaskLog> const& log) const {
    Ox::Ptr<iVolume> const volume = OS()->getFileManager().getVolume(settings.location);
    if (!volume) {
        return true;
    }
    std::uint64_t const free = volume->getFreeBytes();
    std::uint64_t const needed = totalBytes;
    if (needed < free) {
        return true;
    }
    log->write(resourceStrW(ResIds::tooLittleSpace)
                   .substitute(L"$NUM1$", bytesAsString(free, true))
                   .substitute(L"$NUM2$", bytesAsString(needed, true)),
               LoggerBase::errorLine);
    return false;
}
