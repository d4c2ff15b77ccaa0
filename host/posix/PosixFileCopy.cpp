/// Copying a file.
///
/// A file system that can share the blocks does so at once. Otherwise the kernel moves the bytes piece by
/// piece, so that progress is told and a stop is heard within one piece, and each piece is sent on its
/// way to the medium at once, so that the closing flush has little left to wait for.
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "host/posix/FileDescriptor.h"
#include "host/posix/PosixFileManager.h"

namespace {

constexpr std::uint64_t pieceBytes = 4U << 20U;
constexpr mode_t newFileMode = 0666;

/// Deletes a file that was begun, unless it is kept.
class BegunFile {
public:
    explicit BegunFile(LightweightString<char> path) : path_(std::move(path)) {}
    ~BegunFile() {
        if (!isKept_) {
            unlink(path_.c_str());
        }
    }
    BegunFile(BegunFile const&) = delete;
    BegunFile& operator=(BegunFile const&) = delete;
    void keep() { isKept_ = true; }

private:
    LightweightString<char> path_;
    bool isKept_ = false;
};

/// One copy under way.
struct Copy {
    int source;
    int target;
    std::uint64_t totalBytes;
    iFileManager::CopyProgress progress;
    void* context;

    [[nodiscard]] bool goesOn(std::uint64_t copiedBytes) const {
        return !progress || progress(context, copiedBytes, totalBytes) != 0;
    }
};

bool shareBlocks(Copy const& copy) {
    return ioctl(copy.target, FICLONE, copy.source) == 0;
}

/// Moves up to `byteCount` bytes from where both files stand; 0 at the end, -1 on an error.
ssize_t movePiece(Copy const& copy, std::size_t byteCount) {
    ssize_t const moved = copy_file_range(copy.source, nullptr, copy.target, nullptr, byteCount, 0);
    if (moved > 0 || (moved == -1 && (errno == EINTR || errno == ENOSPC || errno == EIO))) {
        return moved;
    }
    return sendfile(copy.target, copy.source, nullptr, byteCount);
}

iFileManager::eCopyRC moveBytes(Copy const& copy) {
    std::uint64_t copied = 0;
    for (;;) {
        if (!copy.goesOn(copied)) {
            return iFileManager::copyStopped;
        }
        ssize_t const moved = movePiece(copy, pieceBytes);
        if (moved == 0) {
            return iFileManager::copied;
        }
        if (moved > 0) {
            sync_file_range(copy.target, static_cast<off_t>(copied), moved, SYNC_FILE_RANGE_WRITE);
            copied += static_cast<std::uint64_t>(moved);
        } else if (errno != EINTR) {
            return iFileManager::copyFailed;
        }
    }
}

iFileManager::eCopyRC fillTarget(Copy const& copy) {
    iFileManager::eCopyRC const outcome = shareBlocks(copy) ? iFileManager::copied : moveBytes(copy);
    if (outcome == iFileManager::copied && fdatasync(copy.target) != 0) {
        return iFileManager::copyFailed;
    }
    return outcome;
}

}  // namespace

iFileManager::eCopyRC PosixFileManager::copyFile(LightweightString<wchar_t> const& source,
                                                 LightweightString<wchar_t> const& destination,
                                                 bool replaceExisting, CopyProgress progress, void* context) {
    FileDescriptor const from(open(toUTF8(source).c_str(), O_RDONLY | O_CLOEXEC));
    struct stat sourceInfo {};
    if (!from || fstat(from.get(), &sourceInfo) != 0 || !S_ISREG(sourceInfo.st_mode)) {
        return copyCannotAccess;
    }
    LightweightString<char> const target = toUTF8(destination);
    struct stat targetInfo {};
    if (stat(target.c_str(), &targetInfo) == 0 && targetInfo.st_dev == sourceInfo.st_dev &&
        targetInfo.st_ino == sourceInfo.st_ino) {
        return copyCannotAccess;
    }
    int const flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | (replaceExisting ? O_TRUNC : O_EXCL);
    FileDescriptor const to(open(target.c_str(), flags, newFileMode));
    if (!to) {
        return copyCannotAccess;
    }
    BegunFile begun(target);
    Copy const copy{from.get(), to.get(), static_cast<std::uint64_t>(sourceInfo.st_size), progress, context};
    eCopyRC const outcome = fillTarget(copy);
    if (outcome == copied) {
        begun.keep();
    }
    return outcome;
}
