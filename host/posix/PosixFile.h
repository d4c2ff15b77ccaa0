#pragma once

#include "host/posix/FileDescriptor.h"
#include "ole/os/FileManager.h"

/// An open file of the file system.
class PosixFile final : public iFile {
public:
    /// Opens a file; empty on failure, with the reason kept. The parameters are those of
    /// `iFileManager::openFile`. Sharing binds those who open files through this class only.
    [[nodiscard]] static Ox::Ptr<iFile> open(char const* path, std::uint32_t access, std::uint32_t behaviour,
                                             std::uint32_t share);

    explicit PosixFile(FileDescriptor descriptor) : descriptor_(std::move(descriptor)) {}

    std::uint32_t read(void* buffer, std::uint32_t byteCount) override;
    std::uint32_t write(void const* buffer, std::uint32_t byteCount) override;
    bool setPosition(std::uint64_t offset) override;
    [[nodiscard]] std::uint64_t getPosition() const override;

private:
    FileDescriptor const descriptor_;
};
