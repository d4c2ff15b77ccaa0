#pragma once

#include <string>
#include <utility>

#include "ole/os/FileManager.h"

/// What the system says of the file system that holds a path.
class PosixVolume final : public iVolume {
public:
    /// Empty, with the reason kept, for a path that isn't there.
    [[nodiscard]] static Ox::Ptr<iVolume> find(std::string const& path);

    PosixVolume(std::string path, std::uint32_t blockSize) : path_(std::move(path)), blockSize_(blockSize) {}
    [[nodiscard]] std::uint32_t getBlockSize() const override { return blockSize_; }
    /// Without what is kept back for the system.
    [[nodiscard]] std::uint64_t getFreeBytes() const override;

private:
    std::string const path_;
    std::uint32_t const blockSize_;
};
