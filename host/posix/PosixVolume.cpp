#include "host/posix/PosixVolume.h"

#include <sys/statvfs.h>

#include "host/posix/PosixErrors.h"

Ox::Ptr<iVolume> PosixVolume::find(std::string const& path) {
    struct statvfs status {};
    if (statvfs(path.c_str(), &status) != 0) {
        keepSystemError();
        return {};
    }
    return Ox::makePtr<PosixVolume>(path, static_cast<std::uint32_t>(status.f_bsize));
}

std::uint64_t PosixVolume::getFreeBytes() const {
    struct statvfs status {};
    if (statvfs(path_.c_str(), &status) != 0) {
        keepSystemError();
        return 0;
    }
    return std::uint64_t{status.f_bavail} * status.f_frsize;
}
