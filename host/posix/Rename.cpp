#include "host/posix/Rename.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "host/posix/FileDescriptor.h"

namespace {

constexpr mode_t claimMode = 0700;

/// Makes an empty thing of that name, a folder if a folder is to come there; false if the name is taken.
bool claimName(std::string const& name, bool isForFolder) {
    if (isForFolder) {
        return mkdir(name.c_str(), claimMode) == 0;
    }
    return FileDescriptor(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, claimMode)).isOpen();
}

void giveNameBack(std::string const& name, bool isForFolder) {
    int const error = errno;
    if (isForFolder) {
        rmdir(name.c_str());
    } else {
        unlink(name.c_str());
    }
    errno = error;
}

/// A second name for the file, then the first one's end. False, with nothing changed, if that can't be
/// done.
bool renameByLink(std::string const& from, std::string const& to) {
    if (link(from.c_str(), to.c_str()) != 0) {
        return false;
    }
    if (unlink(from.c_str()) != 0) {
        giveNameBack(to, false);
        return false;
    }
    return true;
}

/// For folders, and for file systems without links. A crash in between leaves an empty thing behind.
bool renameOntoClaim(std::string const& from, std::string const& to) {
    struct stat status {};
    if (lstat(from.c_str(), &status) != 0) {
        return false;
    }
    bool const isFolder = S_ISDIR(status.st_mode);
    if (!claimName(to, isFolder)) {
        return false;
    }
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        giveNameBack(to, isFolder);
        return false;
    }
    return true;
}

}  // namespace

bool renameWithoutReplacing(std::string const& from, std::string const& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    return (errno == EINVAL || errno == ENOSYS) && renameInSteps(from, to);
}

bool renameInSteps(std::string const& from, std::string const& to) {
    return renameByLink(from, to) || (errno != EEXIST && errno != ENOENT && renameOntoClaim(from, to));
}
