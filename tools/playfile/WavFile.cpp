#include "tools/playfile/WavFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "toolkit/sound/WaveLayout.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

std::string partialName(std::string const& path) {
    return path + "." + std::to_string(::getpid()) + ".partial";
}

}  // namespace

WavFile::WavFile(std::string path, Aud::Metadata const& format, std::uint32_t channels, std::uint64_t samples)
    : path_(std::move(path)),
      partial_(partialName(path_)),
      bytesPerFrame_(channels * format.bytesPerSample),
      descriptor_(::open(partial_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0) {
        refuse(errno);
    }
    std::uint64_t const dataBytes = samples * bytesPerFrame_;
    std::vector<std::uint8_t> const header = Aud::WaveLayout{format, channels, {}, false}.header(dataBytes);
    dataOffset_ = header.size();
    try {
        writeAt(0, header.data(), header.size());
        if (::ftruncate(descriptor_, static_cast<off_t>(dataOffset_ + dataBytes + dataBytes % 2)) != 0) {
            refuse(errno);
        }
    } catch (...) {
        ::close(descriptor_);
        ::unlink(partial_.c_str());
        throw;
    }
}

WavFile::~WavFile() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
        ::unlink(partial_.c_str());
    }
}

void WavFile::write(std::uint64_t firstSample, void const* bytes, std::size_t byteCount) {
    writeAt(dataOffset_ + firstSample * bytesPerFrame_, bytes, byteCount);
}

void WavFile::finish() {
    int const closed = ::close(std::exchange(descriptor_, -1));
    if (closed != 0 || std::rename(partial_.c_str(), path_.c_str()) != 0) {
        int const error = errno;
        ::unlink(partial_.c_str());
        refuse(error);
    }
}

void WavFile::writeAt(std::uint64_t offset, void const* bytes, std::size_t byteCount) {
    auto const* from = static_cast<char const*>(bytes);
    while (byteCount != 0) {
        ssize_t const written = ::pwrite(descriptor_, from, byteCount, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            refuse(written < 0 ? errno : ENOSPC);
        }
        from += written;
        offset += static_cast<std::uint64_t>(written);
        byteCount -= static_cast<std::size_t>(written);
    }
}

void WavFile::refuse(int errorNumber) const {
    throw CommandError("cannot write " + inQuotes(path_) + ": " + systemErrorText(errorNumber) +
                       "; name another file with --out");
}

}  // namespace cli
