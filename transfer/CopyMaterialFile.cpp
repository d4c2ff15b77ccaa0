#include "transfer/CopyMaterialFile.h"

#include <string>

#include "ole/os/OS.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/ResourceText.h"

namespace {

using Name = LightweightString<wchar_t>;
using eCopyRC = iFileManager::eCopyRC;

/// In a narrow name, a drive and what separates it from the path.
constexpr std::size_t drivePrefixLength = 2;

iFileManager& files() {
    return OS()->getFileManager();
}

/// One file on its way.
class Relocation {
public:
    Relocation(MediaFileInfoEx const& file, DriveId const& destination, LoggerHandle& handle)
        : file_(file),
          target_(destination, file.materialFilename.getPath()),
          sourcePath_(file.materialFilename.getOsPath()),
          targetPath_(target_.getOsPath()),
          handle_(handle) {}

    void run(Ox::Ptr<MediaDrive> const& destination, MaterialMove::eType type, FsysDirectoryEntry& entry) {
        if (files().fileExists(targetPath_)) {
            return;
        }
        eCopyRC const code = bring(destination);
        if (code != iFileManager::copied) {
            tellFailure(code);
            return;
        }
        bool const isMove = type == MaterialMove::moveFiles;
        if (isMove) {
            files().deleteFile(sourcePath_);
            entry.removeFile(file_);
            entry.addFile(moved());
        }
        if (!file_.isProxy()) {
            bringCompanions(isMove);
        }
    }

private:
    /// The link itself, if it leads to another drive's own folder; else the file.
    eCopyRC bring(Ox::Ptr<MediaDrive> const& destination) {
        Name const physical = file_.getPhysicalFilename(false);
        Ox::Ptr<MediaDrive> const location =
            isLinkedLocal(file_) ? findMediaLocationFromFile(physical) : Ox::Ptr<MediaDrive>();
        // A drive may go at any time: then the copy below says that its place isn't there.
        if (location && destination && location->getId() != target_.getDrive()) {
            Name const newPhysical =
                physical.substitute(location->getLocation(0), destination->getLocation(0));
            bool const isWritten = MediaFileInfo(target_, newPhysical, file_.fileSize).createLinkFile(false);
            return isWritten ? iFileManager::copied : iFileManager::copyNoFolder;
        }
        return files().copyFile(sourcePath_, targetPath_, true, progress,
                                static_cast<ProgressReportClient*>(&handle_));
    }

    /// The file as the catalogue knows it after a move: a plain one, link or not, and a proxy if it was one.
    [[nodiscard]] MediaFileInfo moved() const {
        MediaFileInfo info(target_, file_.fileSize);
        info.isProxyFile = file_.isProxy();
        return info;
    }

    void tellFailure(eCopyRC code) {
        if (code == iFileManager::copyCannotAccess) {
            handle_.write(resourceStrW(ResIds::fileCopyFailed).substitute(L"$FILE$", targetPath_),
                          LoggerBase::plainLine);
            return;
        }
        handle_.write(resourceStrW(ResIds::materialCopyFailed) + Name(L" (") + sourcePath_ + Name(L" -> ") +
                          targetPath_ + Name(L")"),
                      LoggerBase::errorLine);
    }

    void bringCompanions(bool isMove) const {
        std::vector<iFileManager::DirectoryItem> items;
        files().findFiles(stripExtension(sourcePath_) + Name(L".*"), items, true, false);
        for (iFileManager::DirectoryItem const& item : items) {
            if (SystemCache::instance()->isEligible(item.name)) {
                continue;
            }
            Name const source = joinPaths(getPath(sourcePath_), item.name);
            eCopyRC const code =
                files().copyFile(source, joinPaths(getPath(targetPath_), item.name), true, nullptr, nullptr);
            if (code == iFileManager::copied && isMove) {
                files().deleteFile(source);
            }
        }
    }

    MediaFileInfoEx const& file_;
    MaterialFilename const target_;
    Name const sourcePath_;
    Name const targetPath_;
    LoggerHandle& handle_;
};

}  // namespace

void copyMaterialFile(LogicalMediaFile const& file, DriveId const& destination, MaterialMove::eType type,
                      LoggerHandle handle) {
    Ox::Ptr<MediaDrive> const drive = DiskManager::instance().getDriveWithUniqueId(destination);
    std::vector<std::uint64_t> sizes;
    for (MediaFileInfoEx const& each : file.files) {
        sizes.push_back(each.fileSize);
    }
    handle.startSubTasks(sizes);
    for (MediaFileInfoEx const& each : file.files) {
        Relocation(each, destination, handle).run(drive, type, *file.entry);
        handle.nextSubTask();
    }
    handle.endSubTasks();
}

bool isLinkedLocal(MediaFileInfo const& info) {
    return info.kind == MediaFileInfo::kindElsewhere &&
           static_cast<bool>(findMediaLocationFromFile(info.getPhysicalFilename(false)));
}

Ox::Ptr<MediaDrive> findMediaLocationFromFile(Name const& file) {
    Name const folder = getPath(file);
    for (Ox::Ptr<MediaDrive> const& drive : DiskManager::instance().getDrives()) {
        if (folder == drive->getLocation('V') || folder == drive->getLocation('S')) {
            return drive;
        }
    }
    return {};
}

int progress(void* context, unsigned long copied, unsigned long total) {
    if (context != nullptr) {
        double const fraction = static_cast<double>(copied) / static_cast<double>(total);
        static_cast<ProgressReportClient*>(context)->reportProgress({}, fraction);
    }
    return 1;
}

eMaterialType getMaterialTypeFromName(Name const& name) {
    switch (Cookie(stripPathAndExt(name), false).type()) {
        case 'V':
            return visionMaterial;
        case 'S':
            return soundMaterial;
        default:
            return otherMaterial;
    }
}

std::uint64_t ToolsGetfilesize(char const* name) {
    std::string const text(name);
    if (!text.empty() && DiskManager::instance().isMaterialVolume(text.front())) {
        std::string const path = text.size() > drivePrefixLength ? text.substr(drivePrefixLength) : "";
        return fileSize(DiskManager::instance().getMaterialVolumeName(text.front(), false) +
                        fromUTF8(path.c_str()));
    }
    return fileSize(fromUTF8(name));
}

Name stripPath2(Name const& path) {
    wchar_t const local = files().getPathSeparator();
    wchar_t const foreign = local == L'/' ? L'\\' : L'/';
    std::wstring text = path.str();
    for (wchar_t& character : text) {
        character = character == foreign ? local : character;
    }
    // `npos` + 1 is the begin.
    return Name(std::wstring_view(text).substr(text.rfind(local) + 1));
}
