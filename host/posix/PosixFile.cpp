#include "host/posix/PosixFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "host/posix/PosixErrors.h"

namespace {

constexpr mode_t newFileMode = 0666;

int accessFlags(std::uint32_t access) {
    bool const reads = (access & iFile::readAccess) != 0;
    bool const writes = (access & iFile::writeAccess) != 0;
    if (reads && writes) {
        return O_RDWR;
    }
    return writes ? O_WRONLY : O_RDONLY;
}

/// Opens without waiting for anybody at the other end of a pipe. A file isn't emptied before it is
/// known that it is to be shared.
FileDescriptor openDescriptor(char const* path, std::uint32_t access, std::uint32_t behaviour) {
    int const creation = behaviour == iFile::existingOnly ? 0 : O_CREAT;
    return FileDescriptor(
        ::open(path, accessFlags(access) | creation | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, newFileMode));
}

bool isFolder(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

/// A file that has nothing in it is let be: file systems put a file that was emptied on the disk when it is
/// closed, and whoever closes it would wait for that.
bool makeEmpty(int descriptor) {
    struct stat status {};
    bool const isEmpty = fstat(descriptor, &status) == 0 && status.st_size == 0;
    return isEmpty || ftruncate(descriptor, 0) == 0;
}

/// False if somebody has the file open in a way that doesn't go with `share`. A file system without
/// such locks lets everybody in.
bool mayBeShared(int descriptor, std::uint32_t share) {
    int const operation = share == iFile::exclusive ? LOCK_EX : LOCK_SH;
    return flock(descriptor, operation | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

/// Goes on after interruptions and short answers until all is done, the end, or an error.
template <class Operation>
std::uint32_t transferAll(std::uint32_t byteCount, Operation&& operation) {
    std::uint32_t done = 0;
    while (done < byteCount) {
        ssize_t const part = operation(done);
        if (part > 0) {
            done += static_cast<std::uint32_t>(part);
        } else if (part == 0) {
            break;
        } else if (errno != EINTR) {
            keepSystemError();
            break;
        }
    }
    return done;
}

}  // namespace

Ox::Ptr<iFile> PosixFile::open(char const* path, std::uint32_t access, std::uint32_t behaviour,
                               std::uint32_t share) {
    FileDescriptor descriptor = openDescriptor(path, access, behaviour);
    if (!descriptor.isOpen()) {
        keepSystemError();
        return {};
    }
    if (isFolder(descriptor.get())) {
        keepSystemError(EISDIR);
        return {};
    }
    bool const isEmptied = behaviour == iFile::createAlways && (access & iFile::writeAccess) != 0;
    if (!mayBeShared(descriptor.get(), share) || (isEmptied && !makeEmpty(descriptor.get()))) {
        keepSystemError();
        return {};
    }
    return Ox::makePtr<PosixFile>(std::move(descriptor));
}

std::uint32_t PosixFile::read(void* buffer, std::uint32_t byteCount) {
    return transferAll(byteCount, [&](std::uint32_t done) {
        return ::read(descriptor_.get(), static_cast<char*>(buffer) + done, byteCount - done);
    });
}

std::uint32_t PosixFile::write(void const* buffer, std::uint32_t byteCount) {
    return transferAll(byteCount, [&](std::uint32_t done) {
        return ::write(descriptor_.get(), static_cast<char const*>(buffer) + done, byteCount - done);
    });
}

bool PosixFile::setPosition(std::uint64_t offset) {
    if (lseek(descriptor_.get(), static_cast<off_t>(offset), SEEK_SET) < 0) {
        keepSystemError();
        return false;
    }
    return true;
}

std::uint64_t PosixFile::getPosition() const {
    off_t const position = lseek(descriptor_.get(), 0, SEEK_CUR);
    return position < 0 ? 0 : static_cast<std::uint64_t>(position);
}
