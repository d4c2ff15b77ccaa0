#pragma once

#include <string>

#include "ole/os/FileManager.h"

/// What the system says of the file system that holds a path.
class PosixVolume final : public iVolume {
public:
    /// Empty, with the reason kept, for a path that isn't there.
    [[nodiscard]] static Ox::Ptr<iVolume> find(std::string const& path);

    explicit PosixVolume(std::uint32_t blockSize) : blockSize_(blockSize) {}
    [[nodiscard]] std::uint32_t getBlockSize() const override { return blockSize_; }

private:
    std::uint32_t const blockSize_;
};
