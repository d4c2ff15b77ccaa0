#include "tools/playfile/ContactSheet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

TEST(ContactSheet, SpreadsFramesFromTheFirstToTheLast) {
    EXPECT_THAT(cli::spreadFrames(101, 5), ElementsAre(0, 25, 50, 75, 100));
}

TEST(ContactSheet, TakesAllFramesOfAShortFile) {
    EXPECT_THAT(cli::spreadFrames(3, 20), ElementsAre(0, 1, 2));
    EXPECT_THAT(cli::spreadFrames(1, 20), ElementsAre(0));
}

TEST(ContactSheet, SpreadsOverTheLongestFile) {
    EXPECT_THAT(cli::spreadFrames(4294967295U, 3), ElementsAre(0, 2147483647, 4294967294));
}

}  // namespace
