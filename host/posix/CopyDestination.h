#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "host/posix/FileDescriptor.h"

/// The file that a copy fills.
///
/// A file that exists is opened as it is and emptied by a call of its own, so that a copy which fails before
/// it has anything to write loses nothing. What is written is sent on to the device piece by piece, so that
/// the closing flush is short.
///
/// Ownership  From the moment in which the file is made or emptied it is ours, and `discard` removes it.
/// Threads    One at a time.
/// Errors     The reason of every failure is kept for the error service.
class CopyDestination {
public:
    explicit CopyDestination(std::string path) : path_(std::move(path)) {}

    /// Makes the file, with the folders in which it lies, or, where `replaceExisting` allows it, opens the one that is
    /// there. A link isn't followed, and only a regular file is taken.
    [[nodiscard]] bool open(bool replaceExisting);
    [[nodiscard]] bool isSameFileAs(struct stat const& other) const;
    /// Drops what the file held.
    [[nodiscard]] bool empty();
    /// Writes at the end of what was written before.
    [[nodiscard]] bool write(char const* data, std::size_t byteCount);
    /// Notes bytes that came into the file by another way than `write`.
    void noteWritten(std::uint64_t byteCount);
    /// Waits until all is on the device.
    [[nodiscard]] bool flush();
    /// Removes the file if it is ours, unless another has taken its name. One that was never emptied stays as
    /// it was.
    void discard();

    [[nodiscard]] int get() const { return file_.get(); }

private:
    [[nodiscard]] FileDescriptor makeFile() const;
    [[nodiscard]] bool openExisting();

    std::string const path_;
    FileDescriptor file_;
    bool isOurs_ = false;
    std::uint64_t written_ = 0;
    /// How much of that is on its way to the device.
    std::uint64_t sent_ = 0;
};
