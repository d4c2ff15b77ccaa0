#include "tools/playfile/Text.h"

#include <gtest/gtest.h>

#include <string>

#include "tools/playfile/CommandError.h"

namespace {

using cli::printable;

TEST(Text, LeavesPlainTextAlone) {
    EXPECT_EQ(printable(std::string("/clips/Gr\xC3\xBC\xC3\x9F"
                                    "e 1.mov")),
              "/clips/Gr\xC3\xBC\xC3\x9F"
              "e 1.mov");
}

TEST(Text, KeepsALineALine) {
    EXPECT_EQ(printable(std::string("a\nb\tc\rd")), "a\\nb\\tc\\x0dd");
}

TEST(Text, DisarmsWhatATerminalWouldObey) {
    EXPECT_EQ(printable(std::string("\x1b[2J\x7f")), "\\x1b[2J\\x7f");
    EXPECT_EQ(printable(std::string("\xC2\x9B"
                                    "2J")),
              "\xEF\xBF\xBD"
              "2J");
}

TEST(Text, ReplacesBytesThatAreNoText) {
    EXPECT_EQ(printable(std::string("a\xFF"
                                    "b")),
              "a\xEF\xBF\xBD"
              "b");
}

TEST(Text, TakesNamesInUtf8) {
    EXPECT_EQ(cli::narrowName(cli::wideName("gr\xC3\xBC\xC3\x9F.mov")), "gr\xC3\xBC\xC3\x9F.mov");
}

TEST(Text, RefusesANameThatCouldNotBeFoundAgain) {
    EXPECT_THROW(static_cast<void>(cli::wideName("a\xFF.mov")), cli::CommandError);
}

}  // namespace
