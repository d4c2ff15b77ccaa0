#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "ole/Ox/OxMemHolder.h"

/// A holder of plain bytes that can tell whether it is still alive.
class ByteHolder : public iMemHolder {
public:
    using Alive = std::shared_ptr<std::atomic<bool>>;

    explicit ByteHolder(std::uint32_t byteCount) : bytes_(byteCount), used_(byteCount) {}
    ~ByteHolder() override { *alive_ = false; }

    [[nodiscard]] void* getBuffer() const override { return bytes_.data(); }
    [[nodiscard]] std::uint32_t getSize() const override { return static_cast<std::uint32_t>(bytes_.size()); }
    [[nodiscard]] std::uint32_t getUsed() const override { return used_; }
    std::uint32_t setUsed(std::uint32_t byteCount) override { return used_ = byteCount; }
    /// False once the holder has gone.
    [[nodiscard]] Alive alive() const { return alive_; }

private:
    mutable std::vector<std::uint8_t> bytes_;
    std::uint32_t used_;
    Alive const alive_ = std::make_shared<std::atomic<bool>>(true);
};
