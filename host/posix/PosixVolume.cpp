#include "host/posix/PosixVolume.h"

#include <sys/statvfs.h>

#include "host/posix/PosixErrors.h"

Ox::Ptr<iVolume> PosixVolume::find(std::string const& path) {
    struct statvfs status {};
    if (statvfs(path.c_str(), &status) != 0) {
        keepSystemError();
        return {};
    }
    return Ox::makePtr<PosixVolume>(static_cast<std::uint32_t>(status.f_bsize),
                                     static_cast<std::uint64_t>(status.f_bavail) * status.f_frsize);
}
