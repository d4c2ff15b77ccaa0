#pragma once

#include <string>

#include "ole/os/FileManager.h"

/// What the system says of the file system that holds a path.
class PosixVolume final : public iVolume {
public:
    /// Empty, with the reason kept, for a path that isn't there.
    [[nodiscard]] static Ox::Ptr<iVolume> find(std::string const& path);

    PosixVolume(std::uint32_t blockSize, std::uint64_t freeBytes)
        : blockSize_(blockSize), freeBytes_(freeBytes) {}
    [[nodiscard]] std::uint32_t getBlockSize() const override { return blockSize_; }
    [[nodiscard]] std::uint64_t getFreeBytes() const override { return freeBytes_; }

private:
    std::uint32_t const blockSize_;
    std::uint64_t const freeBytes_;
};
