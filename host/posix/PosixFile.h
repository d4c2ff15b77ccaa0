#pragma once

#include "host/posix/FileDescriptor.h"
#include "ole/os/FileManager.h"

/// An open file of the system.
class PosixFile : public iFile {
public:
    /// Takes the descriptor over.
    explicit PosixFile(int descriptor) : descriptor_(descriptor) {}

    std::uint32_t read(void* buffer, std::uint32_t byteCount) override;
    std::uint32_t write(void const* buffer, std::uint32_t byteCount) override;
    bool setPosition(std::uint64_t offset) override;
    [[nodiscard]] std::uint64_t getPosition() const override;

private:
    FileDescriptor const descriptor_;
};
