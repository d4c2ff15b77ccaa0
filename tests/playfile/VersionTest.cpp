#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <vector>

#include "playfile/playfile.h"

namespace {

std::vector<std::string> partsOfTheVersion() {
    std::vector<std::string> parts;
    std::istringstream version(playfileDllVersionStr());
    for (std::string part; std::getline(version, part, '.');) {
        parts.push_back(part);
    }
    return parts;
}

TEST(Version, IsFourNumbersSeparatedByFullStops) {
    std::vector<std::string> const parts = partsOfTheVersion();
    ASSERT_EQ(parts.size(), 4U);
    for (std::string const& part : parts) {
        EXPECT_FALSE(part.empty());
        EXPECT_TRUE(std::all_of(part.begin(), part.end(), [](unsigned char c) { return std::isdigit(c); }));
    }
}

TEST(Version, EndsWithItsLastNumber) {
    EXPECT_NE(std::string(playfileDllVersionStr()).back(), '.');
}

TEST(Version, IsOneConstant) {
    EXPECT_EQ(playfileDllVersionStr(), playfileDllVersionStr());
}

}  // namespace
