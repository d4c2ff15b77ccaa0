#pragma once

#include <cstdint>

#include "ole/Ox/OxObject.h"

/// A block of bytes with a capacity and a used length.
///
/// Units  All sizes are bytes.
class iMemHolder : public virtual iObject {
public:
    /// The address of the first byte; null if there is no memory.
    [[nodiscard]] virtual void* getBuffer() const = 0;
    /// The capacity.
    [[nodiscard]] virtual std::uint32_t getSize() const = 0;
    /// How much of it holds data.
    [[nodiscard]] virtual std::uint32_t getUsed() const = 0;
    /// Says how much of it holds data; the answer is the used length that is then in force.
    virtual std::uint32_t setUsed(std::uint32_t byteCount) = 0;
    /// What is left: capacity less used length, in 32-bit arithmetic.
    [[nodiscard]] virtual std::uint32_t getSpace() const { return getSize() - getUsed(); }
};

/// A view of part of another holder; it is always full.
///
/// Ownership  It holds the source, not the bytes.
/// Deliberate `setUsed` does nothing and answers 0.
class MemRef : public iMemHolder {
public:
    MemRef(Ox::Ptr<iMemHolder> source, std::uint32_t offset, std::uint32_t size)
        : source_(std::move(source)), offset_(offset), size_(size) {}

    [[nodiscard]] void* getBuffer() const override {
        return static_cast<std::uint8_t*>(source_->getBuffer()) + offset_;
    }
    [[nodiscard]] std::uint32_t getSize() const override { return size_; }
    [[nodiscard]] std::uint32_t getUsed() const override { return size_; }
    std::uint32_t setUsed(std::uint32_t) override { return 0; }

private:
    Ox::Ptr<iMemHolder> source_;
    std::uint32_t offset_;
    std::uint32_t size_;
};

namespace Aud {

/// One channel of audio samples over a holder; the four buffer operations go to the holder.
///
/// Without a holder it answers null and 0.
class StreamBuffer : public iMemHolder {
public:
    StreamBuffer() = default;

    /// @param holder  the bytes of the samples
    /// @param tag     kept as it stands for whoever made the buffer
    StreamBuffer(Ox::Ptr<iMemHolder> holder, std::uint32_t tag, bool flag = false,
                 std::uint32_t sampleCount = 0, std::uint32_t sampleFormat = 0)
        : tag_(tag),
          flag_(flag),
          sampleCount_(sampleCount),
          sampleFormat_(sampleFormat),
          holder_(std::move(holder)) {}

    [[nodiscard]] void* getBuffer() const override { return holder_ ? holder_->getBuffer() : nullptr; }
    [[nodiscard]] std::uint32_t getSize() const override { return holder_ ? holder_->getSize() : 0; }
    [[nodiscard]] std::uint32_t getUsed() const override { return holder_ ? holder_->getUsed() : 0; }
    std::uint32_t setUsed(std::uint32_t byteCount) override {
        return holder_ ? holder_->setUsed(byteCount) : 0;
    }

    [[nodiscard]] std::uint32_t getTag() const { return tag_; }
    [[nodiscard]] bool getFlag() const { return flag_; }
    [[nodiscard]] std::uint32_t getSampleCount() const { return sampleCount_; }
    [[nodiscard]] std::uint32_t getSampleFormat() const { return sampleFormat_; }
    [[nodiscard]] Ox::Ptr<iMemHolder> const& getHolder() const { return holder_; }

    void setFlag(bool flag) { flag_ = flag; }
    void setSampleCount(std::uint32_t sampleCount) { sampleCount_ = sampleCount; }

private:
    std::uint32_t tag_ = 0;
    bool flag_ = false;
    std::uint32_t sampleCount_ = 0;
    std::uint32_t sampleFormat_ = 0;
    Ox::Ptr<iMemHolder> holder_;
};

}  // namespace Aud
