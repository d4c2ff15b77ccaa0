#include "host/posix/Folders.h"

#include <sys/stat.h>

#include <cerrno>

#include "host/posix/PosixErrors.h"

namespace {

constexpr mode_t newFolderMode = 0777;

bool isFolder(std::string const& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Makes one folder; true if it is there afterwards.
bool makeFolder(std::string const& path) {
    if (mkdir(path.c_str(), newFolderMode) == 0) {
        return true;
    }
    int const error = errno;
    if (isFolder(path)) {
        return true;
    }
    keepSystemError(error);
    return false;
}

}  // namespace

bool makeFolders(std::string const& path) {
    if (path.empty()) {
        keepSystemError(ENOENT);
        return false;
    }
    for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        if (!makeFolder(path.substr(0, end))) {
            return false;
        }
    }
    return makeFolder(path);
}
