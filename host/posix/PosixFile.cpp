#include "host/posix/PosixFile.h"

#include <cerrno>

namespace {

/// Repeats a transfer until all is through, nothing more comes, or it fails; the bytes that went.
template <class Transfer>
std::uint32_t transferAll(std::uint32_t byteCount, Transfer const& transfer) {
    std::uint32_t done = 0;
    while (done < byteCount) {
        ssize_t const count = transfer(done, byteCount - done);
        if (count > 0) {
            done += static_cast<std::uint32_t>(count);
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    return done;
}

}  // namespace

std::uint32_t PosixFile::read(void* buffer, std::uint32_t byteCount) {
    return transferAll(byteCount, [&](std::uint32_t done, std::uint32_t left) {
        return ::read(descriptor_.get(), static_cast<char*>(buffer) + done, left);
    });
}

std::uint32_t PosixFile::write(void const* buffer, std::uint32_t byteCount) {
    return transferAll(byteCount, [&](std::uint32_t done, std::uint32_t left) {
        return ::write(descriptor_.get(), static_cast<char const*>(buffer) + done, left);
    });
}

bool PosixFile::setPosition(std::uint64_t offset) {
    return lseek(descriptor_.get(), static_cast<off_t>(offset), SEEK_SET) != -1;
}

std::uint64_t PosixFile::getPosition() const {
    return static_cast<std::uint64_t>(lseek(descriptor_.get(), 0, SEEK_CUR));
}
