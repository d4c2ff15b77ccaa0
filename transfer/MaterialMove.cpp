// Which files are relocated, and in which order. How each is copied is in CopyMaterialFile.cpp.

#include "transfer/MaterialMove.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/EditModifier.h"
#include "toolkit/services/NumberText.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/ResourceText.h"
#include "toolkit/services/Watchdog.h"
#include "transfer/CopyMaterialFile.h"

namespace {

constexpr double bytesPerMebibyte = 1048576.0;
/// All clips of the project.
constexpr std::uint32_t projectClips = 1;
constexpr std::uint32_t relocatableKinds = 0x804C;
/// The second word of a cookie that stands for no media.
constexpr std::uint32_t noMediaWord = 647;
constexpr std::size_t lineLength = 256;

void say(LoggerHandle& handle, ResId text, LoggerBase::eOutputType type) {
    handle.write(resourceStrW(text), type);
}

bool isMedia(Cookie const& cookie) {
    std::uint32_t word = 0;
    std::memcpy(&word, cookie.uuid().bytes.data() + sizeof(word), sizeof(word));
    return word != noMediaWord;
}

DriveId driveOf(Cookie const& shot) {
    return SystemCache::instance()->getDriveForCookie(shot, shot.type() == 'V' ? videoChannel : audioChannel);
}

void addIfThere(MediaFileInfo const& info, DriveId const& drive, std::vector<MediaFileInfoEx>& files) {
    if (info.materialFilename.getDrive() == drive) {
        return;
    }
    MediaFileInfoEx const file{info, fileSize(info.materialFilename.getOsPath())};
    if (file.fileSize != 0) {
        files.push_back(file);
    }
}

void addIfKnown(LogicalMediaFile const& file, std::vector<LogicalMediaFile>& out) {
    if (file.entry && !file.files.empty()) {
        out.push_back(file);
    }
}

double bytesOf(std::vector<LogicalMediaFile> const& files) {
    double sum = 0.0;
    for (LogicalMediaFile const& file : files) {
        for (MediaFileInfoEx const& each : file.files) {
            sum += static_cast<double>(each.fileSize);
        }
    }
    return sum;
}

/// Says so if there is too little space. As much as is needed is too little.
bool hasSpace(DriveId const& destination, double needed, LoggerHandle& handle) {
    double const available = DiskManager::instance().getSpaceForRecording(destination) * bytesPerMebibyte;
    if (available > needed) {
        return true;
    }
    handle.write(resourceStrW(ResIds::tooLittleSpace)
                     .substitute(L"$NUM1$", bytesAsString(static_cast<std::uint64_t>(available), true))
                     .substitute(L"$NUM2$", bytesAsString(static_cast<std::uint64_t>(needed), true)),
                 LoggerBase::plainLine);
    return false;
}

void tellOfDrives() {
    DiskNotification notification;
    notification.message = DiskNotification::mediaChanged;
    notification.type = NotifyMsgTypeDictionary::instance().getDiskChangeType();
    DiskManager::instance().notify(notification);
}

/// Holds the watchdog off.
struct LifeSupport {
    LifeSupport() { SystemWatchdog::beginLifeSupport(); }
    ~LifeSupport() { SystemWatchdog::endLifeSupport(); }
    LifeSupport(LifeSupport const&) = delete;
    LifeSupport& operator=(LifeSupport const&) = delete;
};

/// Which of the items' shots are copied, and why others aren't.
struct Selection {
    Selection(CookieVec const& shots, DriveId const& destination) {
        for (Cookie const& shot : shots) {
            DriveId const drive = driveOf(shot);
            if (drive.letter() == 0) {
                ++unavailable;
            } else if (drive == destination) {
                ++alreadyThere;
            } else {
                toCopy.add(shot);
            }
        }
    }

    CookieVec toCopy;
    int unavailable = 0;
    int alreadyThere = 0;
};

}  // namespace

void MaterialMove::relocate(DriveId const& destination, DriveId const& source, eType type,
                            LoggerHandle handle) {
    handle.write(LightweightString<wchar_t>(L"Building file list"), LoggerBase::stageLine);
    std::vector<LogicalMediaFile> files;
    getMaterialFilesOnDrive(source, files);
    if (files.empty()) {
        say(handle, ResIds::nothingToDo, LoggerBase::plainLine);
        return;
    }
    ::copyFiles(files, destination, type, handle);
}

void MaterialMove::relocate(DriveId const& destination, CookieVec const& items, eType type,
                            LoggerHandle handle) {
    handle.write(LightweightString<wchar_t>(L"Building file list"), LoggerBase::stageLine);
    if (items.empty()) {
        say(handle, ResIds::nothingToDo, LoggerBase::plainLine);
        return;
    }
    CookieVec const shots = buildShotList(items);
    std::array<char, lineLength> line{};
    std::snprintf(line.data(), line.size(), "Source contains %d item(s), referencing %d material file(s)",
                  static_cast<int>(items.size()), static_cast<int>(shots.size()));
    handle.Out("%s", line.data());
    Selection const selection(shots, destination);
    if (selection.unavailable != 0) {
        handle.Out("Skipping %d unavailable material file(s)", selection.unavailable);
    }
    if (selection.alreadyThere != 0) {
        handle.Out("Ignoring %d material file(s) which are already on the destination drive",
                   selection.alreadyThere);
    }
    if (selection.toCopy.empty()) {
        say(handle, ResIds::nothingToDo, LoggerBase::plainLine);
        return;
    }
    std::vector<LogicalMediaFile> files;
    getMaterialFiles(selection.toCopy, files, destination);
    ::copyFiles(files, destination, type, handle);
}

CookieVec buildShotList(CookieVec const& items) {
    CookieVec shots;
    for (Cookie const& item : items) {
        EditPtr edit;
        edit.i_open(item, 0);
        if (!edit) {
            continue;
        }
        for (Cookie const& reference : edit->getReferences(Edit::ownMediaReferences)) {
            if (isMedia(reference)) {
                shots.add(reference);
            }
        }
    }
    return shots;
}

void getMaterialFiles(CookieVec const& items, std::vector<LogicalMediaFile>& out, DriveId drive) {
    for (Cookie const& item : items) {
        addIfKnown(makeLogicalMediaFile(item, drive), out);
    }
}

void getMaterialFilesOnDrive(DriveId const& drive, std::vector<LogicalMediaFile>& out) {
    CookieVec clips;
    for (projdb::Record const& record : EditManager::getProjdb().search(projectClips, relocatableKinds)) {
        clips.add(record.cookie);
    }
    for (Cookie const& shot : buildShotList(clips)) {
        DriveId const own = driveOf(shot);
        if (own != DriveId::none && own == drive) {
            addIfKnown(makeLogicalMediaFile(shot, own), out);
        }
    }
}

LogicalMediaFile makeLogicalMediaFile(Cookie const& cookie, DriveId drive) {
    LogicalMediaFile file;
    file.cookie = cookie;
    file.entry = SystemCache::instance()->findEntryForCookie(cookie);
    if (file.entry) {
        addIfThere(*file.entry, drive, file.files);
        for (MediaFileInfo const& proxy : file.entry->getProxyFiles()) {
            addIfThere(proxy, drive, file.files);
        }
    }
    return file;
}

void copyFiles(std::vector<LogicalMediaFile> const& files, DriveId const& destination,
               MaterialMove::eType type, LoggerHandle handle) {
    handle.Out(" ");
    handle.Out("%d file(s) to process", static_cast<int>(files.size()));
    handle.Out(" ");
    LifeSupport const support;
    if (!hasSpace(destination, bytesOf(files), handle)) {
        return;
    }
    handle.startSubTasks(static_cast<std::uint32_t>(files.size()));
    for (LogicalMediaFile const& file : files) {
        if (g_esc_pressed()) {
            break;
        }
        copyMaterialFile(file, destination, type, handle);
        handle.nextSubTask();
    }
    handle.endSubTasks();
    tellOfDrives();
    say(handle, ResIds::relocationEnded, LoggerBase::stageLine);
}
