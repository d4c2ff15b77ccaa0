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

TEST(Text, CountsTheColumnsOfATerminal) {
    EXPECT_EQ(cli::displayWidth(""), 0U);
    EXPECT_EQ(cli::displayWidth("Straße"), 6U);
    EXPECT_EQ(cli::displayWidth("シーン 場景"), 11U);
    EXPECT_EQ(cli::displayWidth("e\xCC\x81"), 1U) << "a mark above a letter";
    EXPECT_EQ(cli::displayWidth("한국🎬"), 6U);
}

TEST(Text, TellsSizesInUnitsThatFit) {
    EXPECT_EQ(cli::sizeText(0), "0 B");
    EXPECT_EQ(cli::sizeText(1023), "1023 B");
    EXPECT_EQ(cli::sizeText(1536), "1.5 KiB");
    EXPECT_EQ(cli::sizeText(std::uint64_t{3} << 40), "3.0 TiB");
}

}  // namespace
