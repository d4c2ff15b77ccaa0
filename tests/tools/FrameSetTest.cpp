#include "tools/playfile/FrameSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/playfile/CommandError.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::uint32_t> resolve(std::string const& text, std::uint32_t frameCount) {
    return cli::FrameSet::parse(text).resolve(frameCount, "clip.mov");
}

std::string refusal(std::string const& text, std::uint32_t frameCount) {
    try {
        static_cast<void>(resolve(text, frameCount));
    } catch (cli::CommandError const& error) {
        return error.what();
    }
    return "";
}

TEST(FrameSet, AllMeansEveryFrameOfTheFile) {
    EXPECT_THAT(resolve("all", 4), ElementsAre(0, 1, 2, 3));
}

TEST(FrameSet, TakesNumbersAndRanges) {
    EXPECT_THAT(resolve("0,5,7-9", 10), ElementsAre(0, 5, 7, 8, 9));
}

TEST(FrameSet, SortsAndTakesEachFrameOnce) {
    EXPECT_THAT(resolve("8,3-5,4,3", 10), ElementsAre(3, 4, 5, 8));
}

TEST(FrameSet, TakesNumbersThatWereCounted) {
    EXPECT_THAT(cli::FrameSet::of({7, 2, 7}).resolve(10, "clip.mov"), ElementsAre(2, 7));
}

TEST(FrameSet, NamesTheFrameThatTheFileLacks) {
    EXPECT_THAT(refusal("3,7-12", 10), HasSubstr("no frame 12; its frames are 0 to 9"));
}

TEST(FrameSet, TakesEveryNumberOfAFileOfOneFrame) {
    EXPECT_THAT(resolve("0,77", 1), ElementsAre(0, 77));
}

TEST(FrameSet, RefusesAFileWithoutFrames) {
    EXPECT_THAT(refusal("all", 0), HasSubstr("'clip.mov' has no frames"));
}

TEST(FrameSet, RefusesWhatIsNoNumber) {
    for (char const* const text : {"", ",", "1,", ",1", "1,,2", "x", "1x", "-", "1-", "-1", "1-2-3", " 1",
                                   "+1", "0x10", "99999999999", "ALL"}) {
        EXPECT_THAT(refusal(text, 10), HasSubstr("names no frames")) << "'" << text << "'";
    }
}

TEST(FrameSet, RefusesARangeThatRunsBackwards) {
    EXPECT_THAT(refusal("9-7", 10), HasSubstr("'9-7' runs backwards"));
}

TEST(FrameSet, RefusesMoreFramesThanARunTakes) {
    EXPECT_THAT(refusal("0-4000000000", 1), HasSubstr("more than 10000000 frames"));
    EXPECT_THAT(refusal("all", 4'000'000'000U), HasSubstr("more than 10000000 frames"));
}

}  // namespace
