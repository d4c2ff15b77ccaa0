#include "toolkit/sound/ByteBufferImpl.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace {

constexpr std::uint32_t largest = std::numeric_limits<std::uint32_t>::max();

std::uint32_t sumWithin32Bits(std::uint32_t a, std::uint32_t b) {
    if (b > largest - a) {
        throw std::bad_alloc();
    }
    return a + b;
}

}  // namespace

ByteBufferImpl::ByteBufferImpl(std::uint32_t size, std::uint32_t growBy) : growBy_(growBy) {
    if (size != 0) {
        growTo(size);
    }
}

std::uint32_t ByteBufferImpl::setUsed(std::uint32_t byteCount) {
    if (byteCount > size_) {
        growTo(byteCount);
    }
    used_ = byteCount;
    return used_;
}

/// Several appends in a row must not copy the block each time, so it grows by half of itself at least.
void ByteBufferImpl::append(void const* bytes, std::uint32_t byteCount) {
    std::uint32_t const used = sumWithin32Bits(used_, byteCount);
    if (used > size_) {
        std::uint32_t const step = std::max(growBy_, size_ / 2);
        growTo(std::max(used, step > largest - size_ ? largest : size_ + step));
    }
    if (byteCount != 0) {
        std::memcpy(bytes_.get() + used_, bytes, byteCount);
    }
    used_ = used;
}

void ByteBufferImpl::growTo(std::uint32_t size) {
    std::unique_ptr<std::uint8_t[]> grown(new std::uint8_t[size]);
    if (used_ != 0) {
        std::memcpy(grown.get(), bytes_.get(), used_);
    }
    bytes_ = std::move(grown);
    size_ = size;
}
