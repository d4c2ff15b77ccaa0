#pragma once

#include <cstdint>
#include <memory>

#include "ole/Ox/OxMemHolder.h"

/// A block of bytes that grows.
///
/// Growing keeps what is used and may move the block: an address from `getBuffer` holds until the next
/// `setUsed` or `append`. New bytes have no value.
///
/// Units    All sizes are bytes.
/// Threads  One at a time.
/// Errors   `std::bad_alloc` where there is no memory, with the block as it was.
class ByteBufferImpl : public iMemHolder {
public:
    /// Nothing is used at first.
    ///
    /// @param size    what fits without growing
    /// @param growBy  grow by at least so much at a time
    explicit ByteBufferImpl(std::uint32_t size, std::uint32_t growBy = 0);

    /// Null while there is no memory.
    [[nodiscard]] void* getBuffer() const override { return bytes_.get(); }
    [[nodiscard]] std::uint32_t getSize() const override { return size_; }
    [[nodiscard]] std::uint32_t getUsed() const override { return used_; }
    /// A length beyond the capacity makes the block grow to it.
    std::uint32_t setUsed(std::uint32_t byteCount) override;

    /// Puts bytes behind those that are used.
    void append(void const* bytes, std::uint32_t byteCount);
    /// Nothing is used any more; the memory stays.
    void clear() { used_ = 0; }

private:
    void growTo(std::uint32_t size);

    std::unique_ptr<std::uint8_t[]> bytes_;
    std::uint32_t size_ = 0;
    std::uint32_t used_ = 0;
    std::uint32_t const growBy_;
};
