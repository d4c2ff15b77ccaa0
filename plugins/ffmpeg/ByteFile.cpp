#include "plugins/ffmpeg/ByteFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace playfile_ffmpeg {
namespace {

std::string systemText(int code) {
    return std::generic_category().message(code);
}

}  // namespace

ByteFile::~ByteFile() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

bool ByteFile::open(std::string const& path, std::string& error) {
    // Without O_NONBLOCK the open of a pipe would wait for somebody to write into it.
    descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat facts {};
    if (descriptor_ < 0 || ::fstat(descriptor_, &facts) != 0) {
        error = systemText(errno);
        return false;
    }
    if (!S_ISREG(facts.st_mode)) {
        error = S_ISDIR(facts.st_mode) ? "is a folder" : "is not a regular file";
        return false;
    }
    byteCount_ = facts.st_size;
    if (byteCount_ == 0) {
        error = "the file is empty";
        return false;
    }
    return true;
}

size_t ByteFile::readAt(int64_t offset, void* destination, size_t byteCount) const {
    size_t done = 0;
    while (done < byteCount) {
        ssize_t const count = ::pread(descriptor_, static_cast<char*>(destination) + done, byteCount - done,
                                      static_cast<off_t>(offset + static_cast<int64_t>(done)));
        if (count > 0) {
            done += static_cast<size_t>(count);
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    return done;
}

}  // namespace playfile_ffmpeg
