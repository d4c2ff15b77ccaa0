#include "host/posix/FileCopy.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "host/posix/PosixErrors.h"

// A destination that exists is opened without emptying it, so that a copy of a file onto itself, under
// whatever name, is noticed before anything is lost. From the moment in which the destination is made
// or emptied it is ours: every way out but success removes it, unless another file has taken its name.

namespace {

/// Small enough that even a slow disk takes one in well under 50 ms, the time in which a copy stops.
constexpr std::size_t pieceBytes = 1024 * 1024;
/// How far the pieces that are on their way to the device may lag behind.
constexpr std::uint64_t writeBehindBytes = 8 * pieceBytes;
constexpr mode_t newFileMode = 0666;

bool isSameFile(struct stat const& a, struct stat const& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// True if the kernel's way of copying can't be gone between these two files, so that another may be.
bool isOtherWayWorthATry(int error) {
    return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM ||
           error == EBADF;
}

}  // namespace

FileCopy::FileCopy(std::string source, std::string destination, iFileManager::CopyProgress progress,
                   void* context)
    : sourcePath_(std::move(source)),
      destinationPath_(std::move(destination)),
      progress_(progress),
      context_(context) {}

iFileManager::eCopyRC FileCopy::run(bool replaceExisting) {
    if (!openSource() || !openDestination(replaceExisting)) {
        return iFileManager::copyCannotAccess;
    }
    Code code = iFileManager::copyFailed;
    try {
        code = fill();
    } catch (...) {  // the caller's function, or no memory for a buffer
        removeDestination();
        throw;
    }
    if (code != iFileManager::copied) {
        removeDestination();
    }
    return code;
}

bool FileCopy::openSource() {
    source_ = FileDescriptor(open(sourcePath_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!source_.isOpen() || fstat(source_.get(), &sourceStatus_) != 0) {
        keepSystemError();
        return false;
    }
    if (!S_ISREG(sourceStatus_.st_mode)) {
        keepSystemError(S_ISDIR(sourceStatus_.st_mode) ? EISDIR : EINVAL);
        return false;
    }
    posix_fadvise(source_.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    return true;
}

bool FileCopy::openDestination(bool replaceExisting) {
    destination_ = FileDescriptor(
        open(destinationPath_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, newFileMode));
    if (destination_.isOpen()) {
        return true;
    }
    if (errno == EEXIST && replaceExisting) {
        return openExistingDestination();
    }
    keepSystemError();
    return false;
}

bool FileCopy::openExistingDestination() {
    FileDescriptor existing(
        open(destinationPath_.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!existing.isOpen() || fstat(existing.get(), &status) != 0) {
        keepSystemError();
        return false;
    }
    if (!S_ISREG(status.st_mode) || isSameFile(status, sourceStatus_)) {
        keepSystemError(EINVAL);
        return false;
    }
    if (ftruncate(existing.get(), 0) != 0) {
        keepSystemError();
        return false;
    }
    destination_ = std::move(existing);
    return true;
}

iFileManager::eCopyRC FileCopy::fill() {
    Code const code = clone() ? (mayGoOn() ? iFileManager::copied : iFileManager::copyStopped) : copyPieces();
    if (code == iFileManager::copied && fdatasync(destination_.get()) != 0) {
        keepSystemError();
        return iFileManager::copyFailed;
    }
    return code;
}

bool FileCopy::clone() {
    if (sourceStatus_.st_size == 0 || ioctl(destination_.get(), FICLONE, source_.get()) != 0) {
        return false;
    }
    copied_ = static_cast<std::uint64_t>(sourceStatus_.st_size);
    return true;
}

iFileManager::eCopyRC FileCopy::copyPieces() {
    for (;;) {
        long const piece = (this->*copyPiece_)();
        if (piece < 0) {
            keepSystemError();
            return iFileManager::copyFailed;
        }
        if (piece == 0) {
            return iFileManager::copied;
        }
        sendToDevice(copied_, static_cast<std::uint64_t>(piece));
        copied_ += static_cast<std::uint64_t>(piece);
        if (!mayGoOn()) {
            return iFileManager::copyStopped;
        }
    }
}

/// Falls back to the buffer when the kernel can't, and when it copies nothing at all: some file systems
/// answer so for files whose contents they make up as they are read.
long FileCopy::copyPieceInKernel() {
    ssize_t piece = -1;
    do {
        piece = copy_file_range(source_.get(), nullptr, destination_.get(), nullptr, pieceBytes, 0);
    } while (piece < 0 && errno == EINTR);
    bool const isRefused = piece < 0 ? isOtherWayWorthATry(errno) : piece == 0 && copied_ == 0;
    if (!isRefused) {
        return piece;
    }
    copyPiece_ = &FileCopy::copyPieceByBuffer;
    return copyPieceByBuffer();
}

long FileCopy::copyPieceByBuffer() {
    if (!buffer_) {
        buffer_ = std::make_unique<char[]>(pieceBytes);
    }
    ssize_t piece = -1;
    do {
        piece = read(source_.get(), buffer_.get(), pieceBytes);
    } while (piece < 0 && errno == EINTR);
    return piece > 0 && !writeBuffer(piece) ? -1 : piece;
}

bool FileCopy::writeBuffer(long byteCount) {
    for (long done = 0; done < byteCount;) {
        ssize_t const part =
            write(destination_.get(), buffer_.get() + done, static_cast<std::size_t>(byteCount - done));
        if (part < 0 && errno != EINTR) {
            return false;
        }
        done += std::max<ssize_t>(part, 0);
    }
    return true;
}

/// Starts the writing of a piece and waits for that of one some way behind. It is help only: a failure
/// to write comes to light in the closing flush.
void FileCopy::sendToDevice(std::uint64_t from, std::uint64_t byteCount) {
    sync_file_range(destination_.get(), static_cast<off_t>(from), static_cast<off_t>(byteCount),
                    SYNC_FILE_RANGE_WRITE);
    if (from >= writeBehindBytes) {
        sync_file_range(destination_.get(), static_cast<off_t>(from - writeBehindBytes),
                        static_cast<off_t>(pieceBytes),
                        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER);
    }
}

bool FileCopy::mayGoOn() {
    std::uint64_t const total =
        std::max<std::uint64_t>(copied_, static_cast<std::uint64_t>(sourceStatus_.st_size));
    return !progress_ || progress_(context_, copied_, total) != 0;
}

void FileCopy::removeDestination() {
    struct stat ours {};
    struct stat there {};
    if (fstat(destination_.get(), &ours) == 0 && lstat(destinationPath_.c_str(), &there) == 0 &&
        isSameFile(ours, there)) {
        unlink(destinationPath_.c_str());
    }
}
