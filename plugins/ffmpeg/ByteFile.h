#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace playfile_ffmpeg {

/// A file that is read at any offset.
///
/// Ownership    Holds one descriptor from open to its end.
/// Errors       Reading answers how many bytes there were; 0 also when the device fails.
class ByteFile {
public:
    ByteFile() = default;
    ~ByteFile();
    ByteFile(ByteFile const&) = delete;
    ByteFile& operator=(ByteFile const&) = delete;

    /// False when there is no regular file of that name that may be read; `error` then says why.
    [[nodiscard]] bool open(std::string const& path, std::string& error);

    bool isOpen() const { return descriptor_ >= 0; }
    int64_t byteCount() const { return byteCount_; }

    /// Reads up to `byteCount` bytes from `offset` on. May block. Returns the bytes read.
    size_t readAt(int64_t offset, void* destination, size_t byteCount) const;

private:
    int descriptor_ = -1;
    int64_t byteCount_ = 0;
};

}  // namespace playfile_ffmpeg
