// How one job is carried out once its destination is known.

#include <algorithm>
#include <string_view>

#include "ole/os/OS.h"
#include "toolkit/image/ImageLoader.h"
#include "toolkit/services/FilespecUtils.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/ResourceText.h"
#include "toolkit/tasks/BackgroundTaskQueue.h"
#include "transfer/DownloadTask.h"

namespace {

using Name = LightweightString<wchar_t>;

constexpr wchar_t const* partialSuffix = L".partial";
constexpr std::wstring_view chunkExtension = L".r3d";

iFileManager& files() {
    return OS()->getFileManager();
}

bool endsInChunkExtension(std::wstring_view name) {
    auto const isSame = [](wchar_t a, wchar_t b) {
        return (a >= L'A' && a <= L'Z' ? a - L'A' + L'a' : a) == b;
    };
    return name.size() >= chunkExtension.size() &&
           std::equal(name.end() - chunkExtension.size(), name.end(), chunkExtension.begin(),
                      chunkExtension.end(), isSame);
}

/// Whether the second member of the numbered series that `source` begins is there.
bool hasSecondMember(Name const& source) {
    Name const second = Ox::FilespecUtils::getSEQFileName(source, 1);
    return second != source && files().fileExists(second);
}

Name folderFor(Name const& destination) {
    return stripExtension(destination);
}

}  // namespace

iFileManager::eCopyRC DownloadTask::save(CopyJob const& job, Name const& destination) {
    if (pendingFiles.count(job.filename) == 0) {
        return iFileManager::copied;
    }
    EditPtr edit;
    edit.i_open(convertCookie(job.cookie, 'E', Cookie::wholeClip), 0);
    announce(edit, job);
    // Taken out before the copy, so that no other job tries a file again that failed.
    pendingFiles.erase(job.filename);
    return saveAsWhatItIs(edit, job.filename, destination);
}

void DownloadTask::announce(EditPtr const& edit, CopyJob const& job) {
    Name heading = edit ? edit->getName() : Name();
    if (edit && job.info.isProxy()) {
        heading = heading + paddedResourceStrW(ResIds::proxyMarker, " (", ")", resourcePadded);
    }
    getLog()->write(heading, LoggerBase::plainLine);
}

iFileManager::eCopyRC DownloadTask::saveAsWhatItIs(EditPtr& edit, Name const& source,
                                                   Name const& destination) {
    if (!files().isRemote(source)) {
        if (isImageSequence(edit, source)) {
            return saveImageSequence(source, destination);
        }
        if (isChunkedFile(source)) {
            return saveChunkedFile(source, destination);
        }
    }
    eCopyRC const code = savefile(source, destination);
    if (code == iFileManager::copied) {
        savedFiles.push_back(destination);
    }
    return code;
}

iFileManager::eCopyRC DownloadTask::savefile(Name const& source, Name const& destination) {
    if (destination.empty()) {
        return iFileManager::copyNoDestination;
    }
    currentFileBytes = 0;
    Name const partial = destination + Name(partialSuffix);
    eCopyRC const code = files().copyFile(source, partial, true, copyProgress, this);
    if (code != iFileManager::copied) {
        logCopyFailure(code, destination);
        files().deleteFile(partial);
        return code;
    }
    if (!files().renameFile(partial, destination, true)) {
        getLog()->write(OS()->getErrors().getLastErrorText(), LoggerBase::errorLine);
    }
    return iFileManager::copied;
}

bool DownloadTask::isChunkedFile(Name const& source) {
    return endsInChunkExtension(source.view()) && hasSecondMember(source);
}

iFileManager::eCopyRC DownloadTask::saveChunkedFile(Name const& source, Name const& destination) {
    Name const folder = folderFor(destination);
    if (!files().createDirectory(folder)) {
        return iFileManager::copyNoFolder;
    }
    totalBytes = 0;
    std::vector<iFileManager::DirectoryItem> chunks;
    for (std::uint32_t index = 0;; ++index) {
        iFileManager::DirectoryItem const chunk =
            files().getFileInfo(Ox::FilespecUtils::getSEQFileName(source, index));
        if (chunk.size == 0) {
            break;
        }
        chunks.push_back(chunk);
        totalBytes += chunk.size;
    }
    eCopyRC code = iFileManager::copyNoFolder;
    for (iFileManager::DirectoryItem const& chunk : chunks) {
        getLog()->write(chunk.name, LoggerBase::plainLine);
        code = savefile(chunk.name, joinPaths(folder, stripPath(chunk.name)));
        if (code != iFileManager::copied) {
            break;
        }
        completedBytes += chunk.size;
    }
    return code;
}

bool DownloadTask::isImageSequence(EditPtr& edit, Name const& source) {
    if (!OxImage::Loader::canLoadImage(source)) {
        return false;
    }
    Ox::Ptr<Cel> const cel = edit ? edit->getCel(edit->getId(0)) : Ox::Ptr<Cel>();
    bool const isStill = cel && cel->get_strip_velocity(cel->get_start_ceh()) == 0.0;
    return !isStill && hasSecondMember(source);
}

iFileManager::eCopyRC DownloadTask::saveImageSequence(Name const& source, Name const& destination) {
    Name const folder = folderFor(destination);
    if (!files().createDirectory(folder)) {
        return iFileManager::copyNoFolder;
    }
    std::uint32_t count = 0;
    while (files().fileExists(Ox::FilespecUtils::getSEQFileName(source, count))) {
        ++count;
    }
    Name const inFolder = folder + Name(std::wstring(1, files().getPathSeparator()));
    getLog()->startSubTasks(count);
    totalBytes = count;
    countsFrames_ = true;
    eCopyRC code = iFileManager::copied;
    std::uint32_t index = 0;
    do {
        Name const frame = Ox::FilespecUtils::getSEQFileName(source, index);
        getLog()->write(frame, LoggerBase::plainLine);
        code = imageSeqCopyFiles(frame, inFolder + stripPath(frame));
        completedBytes += 1;
        getLog()->nextSubTask();
        ++index;
    } while (index < count && code == iFileManager::copied);
    getLog()->endSubTasks();
    return code;
}

iFileManager::eCopyRC DownloadTask::imageSeqCopyFiles(Name const& source, Name const& destination) {
    eCopyRC const code = files().copyFile(source, destination, true, nullptr, nullptr);
    if (code != iFileManager::copied) {
        logCopyFailure(code, destination);
        return code;
    }
    bool const isStopped = BackgroundTaskQueueBase::getCurrentTaskStatus() == stopAsked;
    return isStopped ? iFileManager::copyStopped : iFileManager::copied;
}

void DownloadTask::logCopyFailure(eCopyRC code, Name const& destination) {
    Name text(L"Error copying/downloading file");
    switch (code) {
        case iFileManager::copyStopped:
            return;
        case iFileManager::copyCannotAccess:
            text = resourceStrW(ResIds::fileCopyFailed).substitute(L"$FILE$", destination);
            break;
        case iFileManager::copyFailed:
            text = resourceStrW(oxCopyFailed, resourceSentence);
            break;
        default:
            break;
    }
    getLog()->write(text, LoggerBase::errorLine);
}
