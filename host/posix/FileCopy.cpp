#include "host/posix/FileCopy.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "host/posix/PosixErrors.h"

// A destination that exists is opened without emptying it, so that a copy of a file onto itself, under
// whatever name, is noticed before anything is lost: it is done already. Every way out but success discards
// it.

namespace {

/// Small enough that even a slow disk takes one in well under 50 ms, the time in which a copy stops.
constexpr std::size_t pieceBytes = 1024 * 1024;

/// True if the kernel's way of copying can't be gone between these two files, so that another may be.
bool isOtherWayWorthATry(int error) {
    return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM ||
           error == EBADF;
}

}  // namespace

FileCopy::FileCopy(std::string source, std::string destination, iFileManager::CopyProgress progress,
                   void* context)
    : sourcePath_(std::move(source)),
      progress_(progress),
      context_(context),
      destination_(std::move(destination)) {}

iFileManager::eCopyRC FileCopy::run(bool replaceExisting) {
    if (!openSource() || !destination_.open(replaceExisting)) {
        return iFileManager::copyCannotAccess;
    }
    if (destination_.isSameFileAs(sourceStatus_)) {
        return iFileManager::copied;
    }
    if (!destination_.empty()) {
        return iFileManager::copyCannotAccess;
    }
    Code code = iFileManager::copyFailed;
    try {
        code = fill();
    } catch (...) {  // the caller's function, or no memory for a buffer
        destination_.discard();
        throw;
    }
    if (code != iFileManager::copied) {
        destination_.discard();
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

iFileManager::eCopyRC FileCopy::fill() {
    Code const code = clone() ? (mayGoOn() ? iFileManager::copied : iFileManager::copyStopped) : copyPieces();
    if (code == iFileManager::copied && !destination_.flush()) {
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
        destination_.noteWritten(static_cast<std::uint64_t>(std::max<ssize_t>(piece, 0)));
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
    bool const isWritten = piece <= 0 || destination_.write(buffer_.get(), static_cast<std::size_t>(piece));
    return isWritten ? piece : -1;
}

bool FileCopy::mayGoOn() {
    std::uint64_t const total =
        std::max<std::uint64_t>(copied_, static_cast<std::uint64_t>(sourceStatus_.st_size));
    return !progress_ || progress_(context_, copied_, total) != 0;
}
