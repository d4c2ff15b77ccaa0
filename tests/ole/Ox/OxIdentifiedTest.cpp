#include "ole/Ox/OxIdentified.h"

#include <gtest/gtest.h>

namespace {

TEST(Identified, HasNoStampAtFirst) {
    Identified const thing;
    EXPECT_FALSE(thing.id().valid());
}

TEST(Identified, KeepsTheStampThatItIsGiven) {
    Identified thing;
    thing.id(IdStamp(0xFFFFFFFFFFFFFFFF));
    EXPECT_TRUE(thing.id() == IdStamp(0xFFFFFFFFFFFFFFFF));
    EXPECT_TRUE(thing.id().valid());
}

TEST(Identified, StampsAreOrderedByValue) {
    EXPECT_TRUE(IdStamp(1) < IdStamp(2));
    EXPECT_TRUE(IdStamp(2) != IdStamp(3));
}

}  // namespace
