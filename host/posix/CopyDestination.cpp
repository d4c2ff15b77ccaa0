#include "host/posix/CopyDestination.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "host/posix/Folders.h"
#include "host/posix/PosixErrors.h"

namespace {

/// What is sent to the device at once.
constexpr std::uint64_t pieceBytes = 1024 * 1024;
/// How far the pieces that are on their way to the device may lag behind.
constexpr std::uint64_t writeBehindBytes = 8 * pieceBytes;
/// The system gives back as much at once.
constexpr std::uint64_t quicklyClosedBytes = 16 * pieceBytes;
constexpr mode_t newFileMode = 0666;

bool isSameFile(struct stat const& a, struct stat const& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

bool CopyDestination::open(bool replaceExisting) {
    file_ = makeFile();
    if (!file_.isOpen() && errno == ENOENT) {
        if (!makeFolders(path_.substr(0, path_.rfind('/') + 1))) {
            return false;
        }
        file_ = makeFile();
    }
    if (file_.isOpen()) {
        isOurs_ = true;
        return true;
    }
    if (errno == EEXIST && replaceExisting) {
        return openExisting();
    }
    keepSystemError();
    return false;
}

FileDescriptor CopyDestination::makeFile() const {
    return FileDescriptor(
        ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, newFileMode));
}

bool CopyDestination::openExisting() {
    FileDescriptor existing(::open(path_.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!existing.isOpen() || fstat(existing.get(), &status) != 0) {
        keepSystemError();
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        keepSystemError(EINVAL);
        return false;
    }
    file_ = std::move(existing);
    return true;
}

bool CopyDestination::isSameFileAs(struct stat const& other) const {
    struct stat ours {};
    return fstat(file_.get(), &ours) == 0 && isSameFile(ours, other);
}

bool CopyDestination::empty() {
    if (!isOurs_ && ftruncate(file_.get(), 0) != 0) {
        keepSystemError();
        return false;
    }
    isOurs_ = true;
    return true;
}

bool CopyDestination::write(char const* data, std::size_t byteCount) {
    for (std::size_t done = 0; done < byteCount;) {
        ssize_t const part = ::write(file_.get(), data + done, byteCount - done);
        if (part < 0 && errno != EINTR) {
            keepSystemError();
            return false;
        }
        done += static_cast<std::size_t>(std::max<ssize_t>(part, 0));
    }
    noteWritten(byteCount);
    return true;
}

/// Starts the writing of what makes a piece and waits for that of one some way behind. It is help only: a
/// failure to write comes to light in the closing flush.
void CopyDestination::noteWritten(std::uint64_t byteCount) {
    written_ += byteCount;
    if (written_ - sent_ < pieceBytes) {
        return;
    }
    sync_file_range(file_.get(), static_cast<off_t>(sent_), static_cast<off_t>(written_ - sent_),
                    SYNC_FILE_RANGE_WRITE);
    if (sent_ >= writeBehindBytes) {
        sync_file_range(file_.get(), static_cast<off_t>(sent_ - writeBehindBytes),
                        static_cast<off_t>(written_ - sent_),
                        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER);
    }
    sent_ = written_;
}

bool CopyDestination::flush() {
    if (fdatasync(file_.get()) != 0) {
        keepSystemError();
        return false;
    }
    return true;
}

void CopyDestination::discard() {
    struct stat there {};
    if (isOurs_ && lstat(path_.c_str(), &there) == 0 && isSameFileAs(there)) {
        unlink(path_.c_str());
        if (written_ > quicklyClosedBytes) {
            file_.closeElsewhere();
        }
    }
}
