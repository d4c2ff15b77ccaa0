#include "toolkit/sound/ByteBufferImpl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

namespace {

std::string contents(ByteBufferImpl const& buffer) {
    return {static_cast<char const*>(buffer.getBuffer()), buffer.getUsed()};
}

TEST(ByteBuffer, UsesNothingOfItsCapacityAtFirst) {
    ByteBufferImpl const buffer(100);
    EXPECT_EQ(buffer.getSize(), 100U);
    EXPECT_EQ(buffer.getUsed(), 0U);
    EXPECT_EQ(buffer.getSpace(), 100U);
    EXPECT_NE(buffer.getBuffer(), nullptr);
}

TEST(ByteBuffer, OfNoBytesHasNoMemory) {
    ByteBufferImpl const buffer(0);
    EXPECT_EQ(buffer.getSize(), 0U);
    EXPECT_EQ(buffer.getBuffer(), nullptr);
}

TEST(ByteBuffer, SetUsedWithinTheCapacityMovesNothing) {
    ByteBufferImpl buffer(100);
    void const* const before = buffer.getBuffer();
    EXPECT_EQ(buffer.setUsed(100), 100U);
    EXPECT_EQ(buffer.setUsed(40), 40U);
    EXPECT_EQ(buffer.getUsed(), 40U);
    EXPECT_EQ(buffer.getSize(), 100U);
    EXPECT_EQ(buffer.getBuffer(), before);
}

TEST(ByteBuffer, SetUsedBeyondTheCapacityGrowsAndKeepsWhatWasUsed) {
    ByteBufferImpl buffer(4);
    buffer.append("abcd", 4);
    EXPECT_EQ(buffer.setUsed(5000), 5000U);
    EXPECT_EQ(buffer.getUsed(), 5000U);
    EXPECT_GE(buffer.getSize(), buffer.getUsed());
    EXPECT_EQ(contents(buffer).substr(0, 4), "abcd");
    std::memset(buffer.getBuffer(), 7, buffer.getSize());
}

TEST(ByteBuffer, SetUsedGrowsOneThatHasNoMemory) {
    ByteBufferImpl buffer(0);
    EXPECT_EQ(buffer.setUsed(3), 3U);
    EXPECT_NE(buffer.getBuffer(), nullptr);
    EXPECT_EQ(buffer.setUsed(0), 0U);
}

TEST(ByteBuffer, AppendsBehindWhatIsUsed) {
    ByteBufferImpl buffer(3);
    buffer.append("ab", 2);
    buffer.append("cde", 3);
    buffer.append("", 0);
    EXPECT_EQ(contents(buffer), "abcde");
    buffer.setUsed(1);
    buffer.append("z", 1);
    EXPECT_EQ(contents(buffer), "az");
}

TEST(ByteBuffer, AppendsNothingToNothing) {
    ByteBufferImpl buffer(0);
    buffer.append(nullptr, 0);
    EXPECT_EQ(buffer.getUsed(), 0U);
    EXPECT_EQ(buffer.getSize(), 0U);
}

TEST(ByteBuffer, GrowsByHalfOfItselfAtLeast) {
    ByteBufferImpl buffer(100);
    buffer.setUsed(100);
    buffer.append("x", 1);
    EXPECT_EQ(buffer.getSize(), 150U);
}

TEST(ByteBuffer, GrowsByTheStepThatItWasGiven) {
    ByteBufferImpl buffer(100, 400);
    buffer.setUsed(100);
    buffer.append("x", 1);
    EXPECT_EQ(buffer.getSize(), 500U);
}

TEST(ByteBuffer, GrowsByAsMuchAsIsAppended) {
    ByteBufferImpl buffer(100);
    buffer.append(std::string(1000, 'x').c_str(), 1000);
    EXPECT_EQ(buffer.getSize(), 1000U);
}

TEST(ByteBuffer, ClearKeepsTheMemory) {
    ByteBufferImpl buffer(100);
    buffer.append("abc", 3);
    void const* const before = buffer.getBuffer();
    buffer.clear();
    EXPECT_EQ(buffer.getUsed(), 0U);
    EXPECT_EQ(buffer.getSize(), 100U);
    EXPECT_EQ(buffer.getBuffer(), before);
}

TEST(ByteBuffer, HoldsNoMoreBytesThanItCounts) {
    ByteBufferImpl buffer(10);
    buffer.append("0123456789", 10);
    EXPECT_THROW(buffer.append("x", 0xFFFFFFFF - 9), std::bad_alloc);
    EXPECT_EQ(contents(buffer), "0123456789");
    EXPECT_EQ(buffer.getSize(), 10U);
}

}  // namespace
