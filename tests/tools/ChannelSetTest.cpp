#include "tools/playfile/ChannelSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/playfile/CommandError.h"

namespace {

using testing::ElementsAre;

std::vector<std::uint8_t> resolve(std::string const& text, std::uint32_t channels) {
    return cli::ChannelSet::parse(text).resolve(channels, "clip.wav");
}

TEST(ChannelSet, AllMeansEveryChannelOfTheFile) {
    EXPECT_THAT(resolve("all", 3), ElementsAre(1, 2, 3));
}

TEST(ChannelSet, SortsAndTakesEachChannelOnce) {
    EXPECT_THAT(resolve("5,1-2,2", 5), ElementsAre(1, 2, 5));
}

TEST(ChannelSet, RefusesChannelsThatTheFileLacks) {
    EXPECT_THROW(static_cast<void>(resolve("0", 5)), cli::CommandError);
    EXPECT_THROW(static_cast<void>(resolve("4-6", 5)), cli::CommandError);
}

TEST(ChannelSet, RefusesARangeThatRunsBackwards) {
    EXPECT_THROW(static_cast<void>(cli::ChannelSet::parse("3-1")), cli::CommandError);
}

TEST(ChannelSet, OfMoreChannelsThanCanBeToldApartSomeMustBeNamed) {
    EXPECT_THROW(static_cast<void>(resolve("all", 255)), cli::CommandError);
    EXPECT_THAT(resolve("254", 300), ElementsAre(254));
}

}  // namespace
