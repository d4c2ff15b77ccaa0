/// The soak program, a few seconds long.
#include <gtest/gtest.h>

#include "tests/support/ChildProcess.h"

namespace {

std::string const media = PLAYFILE_TEST_MEDIA_DIR;

TEST(Soak, FindsNoFaultInAFewSeconds) {
    test::ChildProcess child(PLAYFILE_SOAK, {media, "--seconds", "5", "--seed", "1"});
    test::Ending const ending = child.waitForEnd();
    EXPECT_EQ(ending.exitCode, 0) << ending.output << ending.errors;
    EXPECT_NE(ending.output.find("seed 1, 5 seconds, 4 threads"), std::string::npos) << ending.output;
}

TEST(Soak, RefusesMediaThatCannotBeRead) {
    test::ChildProcess child(PLAYFILE_SOAK, {"/dev/null", "--seconds", "1"});
    EXPECT_EQ(child.waitForEnd().exitCode, 2);
}

}  // namespace
