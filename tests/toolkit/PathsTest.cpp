#include "toolkit/services/Paths.h"

#include <gtest/gtest.h>

#include "tests/fakes/CallLog.h"

namespace test {
namespace {

std::string joined(std::string const& folder, std::string const& name) {
    return narrow(joinPaths(wide(folder), wide(name)));
}

TEST(JoinPaths, PutsOneSeparatorBetween) {
    EXPECT_EQ(joined("/m", "a.mov"), "/m/a.mov");
    EXPECT_EQ(joined("/m/", "a.mov"), "/m/a.mov");
}

TEST(JoinPaths, ClosesAFolderWithoutAName) {
    EXPECT_EQ(joined("/m", ""), "/m/");
    EXPECT_EQ(joined("/m/", ""), "/m/");
}

TEST(JoinPaths, OfNothingIsNothing) {
    EXPECT_EQ(joined("", ""), "");
}

TEST(JoinPaths, OfNoFolderIsTheName) {
    EXPECT_EQ(joined("", "a.mov"), "a.mov");
}

}  // namespace
}  // namespace test
