#include "tools/playfile/MediaPresence.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "ole/os/OS.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/MaterialLink.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

using Name = LightweightString<wchar_t>;

bool isHere(MediaFileInfo const& file) {
    return file.physicalFilename.empty();
}

MediaPresence offline(std::string const& reason) {
    return {false, reason};
}

/// A store says that it has no such file, or it says nothing.
MediaPresence askStore(Name const& name) {
    if (OS()->getFileManager().fileExists(name)) {
        return {true, {}};
    }
    switch (OS()->getErrors().getLastError()) {
        case iErrorService::systemErrorBase + ENOENT:
            return offline("its store has no such file");
        case iErrorService::systemErrorBase + EHOSTUNREACH:
            return offline("its store doesn't answer");
        default:
            return offline("its store doesn't give it to us");
    }
}

bool isSymbolicLink(std::string const& path) {
    struct stat facts {};
    return ::lstat(path.c_str(), &facts) == 0 && S_ISLNK(facts.st_mode);
}

MediaPresence explainMissing(MediaFileInfo const& file, std::string const& path, int errorNumber) {
    if (errorNumber == EACCES || errorNumber == EPERM) {
        return offline("no right to look into its folder");
    }
    if (errorNumber != ENOENT && errorNumber != ENOTDIR && errorNumber != ELOOP) {
        return offline(systemErrorText(errorNumber));
    }
    if (isSymbolicLink(path)) {
        return offline("it is a symbolic link that points to nothing");
    }
    if (!isHere(file) && MaterialLink::readLink(file.getLinkFileName()) == file.physicalFilename) {
        return offline("its link file points to nothing");
    }
    return offline("no such file");
}

MediaPresence lookOnDisk(MediaFileInfo const& file, Name const& name) {
    std::string const path = narrowName(name);
    struct stat facts {};
    if (::stat(path.c_str(), &facts) != 0) {
        return explainMissing(file, path, errno);
    }
    if (!S_ISREG(facts.st_mode)) {
        return offline("what bears its name is no file");
    }
    if (::access(path.c_str(), R_OK) != 0) {
        return offline("no right to read it");
    }
    Name const target = isHere(file) ? MaterialLink::readLink(name) : Name();
    std::error_code error;
    bool const isLost = !target.empty() && !OS()->getFileManager().isRemote(target) &&
                        !std::filesystem::exists(narrowName(target), error);
    return isLost ? offline("the link file at its place points to nothing") : MediaPresence{true, {}};
}

}  // namespace

std::string faultOfDrive(DriveId const& drive) {
    if (drive == DriveId::none) {
        return {};
    }
    std::string const letter(1, drive.letter());
    std::string const root = narrowName(DiskManager::instance().getDriveRoot(drive));
    if (root.empty()) {
        return "the project has no drive " + letter;
    }
    std::error_code error;
    return std::filesystem::is_directory(root, error) ? std::string()
                                                      : "its drive " + letter + " isn't there (" + root + ")";
}

MediaPresence lookAt(MediaFileInfo const& file) {
    std::string const faultOfPlace =
        isHere(file) ? faultOfDrive(file.materialFilename.getDrive()) : std::string();
    if (!faultOfPlace.empty()) {
        return offline(faultOfPlace);
    }
    Name const name = file.getPhysicalFilename();
    if (name.empty()) {
        return offline("nobody knows where it is");
    }
    return OS()->getFileManager().isRemote(name) ? askStore(name) : lookOnDisk(file, name);
}

std::string faultOfLink(MediaFileInfo const& file) {
    Name const place = file.getLinkFileName();
    if (place.empty()) {
        return {};
    }
    Name const target = MaterialLink::readLink(place);
    if (target == file.physicalFilename) {
        return {};
    }
    std::string const shownPlace = inQuotes(narrowName(place));
    if (target.empty()) {
        return "there is no link file at " + shownPlace;
    }
    return "the link file at " + shownPlace + " leads to " + inQuotes(narrowName(target));
}

}  // namespace cli
