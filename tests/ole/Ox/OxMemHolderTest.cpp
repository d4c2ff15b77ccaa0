#include "ole/Ox/OxMemHolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace {

/// A hundred bytes of its own.
class Block : public iMemHolder {
public:
    explicit Block(int* destroyed = nullptr) : destroyed_(destroyed) {}
    ~Block() override {
        if (destroyed_) {
            ++*destroyed_;
        }
    }
    void* getBuffer() const override { return bytes_.data(); }
    std::uint32_t getSize() const override { return static_cast<std::uint32_t>(bytes_.size()); }
    std::uint32_t getUsed() const override { return used_; }
    std::uint32_t setUsed(std::uint32_t byteCount) override { return used_ = byteCount; }

private:
    mutable std::array<std::uint8_t, 100> bytes_{};
    std::uint32_t used_ = 0;
    int* destroyed_;
};

TEST(MemHolder, SpaceIsCapacityLessUsed) {
    Block block;
    block.setUsed(30);
    EXPECT_EQ(block.getSpace(), 70U);
}

TEST(MemHolder, SpaceWrapsAsA32BitNumber) {
    Block block;
    block.setUsed(101);
    EXPECT_EQ(block.getSpace(), 0xFFFFFFFFU);
}

TEST(MemRef, BeginsAtItsOffset) {
    auto const block = Ox::makePtr<Block>();
    MemRef const view(block, 40, 10);
    EXPECT_EQ(view.getBuffer(), static_cast<std::uint8_t*>(block->getBuffer()) + 40);
}

TEST(MemRef, IsAlwaysFull) {
    MemRef const view(Ox::makePtr<Block>(), 40, 10);
    EXPECT_EQ(view.getSize(), 10U);
    EXPECT_EQ(view.getUsed(), 10U);
    EXPECT_EQ(view.getSpace(), 0U);
}

TEST(MemRef, SetUsedChangesNothingAndAnswersZero) {
    auto const block = Ox::makePtr<Block>();
    block->setUsed(50);
    MemRef view(block, 40, 10);
    EXPECT_EQ(view.setUsed(3), 0U);
    EXPECT_EQ(view.getUsed(), 10U);
    EXPECT_EQ(view.getSpace(), 0U);
    EXPECT_EQ(block->getUsed(), 50U);
}

TEST(MemRef, OfAMemRefAddsTheOffsets) {
    auto const block = Ox::makePtr<Block>();
    auto const outer = Ox::makePtr<MemRef>(block, 40U, 20U);
    MemRef const inner(outer, 5, 10);
    EXPECT_EQ(inner.getBuffer(), static_cast<std::uint8_t*>(block->getBuffer()) + 45);
}

TEST(MemRef, KeepsItsSource) {
    int destroyed = 0;
    {
        MemRef const view(Ox::makePtr<Block>(&destroyed), 0, 1);
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(StreamBuffer, ForwardsItsBufferOperationsToTheHolder) {
    auto const block = Ox::makePtr<Block>();
    Aud::StreamBuffer buffer(block, 7);
    EXPECT_EQ(buffer.setUsed(25), 25U);
    EXPECT_EQ(block->getUsed(), 25U);
    EXPECT_EQ(buffer.getBuffer(), block->getBuffer());
    EXPECT_EQ(buffer.getSize(), 100U);
    EXPECT_EQ(buffer.getUsed(), 25U);
    EXPECT_EQ(buffer.getSpace(), 75U);
}

TEST(StreamBuffer, KeepsTheOtherFieldsAsTheyStand) {
    auto const block = Ox::makePtr<Block>();
    Aud::StreamBuffer const buffer(block, 7, true, 48000, 3);
    EXPECT_EQ(buffer.getTag(), 7U);
    EXPECT_TRUE(buffer.getFlag());
    EXPECT_EQ(buffer.getSampleCount(), 48000U);
    EXPECT_EQ(buffer.getSampleFormat(), 3U);
    EXPECT_EQ(buffer.getHolder().get(), block.get());
}

TEST(StreamBuffer, WithoutAHolderAnswersNullAndZero) {
    Aud::StreamBuffer buffer;
    EXPECT_EQ(buffer.getBuffer(), nullptr);
    EXPECT_EQ(buffer.getSize(), 0U);
    EXPECT_EQ(buffer.getUsed(), 0U);
    EXPECT_EQ(buffer.setUsed(5), 0U);
    EXPECT_EQ(buffer.getSpace(), 0U);
}

TEST(StreamBuffer, OnlyReleasesItsHolder) {
    int destroyed = 0;
    auto const block = Ox::makePtr<Block>(&destroyed);
    { Aud::StreamBuffer const buffer(block, 0); }
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(block.useCount(), 1U);
}

}  // namespace
